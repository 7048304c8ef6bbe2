#include "gl/RenderState.h"

#include <GL/glew.h>

#include <atomic>

#include "gl/ConfigGL.h"
#include "gl/FrameBuffer.h"
#include "gl/HostState.h"
#include "gl/Program.h"

namespace zv {

namespace {

std::atomic<RenderState::Lookup> sLookup{nullptr};

bool hasVertexArrays() {
    return ConfigGL::getInstance()->supportVAO();
}

bool hasSamplers() {
    return ConfigGL::getInstance()->getVersionGL() >= 330;
}

int readDefaultFBO() {
    GLint bound = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
    return bound;
}

void setViewPort(const ViewPort& viewPort) {
    glViewport(viewPort.origin.x, viewPort.origin.y, viewPort.size.x, viewPort.size.y);
}

}  // namespace

void RenderState::setLookup(Lookup lookup) {
    sLookup = lookup;
}

RenderState* RenderState::getCurrent() {
    const Lookup lookup = sLookup;
    return lookup != nullptr ? lookup() : nullptr;
}

RenderState::RenderState() {
    ConfigGL::getInstance();  // the first call loads the GL entry points
    mDefaultFBO = readDefaultFBO();
}

RenderState::~RenderState() {
    if (!mCollectedVaos.empty()) {
        glDeleteVertexArrays(static_cast<GLsizei>(mCollectedVaos.size()), mCollectedVaos.data());
    }
    if (mNearestSampler != 0) {
        glDeleteSamplers(1, &mNearestSampler);
    }
}

RenderState::RenderState(const RenderState& other)
    : mProgram(other.mProgram),
      mBlend(other.mBlend),
      mFrameBuffers(other.mFrameBuffers),
      mViewPorts(other.mViewPorts),
      mDefaultFBO(other.mDefaultFBO),
      mVao(other.mVao),
      mVbo(other.mVbo),
      mBlendKnown(other.mBlendKnown) {}

RenderState& RenderState::operator=(const RenderState& other) {
    mProgram = other.mProgram;
    mBlend = other.mBlend;
    mFrameBuffers = other.mFrameBuffers;
    mViewPorts = other.mViewPorts;
    mDefaultFBO = other.mDefaultFBO;
    mVao = other.mVao;
    mVbo = other.mVbo;
    mBlendKnown = other.mBlendKnown;
    return *this;
}

void RenderState::begin() {
    mDefaultFBO = readDefaultFBO();
    mFrameBuffers.clear();
}

void RenderState::reset() {
    mProgram = nullptr;
    mBlend = BlendFunc::DISABLE;
    mBlendKnown = false;
    mVao = 0;
    mVbo = 0;
}

void RenderState::pushFrameBuffer(FrameBuffer* frameBuffer) {
    if (frameBuffer->getFBO() != getCurFBO()) {
        glBindFramebuffer(GL_FRAMEBUFFER, frameBuffer->getFBO());
    }
    mFrameBuffers.push_back(frameBuffer);
}

void RenderState::popFrameBuffer() {
    const unsigned int popped = getCurFBO();
    mFrameBuffers.pop_back();
    const unsigned int current = getCurFBO();
    if (current != popped) {
        glBindFramebuffer(GL_FRAMEBUFFER, current);
    }
}

unsigned int RenderState::getCurFBO() const {
    return mFrameBuffers.empty() ? static_cast<unsigned int>(mDefaultFBO) : mFrameBuffers.back()->getFBO();
}

void RenderState::pushViewPort(const ViewPort& viewPort, bool force) {
    if (force || mViewPorts.empty() || mViewPorts.back() != viewPort) {
        setViewPort(viewPort);
    }
    mViewPorts.push_back(viewPort);
}

void RenderState::popViewPort(unsigned short count) {
    if (count == 0) {
        return;
    }
    const ViewPort before = mViewPorts.back();
    mViewPorts.resize(mViewPorts.size() - count);
    if (!mViewPorts.empty() && mViewPorts.back() != before) {
        setViewPort(mViewPorts.back());
    }
}

const ViewPort& RenderState::getCurViewPort() const {
    return mViewPorts.back();
}

Size16 RenderState::getRenderBufferSize() const {
    GLint width = 0;
    GLint height = 0;
    glGetRenderbufferParameteriv(GL_RENDERBUFFER, GL_RENDERBUFFER_WIDTH, &width);
    glGetRenderbufferParameteriv(GL_RENDERBUFFER, GL_RENDERBUFFER_HEIGHT, &height);
    return Size16(static_cast<unsigned short>(width), static_cast<unsigned short>(height));
}

void RenderState::setBlend(const BlendFunc& blend) {
    if (mBlendKnown && blend == mBlend) {
        return;
    }
    if (blend == BlendFunc::DISABLE) {
        glDisable(GL_BLEND);
    } else {
        HostState::beforeBlending();
        if (mBlend == BlendFunc::DISABLE) {
            glEnable(GL_BLEND);
        }
        glBlendFunc(blend.src, blend.dst);
    }
    mBlend = blend;
    mBlendKnown = true;
}

void RenderState::useProgram(Program* program) {
    mProgram = program;
    glUseProgram(program != nullptr ? program->getName() : 0);
}

unsigned int RenderState::genAndBindVao() {
    if (!hasVertexArrays()) {
        return 0;
    }
    const bool reused = !mCollectedVaos.empty();
    if (reused) {
        mVao = mCollectedVaos.back();
        mCollectedVaos.pop_back();
    } else {
        glGenVertexArrays(1, &mVao);
    }
    glBindVertexArray(mVao);
    if (reused) {
        for (GLuint index = 0; index < AttribIndex::COUNT; ++index) {
            glDisableVertexAttribArray(index);
        }
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);  // a vertex array remembers its former owner's indices too
    }
    return mVao;
}

