#pragma once

#include <cstdint>

#include "core/TVec.h"
#include "core/ZVExport.h"
#include "gl/PxFormat.h"
#include "scene/RenderTexture.h"

namespace zv {

/// The picture lunges at the viewer: in five frames it zooms in about its centre to 1.2, then snaps back and
/// rests for ten. The node draws its input into its own target unchanged; the zoom appears where the node is
/// drawn. Each draw is one frame of a cycle of 15. A chain draws each member once a frame, wherever it
/// stands; what ZVMediaEngine::setRenderToScreen() shows a second time plays twice as fast.
/// - Input: what is in the front scene, any format, any orientation.
/// - Output: the size and format it was made with; alpha is zoomed with the picture.
/// - Cost: one pass at full size, one target; 1 fetch a pixel. Nothing outside the picture is ever sampled.
/// - State: leaves its program in use, and the shown rectangle of its texture at the frame's zoom: a
///   rectangle that the host sets is replaced at the next draw.
/// - Setters: none. Time is the count of draws, not the clock, so that the same run gives the same frames.
class ZV_API JitterNode : public RenderTexture {
public:
    JitterNode() = default;

    /// @param frameBuffer retained; null for one of its own
    static JitterNode* create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format);

    void onDrawSelf(const Mat4& matrix) override;

    using RenderTexture::init;

protected:
    bool init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) override;
    /// One step of the cycle: takes the frame's zoom and shows the part of the texture that it leaves.
    virtual void updateAnimationParams();

private:
    float mScale = 1.0F;
    float mMaxScale = 1.2F;
    std::int32_t mFrame = 0;
    std::int32_t mPeriod = 15;
};

}  // namespace zv
