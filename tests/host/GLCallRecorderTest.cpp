#include "support/GLCallRecorder.h"

#include <GL/glew.h>
#include <gtest/gtest-spi.h>

#include <memory>

#include "gl/RenderState.h"
#include "support/AllocationCounter.h"
#include "support/GLTest.h"

namespace zv::test {

using GLCallRecorderTest = GLTest;

TEST_F(GLCallRecorderTest, SeesCallsOfTestAndLibraryUntilItsEndAndLetsThemThrough) {
    {
        GLCallRecorder recorder;
        renderState()->pushViewPort(ViewPort(1, 2, 30, 40), false);
        renderState()->bindVbo(GL_ARRAY_BUFFER, 0);
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        EXPECT_EQ(recorder.count("glFinish"), 0u);
        EXPECT_EQ(recorder.callsOf("glViewport").at(0).args, (std::vector<double>{1, 2, 30, 40}));
        EXPECT_EQ(recorder.callsOf("glBindBuffer").at(0).integer(0), GL_ARRAY_BUFFER);
        EXPECT_EQ(recorder.summary(), "2 glBindBuffer\n1 glViewport\n");
        recorder.clear();
        GLuint buffer = 0;
        glGenBuffers(1, &buffer);
        EXPECT_NE(buffer, 0u);
        glDeleteBuffers(1, &buffer);
        EXPECT_EQ(recorder.countObjectCalls(), 2u);
        EXPECT_TRUE(recorder.newerThan(150).empty());
        EXPECT_EQ(recorder.newerThan(140), (std::vector<std::string>{"glDeleteBuffers", "glGenBuffers"}));
    }
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    GLCallRecorder second;
    EXPECT_EQ(second.total(), 0u);
}

TEST_F(GLCallRecorderTest, UnwatchedNamesAndPendingErrorsFail) {
    static std::unique_ptr<GLCallRecorder> recorder;
    recorder = std::make_unique<GLCallRecorder>();
    EXPECT_NONFATAL_FAILURE(recorder->count("glBindBufer"), "glBindBufer is not in GLCallTable.h");
    recorder.reset();
    // The fixture's own check, run on an error made here.
    glEnable(0x1234);
    EXPECT_NONFATAL_FAILURE(GLTest::TearDown(), "GL error pending");
    GLTest::SetUp();
}

TEST_F(GLCallRecorderTest, AllocationsAreCountedExceptTheRecordersOwn) {
    if (!AllocationCounter::available()) {
        GTEST_SKIP() << "operator new belongs to the sanitizer in this build";
    }
    const GLCallRecorder recorder;
    const AllocationCounter counter;
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    EXPECT_EQ(counter.allocations(), 0u);
    const auto block = std::make_unique<std::vector<int>>(100);
    EXPECT_EQ(counter.allocations(), 2u);
}

}  // namespace zv::test
