#include "gl/HostState.h"

#include <GL/glew.h>

#include <string>
#include <vector>

#include "PoisonousHost.h"
#include "gl/RenderState.h"
#include "scene/RenderTextureChain.h"
#include "support/GLCallRecorder.h"
#include "support/MediaTest.h"
#include "support/PictureCompare.h"

namespace zv::test {

namespace {

/// Uploads and reads back in the middle of a frame.
struct BusySprite : Sprite {
    std::vector<unsigned char> pixels;
    int uploads = 0;
    void onUpdateSelf(float) override {
        ++uploads;
        for (unsigned char& byte : pixels) {
            byte = static_cast<unsigned char>(byte + 3);
        }
        getTexture(0)->updateWithData(pixels.data(), pixels.size());
    }
    void onDrawSelf(const Mat4& matrix) override {
        Sprite::onDrawSelf(matrix);
        glActiveTexture(GL_TEXTURE0);
        glBindTexture(GL_TEXTURE_RECTANGLE, 0);
        Pixel pixel{};
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
        read.push_back(pixel);
    }
    std::vector<Pixel> read;
};

}  // namespace

class HostStateTest : public MediaTest {
protected:
    bool isCore() const { return kind() == Kind::Core; }

    /// A pipeline with a blended sticker that changes each frame, shown on the screen, too.
    void setUpPipeline() {
        media->init(makeSprite(Picture::noise(kWidth, kHeight)), kSize, makeTexture(Picture(kWidth, kHeight)),
                    true);
        RenderTextureChain* chain = RenderTextureChain::create(kSize, media->getFrameBuffer());
        chain->add(RenderTexture::create(kSize, media->getFrameBuffer(), PXFORMAT_RGBA8888), true, false);
        media->setRenderChain(chain);
        sticker = new BusySprite;
        sticker->autorelease();
        const Picture dots = Picture::noise(3, 3, 5, false);
        sticker->pixels = dots.rgba;
        ASSERT_TRUE(sticker->init(makeTexture(dots), false));
        sticker->setBlendFunc(BlendFunc::ALPHA_NON_PREMULTIPLIED);
        for (unsigned char slot = 1; slot < kHostUnits; ++slot) {
            sticker->setTexture(makeTexture(dots), slot, nullptr);
        }
        media->addSticker(sticker);
        media->setAutoUpdate(true);
    }

    BusySprite* sticker = nullptr;

    /// The pictures of the first frames, the output's and the screen's in turn.
    template <class BeforeFrame, class AfterFrame>
    std::vector<Picture> play(BeforeFrame&& before, AfterFrame&& after) {
        std::vector<Picture> pictures;
        for (unsigned i = 0; i < 3; ++i) {
            before(i);
            media->render();
            after(i);
            pictures.push_back(output());
            pictures.push_back(shown());
        }
        return pictures;
    }
};

TEST_F(HostStateTest, PoisonedStateNeitherSpoilsThePictureNorIsSpoilt) {
    setUpPipeline();
    const auto nothing = [](unsigned) {};
    const std::vector<Picture> expected = play(nothing, nothing);
    const std::vector<Pixel> expectedPixels = sticker->read;
    TearDown();
    SetUp();

    setUpPipeline();
    media->setKeepHostState(true);
    std::unique_ptr<PoisonousHost> host;
    Snapshot before;
    const auto poison = [&](unsigned frameNumber) {
        host = std::make_unique<PoisonousHost>(screen, isCore(), frameNumber % 2);
        before = snapshot(isCore());
    };
    const auto check = [&](unsigned frameNumber) {
        const Snapshot after = snapshot(isCore());
        for (const auto& entry : before) {
            EXPECT_EQ(after.at(entry.first), entry.second) << entry.first << ", frame " << frameNumber;
        }
        host.reset();
    };
    const std::vector<Picture> actual = play(poison, check);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        expectSame(actual[i], expected[i], "poisoned-" + std::to_string(i));
    }
    EXPECT_EQ(sticker->read, expectedPixels);
}

TEST_F(HostStateTest, ShieldGivesPlainStateAndRestoreTakesBackWhateverWasDoneToIt) {
    for (unsigned variant : {0U, 1U}) {
        const Snapshot plain = snapshot(isCore());
        const PoisonousHost host(screen, isCore(), variant);
        const Snapshot before = snapshot(isCore());
        HostState state;
        state.shield();
        const Snapshot shielded = snapshot(isCore());
        for (const char* name : {"active",         "pack",           "unpack",        "blend",
                                 "equation",       "equation alpha", "scissor",       "depth",
                                 "stencil",        "cull",           "mask",          "unpack alignment",
                                 "unpack row",     "unpack rows",    "unpack pixels", "unpack swap",
                                 "pack alignment", "pack row",       "pack rows",     "pack pixels"}) {
            EXPECT_EQ(shielded.at(name), plain.at(name)) << name;
        }
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glEnable(GL_BLEND);
        glBlendFunc(GL_ONE, GL_ONE);
        glViewport(7, 7, 7, 7);
        glActiveTexture(GL_TEXTURE0 + 1);
        glBindTexture(GL_TEXTURE_2D, 0);
        glUseProgram(0);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        state.restore();
        EXPECT_EQ(snapshot(isCore()), before) << variant;
    }
}

TEST_F(HostStateTest, PlainStateComesBackFromEveryRenderOperation) {
    setUpPipeline();
    media->setKeepHostState(true);
    frame();
    const Snapshot before = snapshot(isCore());
    media->render();
    media->renderToLast();
    media->renderToScreen();
    EXPECT_EQ(snapshot(isCore()), before);
    EXPECT_EQ(media->getRenderState()->getCurBlend(), BlendFunc::DISABLE)
        << "what was remembered is forgotten";

    // Switched off while a frame is under way, it still ends what it began.
    struct Switch : Node {
        void onUpdateSelf(float) override { ZVMediaEngine::getCurrent()->setKeepHostState(false); }
    };
    auto* node = new Switch;
    node->autorelease();
    media->addSticker(node);
    media->render();
    EXPECT_EQ(snapshot(isCore()), before);
    EXPECT_FALSE(media->isKeepHostState());
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
        EXPECT_EQ(media->getRenderState()->getCurBlend(), BlendFunc::DISABLE);
    }
    expectSame(output(), Picture(kWidth, kHeight, {120, 150, 180, 255}), "added-three-times");
}

TEST_F(HostStateTest, CostsNothingWhenOffAndFewCallsWhenOn) {
    ZV_NEEDS_RECORDER();
    setUpPipeline();
    media->setKeepHostState(true);
    frame();
    media->setKeepHostState(false);
    frame();
    GLCallRecorder recorder;
    media->render();
    const std::size_t off = recorder.total();
    EXPECT_EQ(recorder.count("glGetIntegerv"), 1U) << "only the host's frame buffer is asked for";

    media->setKeepHostState(true);
    media->render();
    recorder.clear();
    media->render();
    // Setting the blend function anew each frame belongs to the cost, and where there are both vertex arrays
    // and the old fixed state, two more questions.
    EXPECT_LE(recorder.total() - off, kind() == Kind::Compatibility ? 62U : 60U) << recorder.summary();
    {
        const PoisonousHost host(screen, isCore(), 0);
        recorder.clear();
        media->render();
        EXPECT_LE(recorder.total() - off, 112U) << "with every item away from its default";
    }
}

}  // namespace zv::test
