#include "gl/RenderState.h"

#include <array>
#include <utility>
#include <vector>

#include "gl/FrameBuffer.h"
#include "gl/GLChecks.h"
#include "gl/Program.h"

namespace zv::test {

using RenderStateTest = GLTest;

TEST_F(RenderStateTest, FrameBuffersAreBoundOnlyWhenTheNameChanges) {
    FrameBuffer* first = FrameBuffer::create();
    FrameBuffer* second = FrameBuffer::create();
    FrameBuffer* firstAgain = FrameBuffer::createDefault(static_cast<int>(first->getFBO()));
    using Names = std::vector<long long>;
    const Names none, toFirst{first->getFBO()}, toSecond{second->getFBO()}, toDefault{0};
    // Null stands for a pop.
    const std::pair<FrameBuffer*, Names> steps[] = {
        {first, toFirst},   {first, none},   {firstAgain, none}, {second, toSecond},
        {nullptr, toFirst}, {nullptr, none}, {nullptr, none},    {nullptr, toDefault}};
    GLCallRecorder recorder;
    int step = 0;
    for (const auto& [pushed, expected] : steps) {
        recorder.clear();
        pushed != nullptr ? renderState()->pushFrameBuffer(pushed) : renderState()->popFrameBuffer();
        EXPECT_EQ(recorder.argumentsOf("glBindFramebuffer", 0), Names(expected.size(), GL_FRAMEBUFFER));
        EXPECT_EQ(recorder.argumentsOf("glBindFramebuffer", 1), expected) << "step " << step++;
        EXPECT_EQ(integer(GL_FRAMEBUFFER_BINDING), renderState()->getCurFBO());
    }
}

TEST_F(RenderStateTest, BeginTakesTheBoundFrameBufferAsTheDefaultOne) {
    FrameBuffer* host = FrameBuffer::create();
    FrameBuffer* ours = FrameBuffer::create();
    RenderState& state = *renderState();
    state.pushFrameBuffer(ours);  // a frame that ended without its pop
    glBindFramebuffer(GL_FRAMEBUFFER, host->getFBO());
    state.begin();
    EXPECT_EQ(state.getCurFBO(), host->getFBO());
    state.pushFrameBuffer(ours);
    state.popFrameBuffer();
    EXPECT_EQ(integer(GL_FRAMEBUFFER_BINDING), host->getFBO());
    EXPECT_EQ(RenderState().getCurFBO(), host->getFBO()) << "read at construction too";
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

TEST_F(RenderStateTest, ViewPortsAreSetOnlyWhenTheTopChanges) {
    const ViewPort small(-2, 3, 60000, 4), large(-2, 3, 60000, 50);
    RenderState& state = *renderState();
    GLCallRecorder recorder;
    const auto push = [&](const ViewPort& viewPort, bool force = false) {
        recorder.clear();
        state.pushViewPort(viewPort, force);
        EXPECT_EQ(state.getCurViewPort(), viewPort);
        return recorder.total();
    };
    const auto pop = [&](unsigned short count) {
        recorder.clear();
        state.popViewPort(count);
        return recorder.total();
    };
    EXPECT_EQ(push(small), 1u) << "an empty stack knows nothing";
    EXPECT_EQ(push(small), 0u);
    EXPECT_EQ(push(small, true), 1u);
    EXPECT_EQ(push(large), 1u);
    EXPECT_EQ(recorder.callsOf("glViewport").at(0).args, (std::vector<double>{-2, 3, 60000, 50}));
    push(large);
    EXPECT_EQ(pop(1), 0u) << "below lies the same rectangle";
    EXPECT_EQ(pop(0), 0u);
    EXPECT_EQ(state.getCurViewPort(), large);
    EXPECT_EQ(push(small), 1u);
    EXPECT_EQ(pop(2), 0u) << "compared with the former top, not with what lay between";
    EXPECT_EQ(push(large), 1u);
    EXPECT_EQ(pop(1), 1u);
    EXPECT_EQ(recorder.callsOf("glViewport").at(0).args, (std::vector<double>{-2, 3, 60000, 4}));
    EXPECT_EQ(state.getCurViewPort(), small);
    EXPECT_EQ(pop(3), 0u) << "an emptied stack leaves the view port";
}

TEST_F(RenderStateTest, BlendCallsGLOnlyForAChange) {
    struct Step {
        const char* what;
        BlendFunc blend;
        std::array<std::size_t, 3> counts;  ///< of glEnable, glDisable, glBlendFunc
        bool reset = false;
    };
    // After a reset nothing is taken for granted, neither on nor off.
    const Step steps[] = {{"disabled from the start", BlendFunc::DISABLE, {0, 0, 0}},
                          {"first blend", BlendFunc::ADDITIVE, {1, 0, 1}},
                          {"same again", BlendFunc(GL_SRC_ALPHA, GL_ONE), {0, 0, 0}},
                          {"another one", BlendFunc::ALPHA_PREMULTIPLIED, {0, 0, 1}},
                          {"off", BlendFunc(), {0, 1, 0}},
                          {"on again", BlendFunc::ALPHA_NON_PREMULTIPLIED, {1, 0, 1}},
                          {"on after a reset", BlendFunc::ALPHA_NON_PREMULTIPLIED, {1, 0, 1}, true},
                          {"off after a reset", BlendFunc::DISABLE, {0, 1, 0}, true},
                          {"still off", BlendFunc::DISABLE, {0, 0, 0}}};
    GLCallRecorder recorder;
    for (const Step& step : steps) {
        if (step.reset)
            renderState()->reset();
        recorder.clear();
        renderState()->setBlend(step.blend);
        const std::array counts = {recorder.count("glEnable"), recorder.count("glDisable"),
                                   recorder.count("glBlendFunc")};
        EXPECT_EQ(counts, step.counts) << step.what;
        EXPECT_EQ(renderState()->getCurBlend(), step.blend) << step.what;
    }
    EXPECT_EQ(integer(GL_BLEND_SRC), GL_SRC_ALPHA);
    EXPECT_EQ(integer(GL_BLEND_DST), GL_ONE_MINUS_SRC_ALPHA);
}

TEST_F(RenderStateTest, ProgramsAndBuffersAreNotFiltered) {
    RenderState& state = *renderState();
    Program* program = Program::create("attribute vec4 a_position; void main() { gl_Position = a_position; }",
                                       "void main() { gl_FragColor = vec4(1.0); }");
    const GLCallRecorder recorder;
    state.useProgram(program);
    state.useProgram(program);
    EXPECT_EQ(recorder.count("glUseProgram"), 2u);
    EXPECT_EQ(state.getCurProgram(), program);
    state.useProgram(nullptr);
    EXPECT_EQ(integer(GL_CURRENT_PROGRAM), 0);

    const unsigned int filled = state.genVbo(GL_ARRAY_BUFFER, 4, "abc", GL_STATIC_DRAW);
    const unsigned int indices = state.genAndBindVbo(GL_ELEMENT_ARRAY_BUFFER);
    EXPECT_TRUE(integer(GL_ELEMENT_ARRAY_BUFFER_BINDING) == indices && state.getCurVbo() == indices);
    EXPECT_EQ(integer(GL_ARRAY_BUFFER_BINDING), filled);
    char stored[4] = {};
    glGetBufferSubData(GL_ARRAY_BUFFER, 0, 4, stored);
    EXPECT_STREQ(stored, "abc");
    const std::size_t before = recorder.count("glBindBuffer");
    state.bindVbo(GL_ARRAY_BUFFER, filled);
    state.bindVbo(GL_ARRAY_BUFFER, filled);
    EXPECT_EQ(recorder.count("glBindBuffer"), before + 2);
    state.unBindVaoVbo();
    EXPECT_TRUE(integer(GL_ARRAY_BUFFER_BINDING) == 0 && state.getCurVbo() == 0u);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    const unsigned int names[] = {filled, indices};
    glDeleteBuffers(2, names);
}

TEST_F(RenderStateTest, VertexArraysOfDeadDrawablesAreReusedClean) {
    GLCallRecorder recorder;
    unsigned int kept = 0;
    {
        RenderState state;
        recorder.clear();
        const unsigned int vao = state.genAndBindVao();
        if (kind() == Kind::Legacy) {
            state.bindVao(5);
            EXPECT_TRUE(vao == 0u && state.getCurVao() == 5u) << "recorded all the same";
            EXPECT_EQ(recorder.total(), 0u);
            return;
        }
        EXPECT_TRUE(integer(GL_VERTEX_ARRAY_BINDING) == vao && state.getCurVao() == vao);
        const unsigned int buffer = state.genVbo(GL_ARRAY_BUFFER, 64, nullptr, GL_STATIC_DRAW);
        for (int index = 0; index < AttribIndex::COUNT; ++index)
            state.vertexAttribPointer(AttribIndex::Enum(index), 2, GL_FLOAT, GL_FALSE, 8, nullptr);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffer);
        state.unBindVaoVbo();
        EXPECT_EQ(integer(GL_VERTEX_ARRAY_BINDING), 0);
        state.collectVao(0);
        state.collectVao(vao);
        const RenderState copy(state);
        RenderState assigned;
        assigned = state;

        EXPECT_EQ(state.genAndBindVao(), vao);
        for (GLuint index = 0; index < AttribIndex::COUNT; ++index) {
            GLint enabled = -1;
            glGetVertexAttribiv(index, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &enabled);
            EXPECT_EQ(enabled, 0) << "attribute " << index;
        }
        EXPECT_EQ(integer(GL_ELEMENT_ARRAY_BUFFER_BINDING), 0);
        kept = state.genAndBindVao();
        EXPECT_NE(kept, vao) << "handed out once";
        state.unBindVaoVbo();
        state.collectVao(vao);
        glDeleteBuffers(1, &buffer);
    }
    EXPECT_EQ(recorder.count("glDeleteVertexArrays"), 1u) << "by its collector, not by its copies";
    EXPECT_TRUE(glIsVertexArray(kept)) << "what is in use is not touched";
    glDeleteVertexArrays(1, &kept);
}

TEST_F(RenderStateTest, CopyHasBothStacks) {
    FrameBuffer* buffer = FrameBuffer::create();
    RenderState& state = *renderState();
    state.pushFrameBuffer(buffer);
    state.pushViewPort(ViewPort(1, 2, 3, 4), false);
    state.setBlend(BlendFunc::ADDITIVE);
    RenderState copy(state), assigned;
    assigned = state;
    state.popFrameBuffer();
    state.popViewPort(1);
    for (RenderState* other : {&copy, &assigned}) {
        EXPECT_TRUE(other->getCurFBO() == buffer->getFBO() && other->getCurBlend() == BlendFunc::ADDITIVE);
        EXPECT_EQ(other->getCurViewPort(), ViewPort(1, 2, 3, 4));
    }
}

}  // namespace zv::test
