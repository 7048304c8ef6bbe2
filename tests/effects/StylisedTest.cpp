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
    EXPECT_TRUE(!AllocationCounter::available() || allocated == 0U) << allocated;
    EXPECT_EQ(most, ConfigGL::getInstance()->supportVAO() ? GetParam().calls : GetParam().legacyCalls);
    stage->setProgram(Program::create("no shader", "no shader"));
    const GLCallRecorder recorder;
    stage->onDrawSelf(Mat4());
    EXPECT_EQ(recorder.countDraws(), 0U) << "a program that does not link draws nothing";
}

INSTANTIATE_TEST_SUITE_P(Looks, StylisedLookTest, testing::ValuesIn(kLooks),
                         [](const auto& row) { return std::string(row.param.name); });

namespace {

/// What GL has last been sent, by uniform, while one frame is drawn; kept from frame to frame.
class Sent {
public:
    explicit Sent(Program* program) : mProgram(program) {}

    void draw(RenderTexture& stage) {
        const GLCallRecorder recorder;
        stage.onDrawSelf(Mat4());
        for (const GLCall& call : recorder.calls()) {
            const std::string_view name = call.name;
            if (name == "glUniform1f" || name == "glUniform2fv")
                mValues[static_cast<int>(call.integer(0))].push_back(call.values);
        }
        draws = recorder.count("glDrawArrays") - 1;
        for (const GLCall& call : recorder.callsOf("glMultiDrawArrays"))
            draws += static_cast<std::size_t>(call.integer(3));
    }
    /// What a uniform has been set to so far, in order.
    std::vector<std::vector<float>> all(const char* name) {
        return mValues[mProgram->getUniform(name)->location];
    }
    float operator()(const char* name) { return all(name).back().at(0); }

    std::size_t draws = 0;  ///< besides the picture

private:
    Program* mProgram;
    std::unordered_map<int, std::vector<std::vector<float>>> mValues;
};

}  // namespace

TEST_F(StylisedTest, SendsTheCountersOfTwoCycles) {
    const Picture picture(30, 20, {128, 128, 128, 255});
    startLook(kLooks[0], picture);
    Sent seventies(stage->getProgram());
    for (int i = 0; i < 200; ++i) {
        seventies.draw(*stage);
        EXPECT_FLOAT_EQ(seventies("time"), static_cast<float>(i % 100 + 1) * 0.1F) << i;
    }
    stage->resetSize({60, 40});
    seventies.draw(*stage);
    EXPECT_EQ(seventies.all("frameSize"), (std::vector<std::vector<float>>{{30, 20}, {60, 40}}));

    startLook(kLooks[1], picture);
    constexpr std::size_t strokes[] = {28, 27, 19, 18, 20, 17, 16, 1, 16, 17, 20, 18, 19, 27};
    Sent graffiti(stage->getProgram());
    for (int i = 0; i < 280; ++i) {
        graffiti.draw(*stage);
        const int step = i % 140 / 10;
        EXPECT_EQ(graffiti.draws, strokes[step]) << i;
        // An odd step ends at 0, which the even one after it keeps.
        const float shakes[] = {0.0F, 0.015F, -0.015F};
        EXPECT_EQ(graffiti("shakeX"), step % 2 == 1 ? shakes[i % 10 % 3] : 0.0F) << i;
        EXPECT_EQ(graffiti.all("fWhichTypeOfDrawing").size(), 2U * static_cast<std::size_t>(i + 1));
    }
    EXPECT_EQ(graffiti.all("fWhichTypeOfDrawing").front(), std::vector<float>{0.1F})
        << "the picture is first";
    EXPECT_EQ(graffiti.all("fWhichTypeOfDrawing").back(), std::vector<float>{1.0F});
    EXPECT_FLOAT_EQ(graffiti("texelWidthOffset"), 0.1F);
    EXPECT_FLOAT_EQ(graffiti("texelHeightOffset"), 0.15F);

    startLook(kLooks[3], picture);
    Sent soul(stage->getProgram());
    for (int i = 0; i < 34; ++i) {
        soul.draw(*stage);
        const int counter = (i + 1) % 17;
        const double grown = counter < 6 ? 1.0 : (counter - 5) / 12.0;
        EXPECT_NEAR(soul("fShadowAlpha"), 0.4 - 0.4 * grown, 1e-6) << i;
        EXPECT_NEAR(soul("fShadowScale"), 1.0 + 0.7 * grown, 1e-6) << i;
    }
}

}  // namespace zv::test
