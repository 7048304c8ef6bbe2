#include <GL/glew.h>

#include <string>
#include <tuple>

#include "MediaPipelineTest.h"
#include "support/PictureCompare.h"

namespace zv::test {

namespace {

// Rows of three bytes a pixel that are no multiple of four, smaller than the screen.
constexpr int kPictureWidth = 14;
constexpr int kPictureHeight = 6;
constexpr Size16 kPictureSize{kPictureWidth, kPictureHeight};
constexpr Pixel kPoison{9, 200, 77, 33};
constexpr Pixel kSticker{250, 10, 120, 255};

enum Output { OWN, TEXTURE, RENDER_TEXTURE, SCREEN, TEXTURE_AND_SCREEN, SCREEN_LATER };
constexpr const char* kOutputNames[] = {"Own",    "Texture",          "RenderTexture",
                                        "Screen", "TextureAndScreen", "ScreenLater"};

std::string nameOf(const testing::TestParamInfo<std::tuple<Output, int>>& row) {
    return kOutputNames[std::get<0>(row.param)] + std::to_string(std::get<1>(row.param)) + "Stages";
}

}  // namespace

/// Every output with chains of no, one and two stages.
class ZVMediaEnginePicture : public MediaPipelineTest,
                             public testing::WithParamInterface<std::tuple<Output, int>> {
protected:
    const Picture input = Picture::noise(kPictureWidth, kPictureHeight);

    static Ref* makeOutput(Output output) {
        if (output == RENDER_TEXTURE) {
            return RenderTexture::create(kPictureSize, nullptr, PXFORMAT_RGBA8888);
        }
        const bool none = output == OWN || output == SCREEN;
        return none ? nullptr : makeTexture(Picture(kPictureWidth, kPictureHeight, kPoison));
    }
    /// With the sticker over the top right quarter.
    Picture withSticker() const {
        return Picture::make(kPictureWidth, kPictureHeight, [&](int x, int y) {
            return x >= kPictureWidth / 2 && y < kPictureHeight / 2 ? kSticker : input.at(x, y);
        });
    }
    /// The screen with the picture in its lower left corner, the rest untouched.
    static Picture onScreen(const Picture& picture) {
        return Picture::make(kWidth, kHeight, [&](int x, int y) {
            const int row = y - (kHeight - kPictureHeight);
            return x < kPictureWidth && row >= 0 ? picture.at(x, row) : kPoison;
        });
    }
};

// The picture is copied from texel to pixel centre: no step may be lost.
TEST_P(ZVMediaEnginePicture, ComesOutUprightWhereItIsAskedForWithEveryNodeUpdatedOnceAFrame) {
    const auto [kind, stages] = GetParam();
    const bool atOnce = kind == SCREEN || kind == TEXTURE_AND_SCREEN;
    auto* sprite = autoreleased(new Counting<Sprite>);
    sprite->init(makeTexture(input), false);
    media->init(sprite, kPictureSize, makeOutput(kind), atOnce);
    RenderTextureChain* chain = RenderTextureChain::create(kPictureSize, media->getFrameBuffer());
    for (int i = 0; i < stages; ++i) {
        chain->add(RenderTexture::create(kPictureSize, media->getFrameBuffer(), PXFORMAT_RGBA8888), true,
                   false);
    }
    media->setRenderChain(stages > 0 ? chain : nullptr);
    auto* sticker = autoreleased(new Counting<Sprite>);
    sticker->init(makeTexture(Picture(2, 2, kSticker)), false);
    sticker->setFillMode(false);
    sticker->setContentSize({1.0F, 1.0F});
    media->addSticker(sticker);
    media->setRenderToScreen(atOnce || kind == SCREEN_LATER);
    auto* inScene = autoreleased(new Counting<Node>);
    media->getCurScene()->addChild(inScene);
    const auto poisonScreen = [&] {
        glBindFramebuffer(GL_FRAMEBUFFER, screen);
        glClearColor(kPoison[0] / 255.0F, kPoison[1] / 255.0F, kPoison[2] / 255.0F, kPoison[3] / 255.0F);
        glClear(GL_COLOR_BUFFER_BIT);
    };
    for (int i = 0; i <= 3; ++i) {
        poisonScreen();
        glViewport(1, 2, 3, 4);
        frame(0.25F);
        if (i == 0) {
            // Chains are linked within the first frame.
            sprite->updates = sticker->updates = inScene->updates = 0;
            sticker->time = 0.0F;
        }
        EXPECT_EQ(sprite->updates, i);
        EXPECT_EQ(sticker->updates, i);
        EXPECT_EQ(inScene->updates, media->isRenderToScreen() ? i : 0);
    }
    EXPECT_EQ(sticker->time, 0.75F);
    const std::string name = "media-" + nameOf({GetParam(), 0});
    if (kind != SCREEN) {
        expectSame(output(), withSticker(), name);
    }
    // What the scene shows beside the pipeline has no stickers: those are drawn into the last render texture.
    const Picture expected = atOnce                 ? onScreen(withSticker())
                             : kind == SCREEN_LATER ? onScreen(input)
                                                    : Picture(kWidth, kHeight, kPoison);
    expectSame(shown(), expected, name + "-screen");
    if (media->isRenderToScreen()) {
        poisonScreen();
        media->renderToScreen();
        expectSame(shown(), expected, name + "-again");
    }
}

INSTANTIATE_TEST_SUITE_P(Pipelines, ZVMediaEnginePicture,
                         testing::Combine(testing::Values(OWN, TEXTURE, RENDER_TEXTURE, SCREEN,
                                                          TEXTURE_AND_SCREEN, SCREEN_LATER),
                                          testing::Values(0, 1, 2)),
                         nameOf);

}  // namespace zv::test
