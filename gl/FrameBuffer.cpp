#include "gl/FrameBuffer.h"

#include <GL/glew.h>

#include <mutex>

#include "core/RefCreate.h"
#include "gl/RenderState.h"
#include "gl/RenderTarget.h"
#include "gl/RenderTargetDepthStencil.h"
#include "gl/Texture2D.h"

namespace zv {

namespace {

/// Guards FrameBuffer::sFrameBuffers: engines on several threads make and destroy buffers.
std::mutex sFrameBuffersLock;

}  // namespace

std::set<FrameBuffer*> FrameBuffer::sFrameBuffers;
std::atomic<FrameBuffer*> FrameBuffer::sDefaultFBO{nullptr};

FrameBuffer* FrameBuffer::create() {
    return createRef<FrameBuffer>([](FrameBuffer& f) { return f.init(); });
}

FrameBuffer* FrameBuffer::createDefault(int fbo) {
    return createRef<FrameBuffer>([fbo](FrameBuffer& f) {
        if (!f.init(fbo, false)) {
            return false;
        }
        f.mIsDefault = true;
        sDefaultFBO = &f;
        return true;
    });
}

FrameBuffer::~FrameBuffer() {
    if (mRenderTarget != nullptr) {
        mRenderTarget->release();
    }
    if (mDepthStencilTarget != nullptr) {
        mDepthStencilTarget->release();
    }
    if (mOwnsFBO && mFBO > 0) {
        glDeleteFramebuffers(1, &mFBO);
    }
    {
        const std::lock_guard<std::mutex> lock(sFrameBuffersLock);
        sFrameBuffers.erase(this);
    }
    FrameBuffer* self = this;
    sDefaultFBO.compare_exchange_strong(self, nullptr);
}

bool FrameBuffer::init(int fbo, bool owns) {
    mFBO = static_cast<unsigned int>(fbo);
    mOwnsFBO = owns;
    return true;
}

bool FrameBuffer::init() {
    glGenFramebuffers(1, &mFBO);
    mOwnsFBO = true;
    mThread = std::this_thread::get_id();
    const std::lock_guard<std::mutex> lock(sFrameBuffersLock);
    sFrameBuffers.insert(this);
    return true;
}

void FrameBuffer::attachRenderTarget(RenderTarget* target) {
    if (target == mRenderTarget) {
        return;
    }
    if (mRenderTarget != nullptr) {
        mRenderTarget->release();
    }
    mRenderTarget = target;
    if (mRenderTarget != nullptr) {
        mRenderTarget->retain();
    }
    mBindingDirty = true;
}

void FrameBuffer::attachDepthStencilTarget(RenderTargetDepthStencil* target) {
    if (target != nullptr) {
        target->retain();  // before the release: it may be the held one, and held by us alone
    }
    if (mDepthStencilTarget != nullptr) {
        mDepthStencilTarget->release();
    }
    mDepthStencilTarget = target;
    mBindingDirty = true;
}

void FrameBuffer::apply() {
    if (!mBindingDirty || mIsDefault) {
        return;
    }
    const Texture2D* texture = mRenderTarget != nullptr ? mRenderTarget->getTexture() : nullptr;
    if (texture != nullptr && mRenderTarget->getType() == RenderTarget::TYPE_TEXTURE) {
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, texture->getTarget(), texture->getName(),
                               0);
    } else {
        const GLuint buffer = mRenderTarget != nullptr ? mRenderTarget->getBuffer() : 0;
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, buffer);
    }
    mBindingDirty = false;
}

void FrameBuffer::clearFBO() {
    RenderState* state = RenderState::getCurrent();
    state->pushFrameBuffer(this);
    glClearColor(mClearColor.r, mClearColor.g, mClearColor.b, mClearColor.a);
    glClearDepth(mClearDepth);
    glClearStencil(mClearStencil);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    state->popFrameBuffer();
}

void FrameBuffer::clearAllFBOs() {
    const std::thread::id here = std::this_thread::get_id();
    const std::lock_guard<std::mutex> lock(sFrameBuffersLock);
    for (FrameBuffer* frameBuffer : sFrameBuffers) {
        if (frameBuffer->mThread == here) {
            frameBuffer->clearFBO();
        }
    }
}

void FrameBuffer::resetSize(const Size16& size) {
    if (mRenderTarget != nullptr) {
        mRenderTarget->resetSize(size);
    }
    if (mDepthStencilTarget != nullptr) {
        mDepthStencilTarget->resetSize(size);
    }
    mBindingDirty = true;
}

void FrameBuffer::applyDefaultFBO() {}

}  // namespace zv
