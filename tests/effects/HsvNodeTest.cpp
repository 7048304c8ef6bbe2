#include "effects/HsvNode.h"

#include "gl/Program.h"
#include "support/EngineTest.h"
#include "support/GLCallRecorder.h"

namespace zv::test {

using HsvNodeTest = EngineTest;

TEST_F(HsvNodeTest, SendsTheWholeVectorAtOnceAndOnlyWhenItChanges) {
    GLCallRecorder recorder;
    HsvNode* node = HsvNode::create({8, 4}, nullptr, PXFORMAT_RGBA8888);
    using Values = std::vector<float>;
    const auto sent = [&] { return recorder.takeValuesOf("glUniform3fv"); };
    EXPECT_EQ(sent(), (Values{1, 1, 1}));
    node->setSaturation(0);
    EXPECT_EQ(sent(), (Values{1, 0, 1}));
    node->setSaturation(0);
    EXPECT_EQ(sent(), Values{});
    node->setHue(-3);
    node->setValue(100);
    EXPECT_EQ(sent(), (Values{-3, 0, 1, -3, 0, 100})) << "values go out as given";
    EXPECT_TRUE(node->getHue() == -3 && node->getSaturation() == 0 && node->getValue() == 100);

    // Another program in use does not get the vector.
    HsvNode* other = HsvNode::create({8, 4}, nullptr, PXFORMAT_RGBA8888);
    recorder.clear();
    node->setHue(2);
    EXPECT_EQ(recorder.callsOf("glUseProgram").back().integer(0), node->getProgram()->getName());
    EXPECT_EQ(other->getHue(), 1);
    EXPECT_EQ(sent(), (Values{2, 0, 100}));
}

}  // namespace zv::test