void RenderState::bindVao(unsigned int vao) {
    mVao = vao;
    if (hasVertexArrays()) {
        glBindVertexArray(vao);
    }
}

void RenderState::collectVao(unsigned int vao) {
    if (vao != 0) {
        mCollectedVaos.push_back(vao);
    }
}

unsigned int RenderState::genAndBindVbo(unsigned int target) {
    glGenBuffers(1, &mVbo);
    glBindBuffer(target, mVbo);
    return mVbo;
}

unsigned int RenderState::genVbo(unsigned int target, std::int64_t bytes, const void* data,
                                 unsigned int usage) {
    genAndBindVbo(target);
    glBufferData(target, static_cast<GLsizeiptr>(bytes), data, usage);
    return mVbo;
}

void RenderState::bindVbo(unsigned int target, unsigned int buffer) {
    mVbo = buffer;
    glBindBuffer(target, buffer);
}

void RenderState::bufferData(unsigned int buffer, unsigned int target, std::int64_t bytes, const void* data,
                             unsigned int usage) {
    bindVbo(target, buffer);
    glBufferData(target, static_cast<GLsizeiptr>(bytes), data, usage);
}

void RenderState::vertexAttribPointer(AttribIndex::Enum index, int size, unsigned int type,
                                      unsigned char normalized, int stride, const void* pointer) {
    glEnableVertexAttribArray(static_cast<GLuint>(index));
    glVertexAttribPointer(static_cast<GLuint>(index), size, type, normalized, stride, pointer);
}

void RenderState::unBindVaoVbo() {
    bindVao(0);
    bindVbo(GL_ARRAY_BUFFER, 0);
}

void RenderState::drawArrays(unsigned int mode, int first, int count) {
    glDrawArrays(mode, first, count);
}

void RenderState::drawArraysUnfiltered(unsigned int mode, int first, int count) {
    if (!hasSamplers()) {
        drawArrays(mode, first, count);
        return;
    }
    if (mNearestSampler == 0) {
        glGenSamplers(1, &mNearestSampler);
        glSamplerParameteri(mNearestSampler, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glSamplerParameteri(mNearestSampler, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        glSamplerParameteri(mNearestSampler, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        glSamplerParameteri(mNearestSampler, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    }
    glBindSampler(0, mNearestSampler);
    drawArrays(mode, first, count);
    glBindSampler(0, 0);
}

void RenderState::drawElements(unsigned int mode, int count, unsigned int type, const void* indices) {
    glDrawElements(mode, count, type, indices);
}

}  // namespace zv
