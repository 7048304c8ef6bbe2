#include <GL/glew.h>

#include <string>
#include <vector>

#include "PoisonousHost.h"
#include "gl/HostState.h"
#include "scene/RenderTextureChain.h"
#include "support/GLCallRecorder.h"
#include "support/MediaTest.h"
#include "support/PictureCompare.h"

namespace zv::test {

namespace {

/// Uploads and reads back in the middle of a frame.
struct BusySprite : Sprite {
    Picture picture = Picture::noise(3, 3, 5, false);
    std::vector<Pixel> read;
    void onUpdateSelf(float) override {
        // Without a depth or stencil buffer the picture does not tell.
        EXPECT_FALSE(glIsEnabled(GL_DEPTH_TEST) || glIsEnabled(GL_STENCIL_TEST));
        for (unsigned char& byte : picture.rgba) {
            byte = static_cast<unsigned char>(byte + 3);
        }
        getTexture(0)->updateWithData(picture.rgba.data(), picture.rgba.size());
    }
    void onDrawSelf(const Mat4& matrix) override {
        Sprite::onDrawSelf(matrix);
        glActiveTexture(GL_TEXTURE0);
        HostState::beforeBinding(0, GL_TEXTURE_RECTANGLE);
        glBindTexture(GL_TEXTURE_RECTANGLE, 0);
        HostState::beforePixels();
        read.push_back(Picture::readFrameBuffer(1, 1).at(0, 0));
    }
};

struct SwitchingNode : Node {
    void onUpdateSelf(float) override { ZVMediaEngine::getCurrent()->setKeepHostState(false); }
};

}  // namespace

class HostStateTest : public MediaTest {
protected:
    /// A pipeline with a blended sticker that changes each frame, shown on the screen, too.
    void setUpPipeline() {
        media->init(makeSprite(Picture::noise(kWidth, kHeight)), kSize, makeTexture(Picture(kWidth, kHeight)),
                    true);
        RenderTextureChain* chain = RenderTextureChain::create(kSize, media->getFrameBuffer());
        chain->add(RenderTexture::create(kSize, media->getFrameBuffer(), PXFORMAT_RGBA8888), true, false);
        media->setRenderChain(chain);
        sticker = new BusySprite;
        sticker->autorelease();
        ASSERT_TRUE(sticker->init(makeTexture(sticker->picture), false));
        sticker->setBlendFunc(BlendFunc::ALPHA_NON_PREMULTIPLIED);
        for (unsigned char slot = 1; slot < kHostUnits; ++slot) {
            sticker->setTexture(makeTexture(sticker->picture), slot, nullptr);
        }
        media->addSticker(sticker);
        media->setAutoUpdate(true);
    }

    /// The pictures of the first frames, the output's and the screen's in turn.
    std::vector<Picture> play(bool poisoned) {
        std::vector<Picture> pictures;
        for (unsigned i = 0; i < 3; ++i) {
            auto host = poisoned ? std::make_unique<PoisonousHost>(screen) : nullptr;
            const Snapshot before = snapshot();
            media->render();
            EXPECT_EQ(poisoned ? differences(snapshot(), before) : Snapshot(), Snapshot());
            host.reset();
            pictures.push_back(output());
            pictures.push_back(shown());
        }
        return pictures;
    }

    BusySprite* sticker = nullptr;
};

TEST_F(HostStateTest, PoisonedStateNeitherSpoilsThePictureNorIsSpoilt) {
    setUpPipeline();
    const std::vector<Picture> expected = play(false);
    const std::vector<Pixel> expectedPixels = sticker->read;
    TearDown();
    SetUp();

    setUpPipeline();
    media->setKeepHostState(true);
    const std::vector<Picture> actual = play(true);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        expectSame(actual[i], expected[i], "poisoned-" + std::to_string(i));
    }
    EXPECT_EQ(sticker->read, expectedPixels);
}

TEST_F(HostStateTest, PlainStateComesBackFromEveryRenderOperation) {
    setUpPipeline();
    media->setKeepHostState(true);
    frame();
    const Snapshot before = snapshot();
    media->render();
    media->renderToLast();
    media->renderToScreen();
    EXPECT_EQ(differences(snapshot(), before), Snapshot());

    // Switched off while a frame is under way, it still ends what it began.
    auto* node = new SwitchingNode;
    node->autorelease();
    media->addSticker(node);
    media->render();
    EXPECT_EQ(differences(snapshot(), before), Snapshot());
    EXPECT_FALSE(media->isKeepHostState());
}

TEST_F(HostStateTest, OneWithinAnotherGivesBackWhatItFound) {
    GLuint names[3] = {};
    glGenTextures(3, names);
    for (GLuint unit = 0; unit < 3; ++unit) {
        glActiveTexture(GL_TEXTURE0 + unit);
        glBindTexture(GL_TEXTURE_2D, names[unit]);
    }
    const Snapshot before = snapshot();
    HostState outer, inner;
    const auto bindNothing = [](GLuint unit) {
        glActiveTexture(GL_TEXTURE0 + unit);
        HostState::beforeBinding(unit, GL_TEXTURE_2D);
        glBindTexture(GL_TEXTURE_2D, 0);
    };
    outer.shield();
    bindNothing(0);
    inner.shield();
    EXPECT_FALSE(outer.shield() || inner.shield()) << "each is shielded already";
    bindNothing(0);
    bindNothing(1);
    inner.restore();
    bindNothing(1);
    bindNothing(2);
    outer.restore();
    EXPECT_EQ(differences(snapshot(), before), Snapshot());
    glDeleteTextures(3, names);
}

TEST_F(HostStateTest, BlendingIsSetAnewEachFrame) {
    // Only blended drawing: if the engine went on remembering its own blending, it would not ask for it again
    // after the host's, which does not blend, was put back.
    Sprite* input = makeSprite(Picture(kWidth, kHeight, {40, 50, 60, 255}));
    input->setBlendFunc(BlendFunc::ADDITIVE);
    media->init(input, kSize, makeTexture(Picture(kWidth, kHeight)), false);
    media->setKeepHostState(true);
    for (int i = 0; i < 3; ++i) {
        frame();
    }
    expectSame(output(), Picture(kWidth, kHeight, {120, 150, 180, 255}), "added-three-times");
}

TEST_F(HostStateTest, CostsNothingWhenOffAndFewCallsWhenOn) {
    setUpPipeline();
    GLCallRecorder recorder;
    const auto calls = [&](bool keep) {
        media->setKeepHostState(keep);
        media->render();
        recorder.clear();
        media->render();
        return recorder.total();
    };
    calls(true);
    const std::size_t off = calls(false);
    EXPECT_EQ(recorder.count("glGetIntegerv"), 1U) << "only the host's frame buffer is asked for";
    // This frame does all that there is to keep: it binds four units and a rectangle, blends, uploads, reads.
    EXPECT_LE(calls(true) - off, 60U) << recorder.summary();
    const PoisonousHost host(screen);
    EXPECT_LE(calls(true) - off, 107U) << "with every item away from its default";
}

}  // namespace zv::test
