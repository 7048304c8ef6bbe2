#include "effects/HsvNode.h"

#include "core/FileUtil.h"
#include "gl/Program.h"
#include "support/EngineTest.h"
#include "support/GLCallRecorder.h"
#include "support/TempDir.h"

namespace zv::test {

using HsvNodeTest = EngineTest;

TEST_F(HsvNodeTest, SendsTheWholeVectorAtOnceAndOnlyWhenItChanges) {
    ZV_NEEDS_RECORDER();
    GLCallRecorder recorder;
    HsvNode* node = HsvNode::create({8, 4}, nullptr, PXFORMAT_RGBA8888);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->getSize(), Size16(8, 4));
    const auto sent = [&] {
        std::vector<std::vector<float>> vectors;
        for (const GLCall& call : recorder.callsOf("glUniform3fv")) {
            EXPECT_EQ(call.integer(1), 1);
            vectors.push_back(call.values);
        }
        recorder.clear();
        return vectors;
    };
    using Vectors = std::vector<std::vector<float>>;
    EXPECT_EQ(sent(), (Vectors{{1, 1, 1}}));
    node->setSaturation(0);
    EXPECT_EQ(sent(), (Vectors{{1, 0, 1}}));
    node->setSaturation(0);
    EXPECT_EQ(sent(), Vectors{});
    node->setHue(-3);
    node->setValue(100);
    EXPECT_EQ(sent(), (Vectors{{-3, 0, 1}, {-3, 0, 100}})) << "values go out as given";
    EXPECT_EQ(node->getHue(), -3);
    EXPECT_EQ(node->getSaturation(), 0);
    EXPECT_EQ(node->getValue(), 100);

    // Another program in use does not get the vector.
    HsvNode* other = HsvNode::create({8, 4}, nullptr, PXFORMAT_RGBA8888);
    recorder.clear();
    node->setHue(2);
    EXPECT_EQ(recorder.callsOf("glUseProgram").back().integer(0), node->getProgram()->getName());
    EXPECT_EQ(other->getHue(), 1);
    EXPECT_EQ(sent(), (Vectors{{2, 0, 100}}));
}

TEST_F(HsvNodeTest, AProgramWithoutTheUniformKeepsTheValuesToItself) {
    const TempDir root;
    root.write("zv_res/shaders/ZvShaderTexturePosition.vert",
               "attribute vec4 a_position;\nvoid main() { gl_Position = a_position; }\n");
    for (const char* name : {"ZvShaderHSV.frag", "ZvShaderTexturePosition.frag"}) {
        root.write(std::string("zv_res/shaders/") + name, "void main() { gl_FragColor = vec4(1.0); }\n");
    }
    FileUtil::getInstance()->setZvRoot(root.path());
    HsvNode* node = HsvNode::create({8, 4}, nullptr, PXFORMAT_RGBA8888);
    ASSERT_NE(node, nullptr);
    ASSERT_NE(node->getProgram()->getName(), 0U);
    node->setHue(0.5F);
    EXPECT_EQ(node->getHue(), 0.5F);
}

}  // namespace zv::test
