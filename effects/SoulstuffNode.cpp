#include "effects/SoulstuffNode.h"

#include <algorithm>

#include "core/RefCreate.h"
#include "gl/FrameBuffer.h"
#include "gl/Program.h"

namespace zv {

namespace {

constexpr std::int32_t kRest = 5;  ///< frames besides the growing phase; the copy is invisible up to this one
constexpr float kSmallest = 0.1F;
constexpr float kLargest = 10.0F;

}  // namespace

SoulstuffNode* SoulstuffNode::create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                     PxFormat format) {
    return createRef<SoulstuffNode>(
        [&](SoulstuffNode& node) { return node.init(size, frameBuffer, format); });
}

bool SoulstuffNode::init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) {
    if (!RenderTexture::init(size, frameBuffer, format)) {
        return false;
    }
    setProgram(Program::createWithFile("ZvShaderTexturePosition.vert", "ZvShaderSoulstuffFilter.frag"));
    return true;
}

void SoulstuffNode::updateAnimationParams() {
    mFrame = (mFrame + 1) % (mPeriod + kRest);
    const float grown =
        mFrame <= kRest ? 1.0F : static_cast<float>(mFrame - kRest) / static_cast<float>(mPeriod);
    mShadowAlpha = mAlphaFrom + (mAlphaTo - mAlphaFrom) * grown;
    mShadowScale = std::clamp(mScaleFrom + (mScaleTo - mScaleFrom) * grown, kSmallest, kLargest);
    if (Program* program = getProgram()) {
        program->setUniformValue("fShadowAlpha", mShadowAlpha);
        program->setUniformValue("fShadowScale", mShadowScale);
    }
}

void SoulstuffNode::onDrawSelf(const Mat4& matrix) {
    updateAnimationParams();
    RenderTexture::onDrawSelf(matrix);
}

}  // namespace zv
