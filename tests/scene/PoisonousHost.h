#pragma once

#include <GL/glew.h>

#include <map>
#include <string>
#include <vector>

#include "gl/ConfigGL.h"

namespace zv::test {

constexpr GLuint kHostUnits = 4;

inline bool hasVertexArrays() {
    return ConfigGL::getInstance()->getVersionGL() >= 300;
}
inline bool hasSamplers() {
    return ConfigGL::getInstance()->getVersionGL() >= 330;
}

struct Named {
    const char* name;
    GLenum value;
};

/// Everything that a host may find changed, by name.
using Snapshot = std::map<std::string, std::vector<GLint>>;

inline void addIntegers(Snapshot& state, const std::vector<Named>& names, std::size_t count = 1) {
    for (const Named& named : names) {
        std::vector<GLint> values(count);
        glGetIntegerv(named.value, values.data());
        state[named.name] = values;
    }
}

inline void addUnits(Snapshot& state) {
    GLint active = 0;
    glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
    state["active"] = {active};
    for (GLuint unit = 0; unit < kHostUnits; ++unit) {
        glActiveTexture(GL_TEXTURE0 + unit);
        Snapshot one;
        addIntegers(one, {{"2d", GL_TEXTURE_BINDING_2D}, {"rectangle", GL_TEXTURE_BINDING_RECTANGLE}});
        if (hasSamplers()) {
            addIntegers(one, {{"sampler", GL_SAMPLER_BINDING}});
        }
        for (const auto& entry : one) {
            state[entry.first + std::to_string(unit)] = entry.second;
        }
    }
    glActiveTexture(static_cast<GLenum>(active));
}

inline void addAttributes(Snapshot& state) {
    for (GLuint index = 0; index < 15; ++index) {
        std::vector<GLint> values;
        const GLenum whats[] = {GL_VERTEX_ATTRIB_ARRAY_ENABLED, GL_VERTEX_ATTRIB_ARRAY_SIZE,
                                GL_VERTEX_ATTRIB_ARRAY_STRIDE, GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING};
        for (GLenum what : whats) {
            GLint value = 0;
            glGetVertexAttribiv(index, what, &value);
            values.push_back(value);
        }
        state["attribute" + std::to_string(index)] = values;
    }
}

inline Snapshot snapshot(bool isCore) {
    Snapshot state;
    addIntegers(state, {{"program", GL_CURRENT_PROGRAM},
                        {"array", GL_ARRAY_BUFFER_BINDING},
                        {"element", GL_ELEMENT_ARRAY_BUFFER_BINDING},
                        {"pack", GL_PIXEL_PACK_BUFFER_BINDING},
                        {"unpack", GL_PIXEL_UNPACK_BUFFER_BINDING},
                        {"draw", GL_FRAMEBUFFER_BINDING},
                        {"read", GL_READ_FRAMEBUFFER_BINDING},
                        {"blend", GL_BLEND},
                        {"blend source", GL_BLEND_SRC_RGB},
                        {"blend destination", GL_BLEND_DST_RGB},
                        {"blend source alpha", GL_BLEND_SRC_ALPHA},
                        {"blend destination alpha", GL_BLEND_DST_ALPHA},
                        {"equation", GL_BLEND_EQUATION_RGB},
                        {"equation alpha", GL_BLEND_EQUATION_ALPHA},
                        {"scissor", GL_SCISSOR_TEST},
                        {"depth", GL_DEPTH_TEST},
                        {"stencil", GL_STENCIL_TEST},
                        {"cull", GL_CULL_FACE},
                        {"unpack alignment", GL_UNPACK_ALIGNMENT},
                        {"unpack row", GL_UNPACK_ROW_LENGTH},
                        {"unpack rows", GL_UNPACK_SKIP_ROWS},
                        {"unpack pixels", GL_UNPACK_SKIP_PIXELS},
                        {"unpack swap", GL_UNPACK_SWAP_BYTES},
                        {"pack alignment", GL_PACK_ALIGNMENT},
                        {"pack row", GL_PACK_ROW_LENGTH},
                        {"pack rows", GL_PACK_SKIP_ROWS},
                        {"pack pixels", GL_PACK_SKIP_PIXELS},
                        {"pack swap", GL_PACK_SWAP_BYTES}});
    addIntegers(state, {{"view port", GL_VIEWPORT}, {"mask", GL_COLOR_WRITEMASK}}, 4);
    addUnits(state);
    if (!isCore) {
        addIntegers(state, {{"alpha", GL_ALPHA_TEST}});
    }
    if (hasVertexArrays()) {
        addIntegers(state, {{"vertex array", GL_VERTEX_ARRAY_BINDING}});
    }
    if (!isCore || state["vertex array"][0] != 0) {
        addAttributes(state);
    }
    if (hasVertexArrays() && !isCore) {
        glBindVertexArray(0);
        addIntegers(state, {{"element of the default vertex array", GL_ELEMENT_ARRAY_BUFFER_BINDING}});
        glBindVertexArray(static_cast<GLuint>(state["vertex array"][0]));
    }
    return state;
}

inline GLuint makeHostProgram(bool isCore) {
    const char* vertex = isCore ? "#version 150\nin vec4 v;\nvoid main() { gl_Position = v; }\n"
                                : "#version 120\nattribute vec4 v;\nvoid main() { gl_Position = v; }\n";
    const char* fragment = isCore ? "#version 150\nout vec4 c;\nvoid main() { c = vec4(1.0); }\n"
                                  : "#version 120\nvoid main() { gl_FragColor = vec4(1.0); }\n";
    const GLuint program = glCreateProgram();
    const GLenum kinds[] = {GL_VERTEX_SHADER, GL_FRAGMENT_SHADER};
    const char* sources[] = {vertex, fragment};
    for (std::size_t i = 0; i < 2; ++i) {
        const GLuint shader = glCreateShader(kinds[i]);
        glShaderSource(shader, 1, &sources[i], nullptr);
        glCompileShader(shader);
        glAttachShader(program, shader);
        glDeleteShader(shader);
    }
    glLinkProgram(program);
    return program;
}

/// A host that draws with everything, and leaves all of it set and bound.
class PoisonousHost {
public:
    PoisonousHost(GLuint screen, bool isCore, unsigned variant)
        : mScreen(screen), mIsCore(isCore), mVariant(variant) {
        glGenBuffers(5, mBuffers);
        glGenTextures(5, mTextures);
        glGenFramebuffers(1, &mReader);
        mProgram = makeHostProgram(isCore);
        bindObjects();
        setTests();
        setBlending();
        setPixelStore();
        glViewport(3, 2, 1, 1);
        glUseProgram(mProgram);
    }

