#pragma once

#include <cstdint>

#include "core/TVec.h"
#include "core/ZVExport.h"
#include "gl/PxFormat.h"
#include "scene/RenderTexture.h"

namespace zv {

/// A soul leaves the body: a pale copy of the picture grows out of its centre and fades away. The node draws
/// its input into its own target unchanged; the copy appears where the node is drawn. Each draw is one frame
/// of a cycle of 17: six frames without a copy, then eleven in which it grows from 1.06 to 1.64 and fades
/// from 0.37 to 0.03. A new node starts at the second of the six. A chain draws each member once a frame,
/// wherever it stands; what ZVMediaEngine::setRenderToScreen() shows a second time plays twice as fast.
/// - Input: what is in the front scene, any format, any orientation.
/// - Output: the size and format it was made with; alpha is that of the picture.
/// - Cost: one pass at full size, one target; 2 fetches a pixel.
/// - State: leaves its program in use.
/// - Setters: none. Time is the count of draws, not the clock, so that the same run gives the same frames.
class ZV_API SoulstuffNode : public RenderTexture {
public:
    SoulstuffNode() = default;

    /// @param frameBuffer retained; null for one of its own
    static SoulstuffNode* create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                 PxFormat format);

    void onDrawSelf(const Mat4& matrix) override;

    using RenderTexture::init;

protected:
    bool init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) override;
    /// One step of the cycle; what it gives goes to GL with the draw that follows.
    virtual void updateAnimationParams();

private:
    std::int32_t mFrame = 0;
    std::int32_t mPeriod = 12;
    float mAlphaFrom = 0.4F;
    float mAlphaTo = 0.0F;
    float mShadowAlpha = 0.4F;
    float mScaleFrom = 1.0F;
    float mScaleTo = 1.7F;
    float mShadowScale = 1.0F;
};

}  // namespace zv
