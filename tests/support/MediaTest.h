#pragma once

#include <memory>

#include "core/PoolMgr.h"
#include "core/RefPool.h"
#include "gl/Texture2D.h"
#include "scene/RenderTexture.h"
#include "scene/Scene.h"
#include "scene/Sprite.h"
#include "scene/ZVMediaEngine.h"
#include "support/EngineTest.h"
#include "support/HostScreen.h"
#include "support/Picture.h"

namespace zv::test {

/// A test with a media engine of its own, auto update off, and the host's screen. Pictures have their top row
/// first.
class MediaTest : public EngineTest {
protected:
    static constexpr int kWidth = 16;
    static constexpr int kHeight = 12;
    static constexpr Size16 kSize{kWidth, kHeight};

    void SetUp() override {
        ASSERT_TRUE(prepareContext());
        auto made = std::make_unique<ZVMediaEngine>(context());
        media = made.get();
        engine = std::move(made);
        media->setAutoUpdate(false);
        mScreen = std::make_unique<HostScreen>(kWidth, kHeight);
        screen = mScreen->frameBuffer;
    }

    void TearDown() override {
        GLint bound = 0;
        glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
        EXPECT_EQ(static_cast<GLuint>(bound), screen) << "the host's frame buffer must be bound again";
        EngineTest::TearDown();
        mScreen.reset();
    }

    /// Autoreleased, like everything below: the next update() drops what nobody retained.
    static Texture2D* makeTexture(const Picture& picture) {
        auto* texture = new Texture2D;
        texture->autorelease();
        EXPECT_TRUE(
            texture->init(picture.rgba.data(), picture.rgba.size(), PXFORMAT_RGBA8888, sizeOf(picture)));
        return texture;
    }
    static Sprite* makeSprite(const Picture& picture) {
        auto* sprite = new Sprite;
        sprite->autorelease();
        EXPECT_TRUE(sprite->init(makeTexture(picture), false));
        return sprite;
    }

    /// update() and render(), as a host does for each frame.
    void frame(float dt = 0.04F) {
        media->update(dt);
        media->render();
    }
    static Picture pictureOf(Texture2D* texture) {
        return Picture::readTexture(texture->getName(), texture->getSize().x, texture->getSize().y)
            .flippedY();
    }
    /// The picture in the last render texture.
    Picture output() { return pictureOf(media->getLastRenderTexture()->getTexture(0)); }

    /// The picture on the screen.
    Picture shown() const { return Picture::readTexture(mScreen->texture, kWidth, kHeight).flippedY(); }

    ZVMediaEngine* media = nullptr;
    unsigned int screen = 0;

private:
    std::unique_ptr<HostScreen> mScreen;
};

}  // namespace zv::test
