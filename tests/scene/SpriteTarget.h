#pragma once

#include <GL/glew.h>

#include "core/RefCreate.h"
#include "gl/Texture2D.h"
#include "scene/Scene.h"
#include "scene/Sprite.h"
#include "support/Picture.h"

namespace zv::test {

/// What the target holds wherever nothing was drawn.
constexpr Pixel kPoison{255, 0, 255, 128};

/// A bound frame buffer full of poison, made of plain GL.
class PoisonedTarget {
public:
    PoisonedTarget(int width, int height) : mWidth(width), mHeight(height) {
        glGenTextures(1, &mTexture);
        glBindTexture(GL_TEXTURE_2D, mTexture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        glBindTexture(GL_TEXTURE_2D, 0);
        glGenFramebuffers(1, &mFrameBuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, mFrameBuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, mTexture, 0);
        poison();
    }
    PoisonedTarget(const PoisonedTarget&) = delete;
    PoisonedTarget& operator=(const PoisonedTarget&) = delete;
    ~PoisonedTarget() {
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glDeleteFramebuffers(1, &mFrameBuffer);
        glDeleteTextures(1, &mTexture);
    }

    void poison() const {
        glClearColor(kPoison[0] / 255.0F, kPoison[1] / 255.0F, kPoison[2] / 255.0F, kPoison[3] / 255.0F);
        glClear(GL_COLOR_BUFFER_BIT);
    }

    /// The picture, top row first.
    Picture read() const { return Picture::readFrameBuffer(mWidth, mHeight).flippedY(); }

    /// What the node draws into one view port, on fresh poison; top row first. The node may be a child of the
    /// caller's: it is drawn below a scene that goes again.
    Picture draw(Node* node, const ViewPort& viewPort) const {
        poison();
        Scene* scene = Scene::create();
        scene->setViewPort(viewPort);
        scene->addChild(node);
        scene->render();
        scene->removeChild(node);
        return read();
    }
    Picture draw(Node* node) const {
        return draw(
            node, ViewPort(0, 0, static_cast<unsigned short>(mWidth), static_cast<unsigned short>(mHeight)));
    }

private:
    int mWidth;
    int mHeight;
    unsigned int mTexture = 0;
    unsigned int mFrameBuffer = 0;
};

/// A texture whose row 0 is the picture's top row. Autoreleased.
inline Texture2D* textureOf(const Picture& picture) {
    return createRef<Texture2D>([&](Texture2D& texture) {
        return texture.init(
            picture.rgba.data(), picture.rgba.size(), PXFORMAT_RGBA8888,
            Size16(static_cast<unsigned short>(picture.width), static_cast<unsigned short>(picture.height)));
    });
}

inline Texture2D* textureOf(int width, int height) {
    return textureOf(Picture::noise(width, height));
}

/// A sprite that shows the whole texture. Autoreleased.
inline Sprite* spriteOf(Texture2D* texture, bool flipY = false) {
    return createRef<Sprite>([&](Sprite& sprite) { return sprite.init(texture, flipY); });
}

}  // namespace zv::test
