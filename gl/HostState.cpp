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

GLenum unitName(std::size_t unit) {
    return GL_TEXTURE0 + static_cast<GLenum>(unit);
}

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

void HostState::learnContext() {
    if (mContextKnown) {
        return;
    }
    const int version = ConfigGL::getInstance()->getVersionGL();
    mIsCore = ContextProfile::read().core;
    mHasVertexArrays = version >= 300;
    mHasReadFrameBuffer = version >= 300 || GLEW_ARB_framebuffer_object || GLEW_EXT_framebuffer_blit;
    mHasSamplers = version >= 330;
    mHasRectangles = version >= 310 || GLEW_ARB_texture_rectangle;
    mContextKnown = true;
}

void HostState::shield() {
    learnContext();
    glGetIntegerv(GL_CURRENT_PROGRAM, &mProgram);
    glGetIntegerv(GL_VIEWPORT, mViewPort.data());
    mDeleted = DeletedNames::count();
    shieldUnits();
    shieldBuffers();
    shieldBlend();
    shieldFragments();
    shieldPixelStore();
}

void HostState::restore() {
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
        forget(unit.texture, [](GLuint name) { return glIsTexture(name); });
    }
    forget(mRectangle, [](GLuint name) { return glIsTexture(name); });
}

void HostState::shieldUnits() {
    glGetIntegerv(GL_ACTIVE_TEXTURE, &mActiveUnit);
    for (std::size_t unit = kUnits; unit-- > 0;) {
        Unit& kept = mUnits[unit];
        glActiveTexture(unitName(unit));
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &kept.texture);
        if (mHasSamplers) {
            glGetIntegerv(GL_SAMPLER_BINDING, &kept.sampler);
            if (kept.sampler != 0) {
                glBindSampler(static_cast<GLuint>(unit), 0);
            }
        }
    }
    if (mHasRectangles) {
        glGetIntegerv(GL_TEXTURE_BINDING_RECTANGLE, &mRectangle);
    }
}

void HostState::restoreUnits() {
    for (std::size_t unit = kUnits; unit-- > 0;) {
        const Unit& kept = mUnits[unit];
        glActiveTexture(unitName(unit));
        glBindTexture(GL_TEXTURE_2D, nameOf(kept.texture));
        if (kept.sampler != 0) {
            glBindSampler(static_cast<GLuint>(unit), nameOf(kept.sampler));
        }
    }
    if (mHasRectangles) {
        glBindTexture(GL_TEXTURE_RECTANGLE, nameOf(mRectangle));
    }
    if (mActiveUnit != GL_TEXTURE0) {
        glActiveTexture(static_cast<GLenum>(mActiveUnit));
    }
}

void HostState::shieldBuffers() {
    glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &mArrayBuffer);
    glGetIntegerv(GL_PIXEL_PACK_BUFFER_BINDING, &mPackBuffer);
    glGetIntegerv(GL_PIXEL_UNPACK_BUFFER_BINDING, &mUnpackBuffer);
    if (mPackBuffer != 0) {
        glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    }
    if (mUnpackBuffer != 0) {
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    }
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
    // Our drawing leaves all of these at 0.
    if (mArrayBuffer != 0) {
        glBindBuffer(GL_ARRAY_BUFFER, nameOf(mArrayBuffer));
    }
    if (mPackBuffer != 0) {
        glBindBuffer(GL_PIXEL_PACK_BUFFER, nameOf(mPackBuffer));
    }
    if (mUnpackBuffer != 0) {
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, nameOf(mUnpackBuffer));
    }
    glBindFramebuffer(GL_FRAMEBUFFER, nameOf(mDrawFrameBuffer));
    if (mReadFrameBuffer != mDrawFrameBuffer) {
        glBindFramebuffer(GL_READ_FRAMEBUFFER, nameOf(mReadFrameBuffer));
    }
}

void HostState::shieldBlend() {
    mBlend = glIsEnabled(GL_BLEND) != GL_FALSE;
    glGetIntegerv(GL_BLEND_SRC_RGB, &mBlendFactors[0]);
    glGetIntegerv(GL_BLEND_DST_RGB, &mBlendFactors[1]);
    glGetIntegerv(GL_BLEND_SRC_ALPHA, &mBlendFactors[2]);
    glGetIntegerv(GL_BLEND_DST_ALPHA, &mBlendFactors[3]);
    glGetIntegerv(GL_BLEND_EQUATION_RGB, &mBlendEquations[0]);
    glGetIntegerv(GL_BLEND_EQUATION_ALPHA, &mBlendEquations[1]);
    if (mBlend) {
        glDisable(GL_BLEND);
    }
    if (mBlendEquations[0] != GL_FUNC_ADD || mBlendEquations[1] != GL_FUNC_ADD) {
        glBlendEquation(GL_FUNC_ADD);
    }
}

void HostState::restoreBlend() {
    setEnabled(GL_BLEND, mBlend);
    glBlendFuncSeparate(static_cast<GLenum>(mBlendFactors[0]), static_cast<GLenum>(mBlendFactors[1]),
                        static_cast<GLenum>(mBlendFactors[2]), static_cast<GLenum>(mBlendFactors[3]));
    if (mBlendEquations[0] != GL_FUNC_ADD || mBlendEquations[1] != GL_FUNC_ADD) {
        glBlendEquationSeparate(static_cast<GLenum>(mBlendEquations[0]),
                                static_cast<GLenum>(mBlendEquations[1]));
    }
}

void HostState::shieldFragments() {
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

void HostState::shieldPixelStore() {
    for (std::size_t i = 0; i < kStores; ++i) {
        glGetIntegerv(kPixelStores[i].name, &mStores[i]);
        if (mStores[i] != kPixelStores[i].plain) {
            glPixelStorei(kPixelStores[i].name, kPixelStores[i].plain);
        }
    }
}

void HostState::restorePixelStore() {
    for (std::size_t i = 0; i < kStores; ++i) {
        // A read-back leaves its own row alignment behind, so that one is always written.
        if (mStores[i] != kPixelStores[i].plain || kPixelStores[i].name == GL_PACK_ALIGNMENT) {
            glPixelStorei(kPixelStores[i].name, mStores[i]);
        }
    }
}

}  // namespace zv
