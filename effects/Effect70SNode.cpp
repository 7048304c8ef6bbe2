#include "effects/Effect70SNode.h"

#include "core/RefCreate.h"
#include "gl/FrameBuffer.h"
#include "gl/Program.h"
#include "gl/RenderState.h"

namespace zv {

namespace {

constexpr float kTimeStep = 0.1F;

}  // namespace

Effect70SNode* Effect70SNode::create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                     PxFormat format) {
    return createRef<Effect70SNode>(
        [&](Effect70SNode& node) { return node.init(size, frameBuffer, format); });
}

bool Effect70SNode::init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) {
    if (!RenderTexture::init(size, frameBuffer, format)) {
        return false;
    }
    setProgram(Program::createWithFile("ZvShader70SFilter.vert", "ZvShader70SFilter.frag"));
    return true;
}

void Effect70SNode::setProgram(Program* program) {
    RenderTexture::setProgram(program);
    mTimeLocation = program != nullptr ? program->getUniformLocation("time") : -1;
    mFrameSizeLocation = program != nullptr ? program->getUniformLocation("frameSize") : -1;
}

void Effect70SNode::updateAnimationParams() {
    mFrame = mFrame % mPeriod + 1;
    mTime = static_cast<float>(mFrame) * kTimeStep;
}

void Effect70SNode::onDrawSelf(const Mat4& matrix) {
    updateAnimationParams();
    Program* program = getProgram();
    RenderState* state = RenderState::getCurrent();
    if (program != nullptr && state != nullptr) {
        const float frameSize[2] = {static_cast<float>(getSize().x), static_cast<float>(getSize().y)};
        state->useProgram(program);
        program->setUniform2fv(mFrameSizeLocation, frameSize, 1);
        program->setUniform1f(mTimeLocation, mTime);
    }
    RenderTexture::onDrawSelf(matrix);
}

}  // namespace zv
