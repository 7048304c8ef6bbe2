#pragma once

#include <GL/glew.h>

#include <array>
#include <map>
#include <utility>

#include "gl/ConfigGL.h"
#include "gl/Program.h"
#include "support/GLTest.h"

namespace zv::test {

constexpr GLuint kHostUnits = 4;

/// Pixel stores: the name, GL's default and what the host sets.
constexpr GLint kStores[][3] = {
    {GL_UNPACK_ALIGNMENT, 4, 8},   {GL_UNPACK_ROW_LENGTH, 0, 5}, {GL_UNPACK_SKIP_ROWS, 0, 1},
    {GL_UNPACK_SKIP_PIXELS, 0, 2}, {GL_UNPACK_SWAP_BYTES, 0, 1}, {GL_PACK_ALIGNMENT, 4, 2},
    {GL_PACK_ROW_LENGTH, 0, 7},    {GL_PACK_SKIP_ROWS, 0, 3},    {GL_PACK_SKIP_PIXELS, 0, 1},
    {GL_PACK_SWAP_BYTES, 0, 1},
};

/// Whatever can be enabled everywhere and would spoil a picture.
constexpr GLenum kSwitches[] = {GL_SCISSOR_TEST, GL_DEPTH_TEST, GL_STENCIL_TEST, GL_CULL_FACE, GL_BLEND};

inline bool isCore() {
    return GLTest::kind() == GLTest::Kind::Core;
}
/// Vertex arrays are there since 300, samplers since 330.
inline bool hasVersion(int version) {
    return ConfigGL::getInstance()->getVersionGL() >= version;
}

/// Everything that a host may find changed, by GL's name and by texture unit or attribute.
using Snapshot = std::map<std::pair<GLenum, GLuint>, std::array<GLint, 4>>;

inline Snapshot snapshot() {
    Snapshot state;
    const auto read = [&](auto number, GLuint unit) {
        const auto name = static_cast<GLenum>(number);
        glGetIntegerv(name, state[{name, unit}].data());
    };
    for (int name : {GL_CURRENT_PROGRAM, GL_ARRAY_BUFFER_BINDING, GL_ELEMENT_ARRAY_BUFFER_BINDING,
                     GL_PIXEL_PACK_BUFFER_BINDING, GL_PIXEL_UNPACK_BUFFER_BINDING, GL_FRAMEBUFFER_BINDING,
                     GL_READ_FRAMEBUFFER_BINDING, GL_BLEND_SRC_RGB, GL_BLEND_DST_RGB, GL_BLEND_SRC_ALPHA,
                     GL_BLEND_DST_ALPHA, GL_BLEND_EQUATION_RGB, GL_BLEND_EQUATION_ALPHA, GL_VIEWPORT,
                     GL_COLOR_WRITEMASK, GL_ACTIVE_TEXTURE}) {
        read(name, 0);
    }
    for (GLenum name : kSwitches) {
        read(name, 0);
    }
    for (const GLint(&store)[3] : kStores) {
        read(store[0], 0);
    }
    for (GLuint unit = 0; unit < kHostUnits; ++unit) {
        glActiveTexture(GL_TEXTURE0 + unit);
        read(GL_TEXTURE_BINDING_2D, unit);
        read(GL_TEXTURE_BINDING_RECTANGLE, unit);
        if (hasVersion(330)) {
            read(GL_SAMPLER_BINDING, unit);
        }
    }
    glActiveTexture(static_cast<GLenum>(state[{GL_ACTIVE_TEXTURE, 0}][0]));
    if (!isCore()) {
        read(GL_ALPHA_TEST, 0);
    }
    if (hasVersion(300)) {
        read(GL_VERTEX_ARRAY_BINDING, 0);
    }
    const GLint vertexArray = state[{GL_VERTEX_ARRAY_BINDING, 0}][0];
    for (GLuint index = 0; index < 15 && (!isCore() || vertexArray != 0); ++index) {
        for (int number : {GL_VERTEX_ATTRIB_ARRAY_ENABLED, GL_VERTEX_ATTRIB_ARRAY_STRIDE,
                           GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING}) {
            const auto name = static_cast<GLenum>(number);
            glGetVertexAttribiv(index, name, state[{name, index}].data());
        }
    }
    if (hasVersion(300) && !isCore()) {
        // The second element buffer is that of the default vertex array.
        glBindVertexArray(0);
        read(GL_ELEMENT_ARRAY_BUFFER_BINDING, 1);
        glBindVertexArray(static_cast<GLuint>(vertexArray));
    }
    return state;
}

/// What of the actual state is not as expected.
inline Snapshot differences(Snapshot actual, const Snapshot& expected) {
    for (const auto& [key, values] : expected) {
        if (actual[key] == values) {
            actual.erase(key);
        }
    }
    return actual;
}

/// A host that draws with everything, and leaves all of it set and bound.
class PoisonousHost {
public:
    explicit PoisonousHost(GLuint screen) : mScreen(screen) {
        mProgram->retain();
        mProgram->use();
        glGenBuffers(5, mBuffers);
        glGenTextures(5, mTextures);
        glGenFramebuffers(1, &mReader);
        bindObjects();
        for (GLenum name : kSwitches) {
            glEnable(name);
        }
        glScissor(0, 0, 1, 1);
        glViewport(3, 2, 1, 1);
        glCullFace(GL_FRONT_AND_BACK);
        if (!isCore()) {
            glEnable(GL_ALPHA_TEST);
            glAlphaFunc(GL_NEVER, 0.0F);
        }
        glColorMask(GL_FALSE, GL_TRUE, GL_FALSE, GL_FALSE);
        glBlendFuncSeparate(GL_DST_COLOR, GL_ONE, GL_DST_ALPHA, GL_SRC_ALPHA);
        glBlendEquationSeparate(GL_FUNC_REVERSE_SUBTRACT, GL_MIN);
        for (const GLint(&store)[3] : kStores) {
            glPixelStorei(static_cast<GLenum>(store[0]), store[2]);
        }
    }

