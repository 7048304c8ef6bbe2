#include "gl/HostState.h"

#include <GL/glew.h>

#include "gl/ConfigGL.h"
#include "gl/ContextProfile.h"
#include "gl/DeletedNames.h"

namespace zv {

namespace {

/// Tests that throw fragments or faces away. The alpha test, last, does not exist on core contexts.
constexpr GLenum kTestNames[] = {GL_SCISSOR_TEST, GL_DEPTH_TEST, GL_STENCIL_TEST, GL_CULL_FACE,
                                 GL_ALPHA_TEST};

struct PixelStore {
    GLenum name;
    GLint plain;  ///< GL's default
};

// Without the byte order of reads: those are of single bytes only.
constexpr PixelStore kPixelStores[] = {
    {GL_UNPACK_ALIGNMENT, 4},   {GL_UNPACK_ROW_LENGTH, 0}, {GL_UNPACK_SKIP_ROWS, 0},
    {GL_UNPACK_SKIP_PIXELS, 0}, {GL_UNPACK_SWAP_BYTES, 0}, {GL_PACK_ALIGNMENT, 4},
    {GL_PACK_ROW_LENGTH, 0},    {GL_PACK_SKIP_ROWS, 0},    {GL_PACK_SKIP_PIXELS, 0},
};

struct TextureTarget {
    GLenum target;
    GLenum binding;
};

constexpr TextureTarget kTargets[] = {{GL_TEXTURE_2D, GL_TEXTURE_BINDING_2D},
                                      {GL_TEXTURE_RECTANGLE, GL_TEXTURE_BINDING_RECTANGLE}};

/// Whose host's state is put away at the moment; of several that lie within each other the innermost.
thread_local HostState* tShielded = nullptr;

GLuint nameOf(std::int32_t value) {
    return static_cast<GLuint>(value);
}

void setEnabled(GLenum capability, bool on) {
    if (on) {
        glEnable(capability);
    } else {
        glDisable(capability);
    }
}

}  // namespace

HostState* HostState::getShielded() {
    return tShielded;
}

void HostState::learnContext() {
    if (mContextKnown) {
        return;
    }
    const int version = ConfigGL::getInstance()->getVersionGL();
    mIsCore = ContextProfile::read().core;
    mHasVertexArrays = version >= 300;
    mHasReadFrameBuffer = version >= 300 || GLEW_ARB_framebuffer_object || GLEW_EXT_framebuffer_blit;
    mHasSamplers = version >= 330;
    mContextKnown = true;
}

bool HostState::shield() {
    for (const HostState* state = tShielded; state != nullptr; state = state->mOuter) {
        if (state == this) {
            return false;
        }
    }
    learnContext();
    glGetIntegerv(GL_CURRENT_PROGRAM, &mProgram);
    glGetIntegerv(GL_VIEWPORT, mViewPort.data());
    glGetIntegerv(GL_ACTIVE_TEXTURE, &mActiveUnit);
    mDeleted = DeletedNames::count();
    shieldBuffers();
    shieldFragments();
    mUnits = {};
    mKeepsBlendFunction = false;
    mKeepsPixelStore = false;
    mOuter = tShielded;
    tShielded = this;
    return true;
}

void HostState::restore() {
    tShielded = mOuter;
    if (mDeleted != DeletedNames::count()) {
        forgetDeleted();
    }
    glUseProgram(nameOf(mProgram));
    glViewport(mViewPort[0], mViewPort[1], mViewPort[2], mViewPort[3]);
    restoreUnits();
    restoreBuffers();
    restoreBlend();
    restoreFragments();
    restorePixelStore();
}

void HostState::forgetDeleted() {
    const auto forget = [](std::int32_t& name, auto isAlive) {
        if (name != 0 && isAlive(nameOf(name)) == GL_FALSE) {
            name = 0;
        }
    };
    forget(mProgram, [](GLuint name) { return glIsProgram(name); });
    for (Unit& unit : mUnits) {
        for (std::int32_t& texture : unit.textures) {
            forget(texture, [](GLuint name) { return glIsTexture(name); });
        }
    }
}

void HostState::keepUnit(std::size_t index, unsigned int target) {
    if (index >= kUnits) {
        return;
    }
    Unit& unit = mUnits[index];
    if (!unit.used) {
        unit.used = true;
        if (mHasSamplers) {
            glGetIntegerv(GL_SAMPLER_BINDING, &unit.sampler);
        }
        if (unit.sampler != 0) {
            glBindSampler(static_cast<GLuint>(index), 0);
        }
    }
    for (std::size_t i = 0; i < unit.kept.size(); ++i) {
        if (kTargets[i].target == target && !unit.kept[i]) {
            unit.kept[i] = true;
            glGetIntegerv(kTargets[i].binding, &unit.textures[i]);
        }
    }
}

void HostState::restoreUnits() {
    for (std::size_t index = 0; index < kUnits; ++index) {
        const Unit& unit = mUnits[index];
        if (!unit.used) {
            continue;
        }
        glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(index));
        for (std::size_t i = 0; i < unit.kept.size(); ++i) {
            if (unit.kept[i]) {
                glBindTexture(kTargets[i].target, nameOf(unit.textures[i]));
            }
        }
        if (unit.sampler != 0) {
            glBindSampler(static_cast<GLuint>(index), nameOf(unit.sampler));
        }
    }
    glActiveTexture(static_cast<GLenum>(mActiveUnit));
}

