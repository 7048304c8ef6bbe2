#pragma once

#include "core/TVec.h"
#include "core/ZVExport.h"
#include "effects/ColorTableNode.h"
#include "gl/PxFormat.h"

namespace zv {

/// Brightens skin: mixes the picture with its colours in a lookup image. The node draws its input into its
/// own target unchanged; the whitening acts when the node itself is drawn, by the next stage or on the
/// screen.
/// - Input: what is in the front scene, any format, any orientation. Slot 1 holds the lookup image
///   "zv_res/lookups/kel_white.png", a colour table of 512 x 512 (see ColorTableNode). When it does not load,
///   one line is logged and the picture stays as it is.
/// - Output: the size and format it was made with; alpha passes through.
/// - Cost: one pass at full size, one target; 9 fetches a pixel.
/// - State: leaves its program in use.
/// - Setters: see each; they take effect at the next draw.
class ZV_API SkinWhitingNode : public ColorTableNode {
public:
    SkinWhitingNode() = default;

    /// @param frameBuffer retained; null for one of its own
    static SkinWhitingNode* create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                   PxFormat format);

    /// How much of the looked-up colour is mixed in, 0 (the picture) to 1 (the lookup image), default 0.3.
    /// Sent as given: other values extrapolate.
    void setSkinWhitening(float strength);
    float getSkinWhitening() const { return mSkinWhitening; }

protected:
    using ColorTableNode::init;
    bool init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) override;

private:
    float mSkinWhitening = 0.3F;
};

}  // namespace zv
