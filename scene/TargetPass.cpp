#include "scene/TargetPass.h"

#include "gl/FrameBuffer.h"
#include "gl/RenderState.h"
#include "gl/RenderTarget.h"

namespace zv {

namespace {

thread_local TargetPass* tInnermost = nullptr;

}  // namespace

TargetPass::TargetPass(FrameBuffer& frameBuffer, RenderTarget& target)
    : mFrameBuffer(frameBuffer), mTarget(&target), mOuter(tInnermost) {
    tInnermost = this;
    mFrameBuffer.retain();
    mTarget->retain();
    RenderState::getCurrent()->pushFrameBuffer(&mFrameBuffer);
    attach();
}

TargetPass::~TargetPass() {
    RenderState::getCurrent()->popFrameBuffer();
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
    RenderState* state = RenderState::getCurrent();
    state->pushFrameBuffer(&mFrameBuffer);
    mFrameBuffer.apply();
    state->popFrameBuffer();
}

}  // namespace zv
