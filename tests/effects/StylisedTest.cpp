#include "StylisedTest.h"

#include "gl/ConfigGL.h"
#include "support/AllocationCounter.h"

namespace zv::test {

class StylisedLookTest : public StylisedTest, public testing::WithParamInterface<StylisedLook> {};

// Steps are draws. A chain draws a member once a frame, wherever it stands and whether or not the engine also
// draws to the screen from the last render texture; showing the chain's own output there draws it again.
TEST_P(StylisedLookTest, StepsOnceAFrameInAChainAndOnceMoreWhereItIsShownAgain) {
    const Picture picture = Picture::noise(kWidth, kHeight);
    for (std::size_t place = 0; place < 3; ++place) {
        start(makeSprite(picture), kSize);
        media->init(input, kSize, RenderTexture::create(kSize, nullptr, PXFORMAT_RGBA8888), place == 2);
        steps = 0;
        for (std::size_t i = 0; i < 3; ++i)
            chain->add(i == place ? GetParam().make(kSize, &steps)
                                  : RenderTexture::create(kSize, nullptr, PXFORMAT_RGBA8888),
                       true, false);
        for (int i = 0; i < 5; ++i)
            frame();
        EXPECT_EQ(steps, 5) << "at place " << place;
    }
    startLook(GetParam(), picture);
    frame();
    media->setRenderToScreen(true);
    steps = 0;
    frame();
    EXPECT_EQ(steps, 2) << "the chain's output is shown a second time";
}

TEST_P(StylisedLookTest, ASteadyCycleMakesAndAllocatesNothing) {
    startLook(GetParam(), Picture::noise(kWidth, kHeight));
    for (int i = 0; i < GetParam().cycle; ++i)
        frame();
    std::size_t most = 0, allocated = 0;
    for (int i = 0; i < GetParam().cycle; ++i) {
        const GLCallRecorder recorder;
        const AllocationCounter allocations;
        stage->onDrawSelf(Mat4());
        allocated += allocations.allocations();
        most = std::max(most, recorder.total());
        EXPECT_EQ(recorder.countObjectCalls() + recorder.countPrefix("glCompile"), 0U) << recorder.summary();
    }
    EXPECT_EQ(allocated, 0U);
    EXPECT_EQ(most, ConfigGL::getInstance()->supportVAO() ? GetParam().calls : GetParam().legacyCalls);
    stage->setProgram(Program::create("no shader", "no shader"));
    const GLCallRecorder recorder;
    stage->onDrawSelf(Mat4());
    EXPECT_EQ(recorder.countDraws(), 0U) << "a program that does not link draws nothing";
}

INSTANTIATE_TEST_SUITE_P(Looks, StylisedLookTest, testing::ValuesIn(kLooks),
                         [](const auto& row) { return std::string(row.param.name); });

// The counters of the other looks show in their pictures.
TEST_F(StylisedTest, The70sSendTheirTimeForACycleAndTheSizeOnceForEach) {
    startLook(kLooks[0], Picture(30, 20, {128, 128, 128, 255}));
    GLCallRecorder recorder;
    for (int i = 0; i < 200; ++i) {
        stage->onDrawSelf(Mat4());
        EXPECT_FLOAT_EQ(valueInGL(*stage->getProgram(), "time"), static_cast<float>(i % 100 + 1) * 0.1F);
    }
    stage->resetSize({60, 40});
    stage->onDrawSelf(Mat4());
    EXPECT_EQ(recorder.takeValuesOf("glUniform2fv"), (std::vector<float>{30, 20, 60, 40}));
}

}  // namespace zv::test
