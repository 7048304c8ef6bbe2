#include "gl/RenderState.h"

#include <GL/glew.h>

#include <vector>

#include "gl/ConfigGL.h"
#include "gl/FrameBuffer.h"
#include "gl/Program.h"
#include "gl/RenderTargetRenderBuffer.h"
#include "support/AllocationCounter.h"
#include "support/GLCallRecorder.h"
#include "support/GLTest.h"

namespace {

using namespace zv;
using zv::test::GLCallRecorder;
using zv::test::GLTest;

class RenderStateTest : public GLTest {
protected:
    static GLint integer(GLenum name) {
        GLint value = -1;
        glGetIntegerv(name, &value);
        return value;
    }
    static bool hasVertexArrays() { return kind() != Kind::Legacy; }
};

TEST_F(RenderStateTest, FrameBuffersAreBoundOnlyWhenTheNameChanges) {
    ZV_NEEDS_RECORDER();
    FrameBuffer* first = FrameBuffer::create();
    FrameBuffer* second = FrameBuffer::create();
    FrameBuffer* firstAgain = FrameBuffer::createDefault(static_cast<int>(first->getFBO()));
    RenderState& state = *renderState();
    GLCallRecorder recorder;
    const auto binds = [&] {
        std::vector<long long> names;
        for (const auto& call : recorder.callsOf("glBindFramebuffer")) {
            EXPECT_EQ(call.integer(0), GL_FRAMEBUFFER);
            names.push_back(call.integer(1));
        }
        recorder.clear();
        return names;
    };
    using Names = std::vector<long long>;
    state.pushFrameBuffer(first);
    EXPECT_EQ(binds(), Names{first->getFBO()});
    state.pushFrameBuffer(first);
    state.pushFrameBuffer(firstAgain);
    EXPECT_EQ(binds(), Names{}) << "another object, the same name";
    state.pushFrameBuffer(second);
    EXPECT_EQ(binds(), Names{second->getFBO()});
    EXPECT_EQ(state.getCurFBO(), second->getFBO());
    state.popFrameBuffer();
    EXPECT_EQ(binds(), Names{first->getFBO()});
    state.popFrameBuffer();
    state.popFrameBuffer();
    EXPECT_EQ(binds(), Names{});
    state.popFrameBuffer();
    EXPECT_EQ(binds(), Names{0}) << "the default one at the bottom";
    EXPECT_EQ(state.getCurFBO(), 0u);
}

TEST_F(RenderStateTest, BeginTakesTheBoundFrameBufferAsTheDefaultOne) {
    FrameBuffer* host = FrameBuffer::create();
    FrameBuffer* ours = FrameBuffer::create();
    RenderState& state = *renderState();
    state.pushFrameBuffer(ours);  // a frame that ended without its pop
    glBindFramebuffer(GL_FRAMEBUFFER, host->getFBO());
    EXPECT_EQ(state.getCurFBO(), ours->getFBO());
    state.begin();
    EXPECT_EQ(state.getCurFBO(), host->getFBO());
    state.pushFrameBuffer(ours);
    state.popFrameBuffer();
    EXPECT_EQ(static_cast<unsigned int>(integer(GL_FRAMEBUFFER_BINDING)), host->getFBO());
    EXPECT_EQ(RenderState().getCurFBO(), host->getFBO()) << "read at construction too";
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

TEST_F(RenderStateTest, ViewPortsAreSetOnlyWhenTheTopChanges) {
    ZV_NEEDS_RECORDER();
    const ViewPort small(0, 0, 4, 4);
    const ViewPort large(-2, 3, 60000, 50);
    RenderState& state = *renderState();
    GLCallRecorder recorder;
    const auto sets = [&] {
        const std::size_t count = recorder.count("glViewport");
        recorder.clear();
        return count;
    };
    state.pushViewPort(small, false);
    EXPECT_EQ(sets(), 1u) << "an empty stack knows nothing";
    state.pushViewPort(small, false);
    EXPECT_EQ(sets(), 0u);
    state.pushViewPort(small, true);
    EXPECT_EQ(sets(), 1u);
    state.pushViewPort(large, false);
    EXPECT_EQ(recorder.callsOf("glViewport").at(0).args, (std::vector<double>{-2, 3, 60000, 50}));
    sets();
    EXPECT_EQ(state.getCurViewPort(), large);
    state.pushViewPort(large, false);
    state.popViewPort(1);
    EXPECT_EQ(sets(), 0u) << "below lies the same rectangle";
    state.popViewPort(0);
    EXPECT_EQ(state.getCurViewPort(), large);
    state.popViewPort(2);
    EXPECT_EQ(recorder.callsOf("glViewport").at(0).args, (std::vector<double>{0, 0, 4, 4}));
    EXPECT_EQ(sets(), 1u);
    EXPECT_EQ(state.getCurViewPort(), small);
    state.popViewPort(2);
    EXPECT_EQ(recorder.total(), 0u) << "an emptied stack leaves the view port";

    state.pushViewPort(small, false);
    state.pushViewPort(large, false);
    state.pushViewPort(small, false);
    sets();
    state.popViewPort(2);
    EXPECT_EQ(sets(), 0u) << "compared with the former top, not with what lay between";
}

TEST_F(RenderStateTest, BlendCallsGLOnlyForAChange) {
    ZV_NEEDS_RECORDER();
    struct Step {
        const char* what;
        BlendFunc blend;
        std::size_t enables, disables, functions;
    };
    const Step steps[] = {
        {"disabled from the start", BlendFunc::DISABLE, 0, 0, 0},
        {"first blend", BlendFunc::ADDITIVE, 1, 0, 1},
        {"same again", BlendFunc(GL_SRC_ALPHA, GL_ONE), 0, 0, 0},
        {"another one", BlendFunc::ALPHA_PREMULTIPLIED, 0, 0, 1},
        {"off", BlendFunc(), 0, 1, 0},
        {"on again", BlendFunc::ALPHA_NON_PREMULTIPLIED, 1, 0, 1},
    };
    GLCallRecorder recorder;
    for (const Step& step : steps) {
        recorder.clear();
        renderState()->setBlend(step.blend);
        EXPECT_EQ(recorder.count("glEnable"), step.enables) << step.what;
        EXPECT_EQ(recorder.count("glDisable"), step.disables) << step.what;
        EXPECT_EQ(recorder.count("glBlendFunc"), step.functions) << step.what;
        EXPECT_EQ(renderState()->getCurBlend(), step.blend) << step.what;
    }
    EXPECT_EQ(integer(GL_BLEND_SRC), GL_SRC_ALPHA);
    EXPECT_EQ(integer(GL_BLEND_DST), GL_ONE_MINUS_SRC_ALPHA);
    // After a reset nothing is taken for granted, neither on nor off.
    for (const BlendFunc& blend : {BlendFunc::ALPHA_NON_PREMULTIPLIED, BlendFunc::DISABLE}) {
        renderState()->reset();
        recorder.clear();
        renderState()->setBlend(blend);
        EXPECT_EQ(recorder.count(blend == BlendFunc::DISABLE ? "glDisable" : "glEnable"), 1u);
        renderState()->setBlend(blend);
        EXPECT_EQ(recorder.total(), blend == BlendFunc::DISABLE ? 1u : 2u);
    }
}

TEST_F(RenderStateTest, ProgramsAndBuffersAreNotFiltered) {
    ZV_NEEDS_RECORDER();
    RenderState& state = *renderState();
    Program* program = Program::create("attribute vec4 a_position; void main() { gl_Position = a_position; }",
                                       "void main() { gl_FragColor = vec4(1.0); }");
    const unsigned char bytes[] = {1, 2, 3, 4, 5, 6, 7, 8};
    GLCallRecorder recorder;
    state.useProgram(program);
    state.useProgram(program);
    EXPECT_EQ(recorder.count("glUseProgram"), 2u);
    EXPECT_EQ(state.getCurProgram(), program);

    const unsigned int filled = state.genVbo(GL_ARRAY_BUFFER, 8, bytes, GL_STATIC_DRAW);
    EXPECT_EQ(state.getCurVbo(), filled);
    unsigned char stored[8] = {};
    glGetBufferSubData(GL_ARRAY_BUFFER, 0, 8, stored);
    EXPECT_EQ(std::vector<unsigned char>(stored, stored + 8), std::vector<unsigned char>(bytes, bytes + 8));
    const unsigned int indices = state.genAndBindVbo(GL_ELEMENT_ARRAY_BUFFER);
    EXPECT_EQ(static_cast<unsigned int>(integer(GL_ELEMENT_ARRAY_BUFFER_BINDING)), indices);
    EXPECT_EQ(static_cast<unsigned int>(integer(GL_ARRAY_BUFFER_BINDING)), filled);
    state.bufferData(indices, GL_ARRAY_BUFFER, 4, nullptr, GL_DYNAMIC_DRAW);
    GLint size = 0;
    glGetBufferParameteriv(GL_ARRAY_BUFFER, GL_BUFFER_SIZE, &size);
    EXPECT_EQ(size, 4);
    EXPECT_EQ(state.getCurVbo(), indices);
    recorder.clear();
    state.bindVbo(GL_ARRAY_BUFFER, filled);
    state.bindVbo(GL_ARRAY_BUFFER, filled);
    EXPECT_EQ(recorder.count("glBindBuffer"), 2u);
    state.unBindVaoVbo();
    EXPECT_EQ(integer(GL_ARRAY_BUFFER_BINDING), 0);
    EXPECT_EQ(state.getCurVbo(), 0u);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    for (const unsigned int name : {filled, indices}) {
        glDeleteBuffers(1, &name);
    }
    state.useProgram(nullptr);
    EXPECT_EQ(integer(GL_CURRENT_PROGRAM), 0);
}

TEST_F(RenderStateTest, RenderBufferSizeIsThatOfTheBoundOne) {
    const RenderTargetRenderBuffer* target = RenderTargetRenderBuffer::create(Size16(31, 17));
    glBindRenderbuffer(GL_RENDERBUFFER, target->getBuffer());
    EXPECT_EQ(renderState()->getRenderBufferSize(), Size16(31, 17));
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
}

TEST_F(RenderStateTest, VertexArraysOfDeadDrawablesAreReusedClean) {
    ZV_NEEDS_RECORDER();
    GLCallRecorder recorder;
    unsigned int kept = 0;
    {
        RenderState state;
        recorder.clear();
        if (!hasVertexArrays()) {
            EXPECT_EQ(state.genAndBindVao(), 0u);
            state.bindVao(5);
            EXPECT_EQ(state.getCurVao(), 5u) << "recorded all the same";
            state.bindVao(0);
            EXPECT_EQ(recorder.total(), 0u);
            return;
        }
        const unsigned int vao = state.genAndBindVao();
        EXPECT_EQ(static_cast<unsigned int>(integer(GL_VERTEX_ARRAY_BINDING)), vao);
        EXPECT_EQ(state.getCurVao(), vao);
        const unsigned int buffer = state.genVbo(GL_ARRAY_BUFFER, 64, nullptr, GL_STATIC_DRAW);
        for (int index = 0; index < AttribIndex::COUNT; ++index) {
            state.vertexAttribPointer(static_cast<AttribIndex::Enum>(index), 2, GL_FLOAT, GL_FALSE, 8,
                                      nullptr);
        }
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
        recorder.clear();
    }
    EXPECT_EQ(recorder.count("glDeleteVertexArrays"), 1u)
        << "by the one that collected it, not by its copies";
    EXPECT_TRUE(glIsVertexArray(kept)) << "what is in use is not touched";
    glDeleteVertexArrays(1, &kept);
}

TEST_F(RenderStateTest, CopyHasBothStacks) {
    FrameBuffer* buffer = FrameBuffer::create();
    RenderState& state = *renderState();
    state.pushFrameBuffer(buffer);
    state.pushViewPort(ViewPort(1, 2, 3, 4), false);
    state.setBlend(BlendFunc::ADDITIVE);
    RenderState copy(state);
    RenderState assigned;
    assigned = state;
    state.popFrameBuffer();
    state.popViewPort(1);
    for (RenderState* other : {&copy, &assigned}) {
        EXPECT_EQ(other->getCurFBO(), buffer->getFBO());
        EXPECT_EQ(other->getCurViewPort(), ViewPort(1, 2, 3, 4));
        EXPECT_EQ(other->getCurBlend(), BlendFunc::ADDITIVE);
    }
}

TEST_F(RenderStateTest, SecondFrameAllocatesNothing) {
    ZV_NEEDS_ALLOCATION_COUNTER();
    FrameBuffer* buffers[] = {FrameBuffer::create(), FrameBuffer::create(), FrameBuffer::create()};
    RenderState& state = *renderState();
    const auto frame = [&] {
        state.begin();
        short x = 0;
        for (FrameBuffer* buffer : buffers) {
            state.pushFrameBuffer(buffer);
            state.pushViewPort(ViewPort(++x, 0, 8, 8), false);
        }
        state.popViewPort(3);
        for (int i = 0; i < 3; ++i) {
            state.popFrameBuffer();
        }
    };
    frame();
    const zv::test::GLCallRecorder recorder;  // leaves the driver's own allocations out
    const zv::test::AllocationCounter counter;
    frame();
    EXPECT_EQ(counter.allocations(), 0u);
}

}  // namespace