    ~PoisonousHost() {
        const GLenum tests[] = {GL_SCISSOR_TEST, GL_DEPTH_TEST, GL_STENCIL_TEST, GL_CULL_FACE, GL_BLEND};
        for (GLenum test : tests) {
            glDisable(test);
        }
        if (!mIsCore) {
            glDisable(GL_ALPHA_TEST);
            glAlphaFunc(GL_ALWAYS, 0.0F);
        }
        glCullFace(GL_BACK);
        glBlendEquation(GL_FUNC_ADD);
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
        glActiveTexture(GL_TEXTURE0);
        glBindFramebuffer(GL_FRAMEBUFFER, mScreen);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
        glPixelStorei(GL_PACK_ALIGNMENT, 4);
        const GLenum stores[] = {GL_UNPACK_ROW_LENGTH, GL_UNPACK_SKIP_ROWS, GL_UNPACK_SKIP_PIXELS,
                                 GL_UNPACK_SWAP_BYTES, GL_PACK_ROW_LENGTH,  GL_PACK_SKIP_ROWS,
                                 GL_PACK_SKIP_PIXELS,  GL_PACK_SWAP_BYTES};
        for (GLenum store : stores) {
            glPixelStorei(store, 0);
        }
        for (GLuint index = 0; index < 15 && !hasVertexArrays(); ++index) {
            glDisableVertexAttribArray(index);
        }
        if (hasVertexArrays()) {
            glDeleteVertexArrays(1, &mVertexArray);
        }
        if (hasSamplers()) {
            glDeleteSamplers(1, &mSampler);
        }
        glDeleteFramebuffers(1, &mReader);
        glDeleteBuffers(5, mBuffers);
        glDeleteTextures(5, mTextures);
        glUseProgram(0);
        glDeleteProgram(mProgram);
    }

private:
    void bindObjects() {
        for (GLuint unit = 0; unit < kHostUnits; ++unit) {
            glActiveTexture(GL_TEXTURE0 + unit);
            glBindTexture(GL_TEXTURE_2D, mTextures[unit]);
        }
        glActiveTexture(GL_TEXTURE0);
        glBindTexture(GL_TEXTURE_RECTANGLE, mTextures[4]);
        glActiveTexture(GL_TEXTURE0 + 2 + mVariant);
        // Allocated: an upload of ours that read from it would not fail, but show zeros.
        for (std::size_t i = 0; i < 5; ++i) {
            glBindBuffer(GL_ARRAY_BUFFER, mBuffers[i]);
            glBufferData(GL_ARRAY_BUFFER, 1 << 16, nullptr, GL_STATIC_DRAW);
        }
        if (hasVertexArrays()) {
            if (!mIsCore) {
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
        glBindFramebuffer(GL_FRAMEBUFFER, mScreen);
        glBindFramebuffer(GL_READ_FRAMEBUFFER, mReader);
        if (hasSamplers()) {
            // Needs mipmap levels that our textures do not have: whatever it samples turns black.
            glGenSamplers(1, &mSampler);
            glSamplerParameteri(mSampler, GL_TEXTURE_MIN_FILTER, GL_NEAREST_MIPMAP_NEAREST);
            for (GLuint unit = 0; unit < kHostUnits; ++unit) {
                glBindSampler(unit, mSampler);
            }
        }
    }

    void setTests() {
        glEnable(GL_SCISSOR_TEST);
        glScissor(0, 0, 1, 1);
        glEnable(GL_DEPTH_TEST);
        glEnable(GL_STENCIL_TEST);
        glEnable(GL_CULL_FACE);
        glCullFace(GL_FRONT_AND_BACK);
        if (!mIsCore) {
            glEnable(GL_ALPHA_TEST);
            glAlphaFunc(GL_NEVER, 0.0F);
        }
        glColorMask(GL_FALSE, GL_TRUE, mVariant != 0 ? GL_TRUE : GL_FALSE, GL_FALSE);
    }

    void setBlending() {
        if (mVariant == 0) {
            glEnable(GL_BLEND);
        }
        glBlendFuncSeparate(mVariant == 0 ? GL_ZERO : GL_DST_COLOR, GL_ONE, GL_DST_ALPHA, GL_SRC_ALPHA);
        glBlendEquationSeparate(GL_FUNC_REVERSE_SUBTRACT, GL_MIN);
    }

    void setPixelStore() {
        glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
        glPixelStorei(GL_UNPACK_ROW_LENGTH, 5);
        glPixelStorei(GL_UNPACK_SKIP_ROWS, 1);
        glPixelStorei(GL_UNPACK_SKIP_PIXELS, 2);
        glPixelStorei(GL_UNPACK_SWAP_BYTES, 1);
        glPixelStorei(GL_PACK_ALIGNMENT, 2);
        glPixelStorei(GL_PACK_ROW_LENGTH, 7);
        glPixelStorei(GL_PACK_SKIP_ROWS, 3);
        glPixelStorei(GL_PACK_SKIP_PIXELS, 1);
        glPixelStorei(GL_PACK_SWAP_BYTES, 1);
    }

    GLuint mScreen;
    bool mIsCore;
    unsigned mVariant;
    GLuint mBuffers[5] = {};
    GLuint mTextures[5] = {};
    GLuint mReader = 0;
    GLuint mProgram = 0;
    GLuint mVertexArray = 0;
    GLuint mSampler = 0;
};

}  // namespace zv::test
