#pragma once

#include <cstdint>

#include "core/TVec.h"
#include "core/ZVExport.h"
#include "gl/PxFormat.h"
#include "scene/RenderTexture.h"

namespace zv {

/// The look of a picture tube and a film projector of the 1970s: faded warm colours that bleed to the side,
/// scan lines, grain, a vignette, and a picture that weaves a little in its gate. The node draws its input
/// into its own target unchanged; the look appears where the node is drawn. Each draw is one frame of a cycle
/// of 100. A chain draws each member once a frame, wherever it stands;
/// what ZVMediaEngine::setRenderToScreen() shows a second time plays twice as fast.
/// - Input: what is in the front scene, any format; upright, as scan lines are horizontal.
/// - Output: the size and format it was made with; alpha moves with the picture.
/// - Cost: one pass at full size, one target; 6 fetches a pixel.
/// - State: leaves its program in use.
/// - Setters: none. Time is the count of draws, not the clock, so that the same run gives the same frames.
class ZV_API Effect70SNode : public RenderTexture {
public:
    Effect70SNode() = default;

    /// @param frameBuffer retained; null for one of its own
    static Effect70SNode* create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                 PxFormat format);

    void setProgram(Program* program) override;
    void onDrawSelf(const Mat4& matrix) override;

    using RenderTexture::init;

protected:
    bool init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) override;
    /// One step of the cycle: "time" is 0.1 at the first draw, 10 at the hundredth, 0.1 again at the next.
    virtual void updateAnimationParams();

private:
    float mTime = 4.0F;
    std::int32_t mFrame = 0;
    std::int32_t mPeriod = 100;
    std::int32_t mTimeLocation = -1;
    std::int32_t mFrameSizeLocation = -1;
};

}  // namespace zv