void HostState::shieldBuffers() {
    glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &mArrayBuffer);
    if (mHasVertexArrays) {
        glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &mVertexArray);
        if (mVertexArray != 0) {
            glBindVertexArray(0);
        }
        // What we do while no vertex array is bound happens to the default one, which core contexts lack.
        if (!mIsCore) {
            glGetIntegerv(GL_ELEMENT_ARRAY_BUFFER_BINDING, &mElementBuffer);
        }
    } else {
        // Without vertex array objects our drawing writes to the one set of arrays that there is.
        glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    }
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &mDrawFrameBuffer);
    mReadFrameBuffer = mDrawFrameBuffer;
    if (mHasReadFrameBuffer) {
        glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &mReadFrameBuffer);
    }
}

void HostState::restoreBuffers() {
    if (mHasVertexArrays) {
        if (!mIsCore && mElementBuffer != 0) {
            glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, nameOf(mElementBuffer));
        }
        if (mVertexArray != 0) {
            glBindVertexArray(nameOf(mVertexArray));
        }
    } else {
        glPopClientAttrib();
    }
    // Our drawing leaves it at 0.
    if (mArrayBuffer != 0) {
        glBindBuffer(GL_ARRAY_BUFFER, nameOf(mArrayBuffer));
    }
    glBindFramebuffer(GL_FRAMEBUFFER, nameOf(mDrawFrameBuffer));
    if (mReadFrameBuffer != mDrawFrameBuffer) {
        glBindFramebuffer(GL_READ_FRAMEBUFFER, nameOf(mReadFrameBuffer));
    }
}

void HostState::keepBlendFunction() {
    if (mKeepsBlendFunction) {
        return;
    }
    mKeepsBlendFunction = true;
    glGetIntegerv(GL_BLEND_SRC_RGB, &mBlendFactors[0]);
    glGetIntegerv(GL_BLEND_DST_RGB, &mBlendFactors[1]);
    glGetIntegerv(GL_BLEND_SRC_ALPHA, &mBlendFactors[2]);
    glGetIntegerv(GL_BLEND_DST_ALPHA, &mBlendFactors[3]);
    glGetIntegerv(GL_BLEND_EQUATION_RGB, &mBlendEquations[0]);
    glGetIntegerv(GL_BLEND_EQUATION_ALPHA, &mBlendEquations[1]);
    if (mBlendEquations[0] != GL_FUNC_ADD || mBlendEquations[1] != GL_FUNC_ADD) {
        glBlendEquation(GL_FUNC_ADD);
    }
}

void HostState::restoreBlend() {
    if (!mKeepsBlendFunction) {
        if (mBlend) {
            glEnable(GL_BLEND);
        }
        return;
    }
    setEnabled(GL_BLEND, mBlend);
    glBlendFuncSeparate(static_cast<GLenum>(mBlendFactors[0]), static_cast<GLenum>(mBlendFactors[1]),
                        static_cast<GLenum>(mBlendFactors[2]), static_cast<GLenum>(mBlendFactors[3]));
    if (mBlendEquations[0] != GL_FUNC_ADD || mBlendEquations[1] != GL_FUNC_ADD) {
        glBlendEquationSeparate(static_cast<GLenum>(mBlendEquations[0]),
                                static_cast<GLenum>(mBlendEquations[1]));
    }
}

void HostState::shieldFragments() {
    mBlend = glIsEnabled(GL_BLEND) != GL_FALSE;
    if (mBlend) {
        glDisable(GL_BLEND);
    }
    glGetBooleanv(GL_COLOR_WRITEMASK, mColorMask.data());
    mMasksColor = mColorMask != std::array<unsigned char, 4>{GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE};
    if (mMasksColor) {
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    }
    for (std::size_t i = 0; i < kTests; ++i) {
        mTests[i] = (kTestNames[i] != GL_ALPHA_TEST || !mIsCore) && glIsEnabled(kTestNames[i]) != GL_FALSE;
        if (mTests[i]) {
            glDisable(kTestNames[i]);
        }
    }
}

void HostState::restoreFragments() {
    if (mMasksColor) {
        glColorMask(mColorMask[0], mColorMask[1], mColorMask[2], mColorMask[3]);
    }
    for (std::size_t i = 0; i < kTests; ++i) {
        if (mTests[i]) {
            glEnable(kTestNames[i]);
        }
    }
}

void HostState::keepPixelStore() {
    if (mKeepsPixelStore) {
        return;
    }
    mKeepsPixelStore = true;
    glGetIntegerv(GL_PIXEL_PACK_BUFFER_BINDING, &mPackBuffer);
    glGetIntegerv(GL_PIXEL_UNPACK_BUFFER_BINDING, &mUnpackBuffer);
    if (mPackBuffer != 0) {
        glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    }
    if (mUnpackBuffer != 0) {
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    }
    for (std::size_t i = 0; i < kStores; ++i) {
        glGetIntegerv(kPixelStores[i].name, &mStores[i]);
        if (mStores[i] != kPixelStores[i].plain) {
            glPixelStorei(kPixelStores[i].name, kPixelStores[i].plain);
        }
    }
}

void HostState::restorePixelStore() {
    if (!mKeepsPixelStore) {
        return;
    }
    // Our uploads and reads leave both buffers at 0 and the pixel store plain.
    if (mPackBuffer != 0) {
        glBindBuffer(GL_PIXEL_PACK_BUFFER, nameOf(mPackBuffer));
    }
    if (mUnpackBuffer != 0) {
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, nameOf(mUnpackBuffer));
    }
    for (std::size_t i = 0; i < kStores; ++i) {
        if (mStores[i] != kPixelStores[i].plain) {
            glPixelStorei(kPixelStores[i].name, mStores[i]);
        }
    }
}

}  // namespace zv
