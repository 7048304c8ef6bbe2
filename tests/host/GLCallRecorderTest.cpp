#include "support/GLCallRecorder.h"

#include <GL/glew.h>
#include <gtest/gtest-spi.h>

#include <memory>

#include "gl/RenderState.h"
#include "support/AllocationCounter.h"
#include "support/GLTest.h"

namespace zv::test {

class GLCallRecorderTest : public GLTest {
protected:
    void SetUp() override {
        ZV_NEEDS_RECORDER();
        GLTest::SetUp();
    }
};

TEST_F(GLCallRecorderTest, SeesCallsByNameAndByPointerUntilItsEnd) {
    const auto* const before = reinterpret_cast<void*>(__glewBindBuffer);
    {
        GLCallRecorder recorder;
        glViewport(1, 2, 30, 40);
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        EXPECT_EQ(recorder.total(), 3u) << recorder.summary();
        EXPECT_EQ(recorder.count("glBindBuffer"), 2u);
        EXPECT_EQ(recorder.count("glFinish"), 0u);
        const GLCall viewport = recorder.callsOf("glViewport").at(0);
        EXPECT_EQ(viewport.args, (std::vector<double>{1, 2, 30, 40}));
        EXPECT_EQ(viewport.version, 110);
        EXPECT_EQ(recorder.summary(), "2 glBindBuffer\n1 glViewport\n");
        recorder.clear();
        EXPECT_EQ(recorder.total(), 0u);
    }
    EXPECT_EQ(reinterpret_cast<void*>(__glewBindBuffer), before);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    GLCallRecorder second;
    EXPECT_EQ(second.total(), 0u);
}

TEST_F(GLCallRecorderTest, SeesWhatTheLibraryCalls) {
    GLCallRecorder recorder;
    renderState()->pushViewPort(ViewPort(3, 4, 5, 6), false);
    renderState()->bindVbo(GL_ARRAY_BUFFER, 0);
    EXPECT_EQ(recorder.callsOf("glViewport").at(0).args, (std::vector<double>{3, 4, 5, 6}))
        << recorder.summary();
    EXPECT_EQ(recorder.callsOf("glBindBuffer").at(0).integer(0), GL_ARRAY_BUFFER);
}

TEST_F(GLCallRecorderTest, CallsReachTheDriver) {
    GLCallRecorder recorder;
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    GLint bound = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_NE(texture, 0u);
    EXPECT_EQ(static_cast<GLuint>(bound), texture);
    glDeleteTextures(1, &texture);
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    EXPECT_NE(buffer, 0u);
    glDeleteBuffers(1, &buffer);
    EXPECT_EQ(recorder.countObjectCalls(), 4u);
    EXPECT_EQ(recorder.countPrefix("glGen"), 2u);
}

TEST_F(GLCallRecorderTest, KeepsSourcesNamesAndUniformValues) {
    GLCallRecorder recorder;
    const GLuint shader = glCreateShader(GL_VERTEX_SHADER);
    const GLchar* const parts[] = {"one ", "two, cut", "ends"};
    const GLint lengths[] = {-1, 3, -1};
    glShaderSource(shader, 3, parts, lengths);
    glShaderSource(shader, 1, parts, nullptr);
    const GLuint program = glCreateProgram();
    glBindAttribLocation(program, 3, "a_position");
    glUseProgram(0);
    // Without a program in use these are errors to GL; what was asked for is recorded all the same.
    const GLfloat values[] = {1, 2, 3, 4, 5, 6, 7, 8};
    const GLint integers[] = {9, 10};
    glUniform2fv(7, 2, values);
    glUniform2iv(7, 1, integers);
    glUniform3f(8, 0.5f, 0.25f, 2);
    const GLfloat matrix[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    glUniformMatrix4fv(9, 1, GL_FALSE, matrix);
    glUniformMatrix2x3fv(9, 1, GL_FALSE, matrix);
    while (glGetError() != GL_NO_ERROR) {
    }
    EXPECT_EQ(recorder.callsOf("glShaderSource").at(0).text, "one twoends");
    EXPECT_EQ(recorder.callsOf("glShaderSource").at(1).text, "one ");
    EXPECT_EQ(recorder.callsOf("glBindAttribLocation").at(0).text, "a_position");
    EXPECT_EQ(recorder.callsOf("glUniform2fv").at(0).integer(0), 7);
    EXPECT_EQ(recorder.callsOf("glUniform2fv").at(0).values, (std::vector<float>{1, 2, 3, 4}));
    EXPECT_EQ(recorder.callsOf("glUniform2iv").at(0).values, (std::vector<float>{9, 10}));
    EXPECT_EQ(recorder.callsOf("glUniform3f").at(0).values, (std::vector<float>{0.5f, 0.25f, 2}));
    EXPECT_EQ(recorder.callsOf("glUniformMatrix4fv").at(0).values,
              std::vector<float>(std::begin(matrix), std::end(matrix)));
    EXPECT_EQ(recorder.callsOf("glUniformMatrix2x3fv").at(0).values.size(), 6u);
    glDeleteShader(shader);
    glDeleteProgram(program);
}

TEST_F(GLCallRecorderTest, TellsCallsNewerThanAVersion) {
    GLCallRecorder recorder;
    glFlush();
    glBlendFuncSeparate(GL_ONE, GL_ZERO, GL_ONE, GL_ZERO);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    EXPECT_TRUE(recorder.newerThan(210).empty());
    EXPECT_EQ(recorder.newerThan(130), std::vector<std::string>{"glBlendFuncSeparate"});
    if (kind() != Kind::Legacy) {
        glBindVertexArray(0);
        EXPECT_EQ(recorder.newerThan(210), std::vector<std::string>{"glBindVertexArray"});
    }
}

TEST_F(GLCallRecorderTest, ANameThatIsNotWatchedFailsInsteadOfCountingNothing) {
    static std::unique_ptr<GLCallRecorder> recorder;
    recorder = std::make_unique<GLCallRecorder>();
    EXPECT_NONFATAL_FAILURE(recorder->count("glBindBufer"), "glBindBufer is not in GLCallTable.h");
    recorder.reset();
}

TEST_F(GLCallRecorderTest, AllocationsAreCountedExceptTheRecordersOwn) {
    ZV_NEEDS_ALLOCATION_COUNTER();
    GLCallRecorder recorder;
    AllocationCounter counter;
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glFlush();
    EXPECT_EQ(counter.allocations(), 0u);
    auto block = std::make_unique<std::vector<int>>(100);
    EXPECT_EQ(counter.allocations(), 2u);
    EXPECT_EQ(counter.bytes(), sizeof(std::vector<int>) + 100 * sizeof(int));
    AllocationCounter::pause();
    std::make_unique<int>(1).reset();
    AllocationCounter::resume();
    EXPECT_EQ(counter.frees(), 0u);
    block.reset();
    EXPECT_EQ(counter.frees(), 2u);
    EXPECT_EQ(counter.allocations(), 2u);
}

TEST_F(GLCallRecorderTest, ATestThatLeavesAnErrorPendingFails) {
    // The fixture's own check, run on an error made here.
    glEnable(0x1234);
    EXPECT_NONFATAL_FAILURE(GLTest::TearDown(), "GL error pending");
    GLTest::SetUp();
}

}  // namespace zv::test
