#include "scene/TargetPass.h"

#include "gl/FrameBuffer.h"
#include "gl/RenderState.h"
#include "gl/RenderTarget.h"

namespace zv {

namespace {

thread_local TargetPass* tInnermost = nullptr;

}  // namespace

TargetPass::TargetPass(FrameBuffer& frameBuffer, RenderTarget& target)
    : mState(*RenderState::getCurrent()), mFrameBuffer(frameBuffer), mTarget(&target), mOuter(tInnermost) {
    tInnermost = this;
    mFrameBuffer.retain();
    mTarget->retain();
    mState.pushFrameBuffer(&mFrameBuffer);
    mFrameBuffer.attachRenderTarget(mTarget);
    mFrameBuffer.apply();
}

TargetPass::~TargetPass() {
    mState.popFrameBuffer();
    tInnermost = mOuter;
    if (mOuter != nullptr) {
        mOuter->attach();
    }
    mTarget->release();
    mFrameBuffer.release();
}

void TargetPass::changeTarget(RenderTarget& target) {
    target.retain();
    mTarget->release();
    mTarget = &target;
    attach();
}

void TargetPass::attach() {
    mFrameBuffer.attachRenderTarget(mTarget);
    // Bound already, unless somebody bound another frame buffer over this pass meanwhile.
    mState.pushFrameBuffer(&mFrameBuffer);
    mFrameBuffer.apply();
    mState.popFrameBuffer();
}

}  // namespace zv
