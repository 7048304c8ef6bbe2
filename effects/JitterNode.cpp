#include "effects/JitterNode.h"

#include <algorithm>

#include "core/RefCreate.h"
#include "gl/FrameBuffer.h"
#include "gl/Program.h"
#include "gl/Texture2D.h"

namespace zv {

namespace {

/// Zoom by frame of the cycle.
constexpr float kScales[] = {1.0F, 1.1F, 1.15F, 1.2F, 1.2F, 1.0F, 1.0F, 1.0F,
                             1.0F, 1.0F, 1.0F,  1.0F, 1.0F, 1.0F, 1.0F};

}  // namespace

JitterNode* JitterNode::create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                               PxFormat format) {
    return createRef<JitterNode>([&](JitterNode& node) { return node.init(size, frameBuffer, format); });
}

bool JitterNode::init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) {
    if (!RenderTexture::init(size, frameBuffer, format)) {
        return false;
    }
    setProgram(Program::createWithFile("ZvShaderTexturePosition.vert", "ZvShaderJitterFilter.frag"));
    return true;
}

void JitterNode::updateAnimationParams() {
    const std::int32_t place = mFrame % mPeriod;
    mScale = std::min(kScales[place], mMaxScale);
    mFrame = place + 1;
    const Texture2D* texture = getTexture(0);
    if (texture == nullptr) {
        return;
    }
    const auto width = static_cast<float>(texture->getSize().x);
    const auto height = static_cast<float>(texture->getSize().y);
    const TVec<2, float> visible(width / mScale, height / mScale);
    const TVec<2, float> offset((width - visible.x) * 0.5F, (height - visible.y) * 0.5F);
    // A sprite reads the third and fourth value as far edges, not as a size. It looks itself whether they
    // differ.
    setRect({offset.x, offset.y, offset.x + visible.x, offset.y + visible.y});
}

void JitterNode::onDrawSelf(const Mat4& matrix) {
    updateAnimationParams();
    RenderTexture::onDrawSelf(matrix);
}

}  // namespace zv