    /// Takes back what the fixture's set-up does not reset.
    ~PoisonousHost() {
        for (const GLint(&store)[3] : kStores) {
            glPixelStorei(static_cast<GLenum>(store[0]), store[1]);
        }
        if (!isCore()) {
            glDisable(GL_ALPHA_TEST);
        }
        glBlendEquation(GL_FUNC_ADD);
        glBindFramebuffer(GL_FRAMEBUFFER, mScreen);
        glDisableVertexAttribArray(0);
        glDisableVertexAttribArray(3);
        if (hasVersion(300)) {
            glDeleteVertexArrays(1, &mVertexArray);
        }
        if (hasVersion(330)) {
            glDeleteSamplers(1, &mSampler);
        }
        glDeleteFramebuffers(1, &mReader);
        glDeleteBuffers(5, mBuffers);
        glDeleteTextures(5, mTextures);
        mProgram->release();
    }

private:
    void bindObjects() {
        for (GLuint unit = 0; unit < kHostUnits; ++unit) {
            glActiveTexture(GL_TEXTURE0 + unit);
            glBindTexture(GL_TEXTURE_2D, mTextures[unit]);
        }
        glActiveTexture(GL_TEXTURE0);
        glBindTexture(GL_TEXTURE_RECTANGLE, mTextures[4]);
        glActiveTexture(GL_TEXTURE0 + 2);
        glBindFramebuffer(GL_FRAMEBUFFER, mScreen);
        glBindFramebuffer(GL_READ_FRAMEBUFFER, mReader);
        if (hasVersion(330)) {
            // Needs mipmap levels that our textures do not have: whatever it samples turns black.
            glGenSamplers(1, &mSampler);
            glSamplerParameteri(mSampler, GL_TEXTURE_MIN_FILTER, GL_NEAREST_MIPMAP_NEAREST);
            for (GLuint unit = 0; unit < kHostUnits; ++unit) {
                glBindSampler(unit, mSampler);
            }
        }
        // Allocated: an upload of ours that read from it would not fail, but show zeros.
        for (GLuint buffer : mBuffers) {
            glBindBuffer(GL_ARRAY_BUFFER, buffer);
            glBufferData(GL_ARRAY_BUFFER, 1 << 16, nullptr, GL_STATIC_DRAW);
        }
        if (hasVersion(300)) {
            if (!isCore()) {
                glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, mBuffers[4]);
            }
            glGenVertexArrays(1, &mVertexArray);
            glBindVertexArray(mVertexArray);
        }
        glBindBuffer(GL_ARRAY_BUFFER, mBuffers[0]);
        glEnableVertexAttribArray(0);
        glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 24, nullptr);
        glEnableVertexAttribArray(3);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, mBuffers[1]);
        glBindBuffer(GL_PIXEL_PACK_BUFFER, mBuffers[2]);
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, mBuffers[3]);
    }

    Program* mProgram = Program::create("attribute vec4 v; void main() { gl_Position = v; }",
                                        "void main() { gl_FragColor = vec4(1.0); }");
    GLuint mScreen, mReader = 0, mVertexArray = 0, mSampler = 0;
    GLuint mBuffers[5] = {};
    GLuint mTextures[5] = {};
};

}  // namespace zv::test
