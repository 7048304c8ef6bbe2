#include <GL/glew.h>

#include <ostream>

#include "scene/RenderTextureChain.h"
#include "support/MediaTest.h"
#include "support/PictureCompare.h"

namespace zv::test {

namespace {

// Rows of three bytes a pixel that are no multiple of four, smaller than the screen.
constexpr int kPictureWidth = 14;
constexpr int kPictureHeight = 6;
constexpr Size16 kPictureSize{kPictureWidth, kPictureHeight};
constexpr Pixel kPoison{9, 200, 77, 33};
constexpr Pixel kSticker{250, 10, 120, 255};

enum class Output { Own, Texture, RenderTexture, Screen, TextureAndScreen, ScreenLater };

}  // namespace

struct PipelineCase {
    const char* name;
    Output output;
    int stages;
};

void PrintTo(const PipelineCase& given, std::ostream* stream) {
    *stream << given.name;
}

class ZVMediaEnginePicture : public MediaTest, public testing::WithParamInterface<PipelineCase> {
protected:
    const Picture input = Picture::noise(kPictureWidth, kPictureHeight);

    void poisonScreen() {
        glBindFramebuffer(GL_FRAMEBUFFER, screen);
        glClearColor(kPoison[0] / 255.0F, kPoison[1] / 255.0F, kPoison[2] / 255.0F, kPoison[3] / 255.0F);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    Ref* makeOutput(Output output) {
        const Picture poison(kPictureWidth, kPictureHeight, kPoison);
        switch (output) {
            case Output::Texture:
            case Output::TextureAndScreen:
            case Output::ScreenLater:
                return makeTexture(poison);
            case Output::RenderTexture:
                return RenderTexture::create(kPictureSize, nullptr, PXFORMAT_RGBA8888);
            default:
                return nullptr;
        }
    }
    /// A sticker over the top right quarter.
    void addSticker() {
        Sprite* sticker = makeSprite(Picture(2, 2, kSticker));
        sticker->setFillMode(false);
        sticker->setContentSize({1.0F, 1.0F});
        media->addSticker(sticker);
    }
    Picture withSticker() const {
        return Picture::make(kPictureWidth, kPictureHeight, [&](int x, int y) {
            return x >= kPictureWidth / 2 && y < kPictureHeight / 2 ? kSticker : input.at(x, y);
        });
    }
    /// The screen with the picture in its lower left corner, the rest untouched.
    Picture onScreen(const Picture& picture) const {
        return Picture::make(kWidth, kHeight, [&](int x, int y) {
            const int row = y - (kHeight - kPictureHeight);
            return x < kPictureWidth && row >= 0 ? picture.at(x, row) : kPoison;
        });
    }
};

// The picture is copied from texel to pixel centre: no step may be lost.
TEST_P(ZVMediaEnginePicture, PictureAndStickersComeOutUprightWhereTheyAreAskedFor) {
    const PipelineCase& given = GetParam();
    const bool atOnce = given.output == Output::Screen || given.output == Output::TextureAndScreen;
    const bool later = given.output == Output::ScreenLater;
    media->init(makeSprite(input), kPictureSize, makeOutput(given.output), atOnce);
    if (given.stages > 0) {
        RenderTextureChain* chain = RenderTextureChain::create(kPictureSize, media->getFrameBuffer());
        for (int i = 0; i < given.stages; ++i) {
            chain->add(RenderTexture::create(kPictureSize, media->getFrameBuffer(), PXFORMAT_RGBA8888), true,
                       false);
        }
        media->setRenderChain(chain);
    }
    addSticker();
    media->setRenderToScreen(atOnce || later);
    for (int i = 0; i < 2; ++i) {
        poisonScreen();
        glViewport(1, 2, 3, 4);
        frame();
    }
    if (given.output != Output::Screen) {
        expectSame(output(), withSticker(), std::string("output-") + given.name);
    }
    // What the scene shows beside the pipeline has no stickers: those are drawn into the last render texture.
    const Picture expected = atOnce  ? onScreen(withSticker())
                             : later ? onScreen(input)
                                     : Picture(kWidth, kHeight, kPoison);
    expectSame(shown(), expected, std::string("screen-") + given.name);
    if (media->isRenderToScreen()) {
        poisonScreen();
        media->renderToScreen();
        expectSame(shown(), expected, std::string("again-") + given.name);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Pipelines, ZVMediaEnginePicture,
    testing::Values(PipelineCase{"Own", Output::Own, 0}, PipelineCase{"OwnOneStage", Output::Own, 1},
                    PipelineCase{"Texture", Output::Texture, 0},
                    PipelineCase{"TextureTwoStages", Output::Texture, 2},
                    PipelineCase{"RenderTexture", Output::RenderTexture, 0},
                    PipelineCase{"RenderTextureOneStage", Output::RenderTexture, 1},
                    PipelineCase{"Screen", Output::Screen, 0},
                    PipelineCase{"ScreenOneStage", Output::Screen, 1},
                    PipelineCase{"ScreenTwoStages", Output::Screen, 2},
                    PipelineCase{"TextureAndScreen", Output::TextureAndScreen, 0},
                    PipelineCase{"TextureAndScreenTwoStages", Output::TextureAndScreen, 2},
                    PipelineCase{"ScreenLater", Output::ScreenLater, 0},
                    PipelineCase{"ScreenLaterTwoStages", Output::ScreenLater, 2}),
    [](const auto& row) { return row.param.name; });

}  // namespace zv::test
