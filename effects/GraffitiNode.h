#pragma once

#include <cstdint>

#include "core/TVec.h"
#include "core/ZVExport.h"
#include "gl/PxFormat.h"
#include "scene/RenderTexture.h"
#include "scene/VertexUpload.h"

namespace zv {

class RenderState;

/// The picture becomes ink on paper, and spray paint comes over it: the strokes of a fixed drawing, a spray
/// can that writes its bar above a brick wall, show the picture in paint. They come group by group, from the
/// bottom up, and go the same way back; in every second group all that is drawn shakes sideways on the paper.
/// The node draws its input into its own target unchanged; the drawing appears where the node is drawn. Each
/// draw is one frame of a cycle of 140, ten a group. A chain draws each member once a frame, wherever it
/// stands; what ZVMediaEngine::setRenderToScreen() shows a second time plays twice as fast.
/// - Input: what is in the front scene, any format; upright, as the drawing has a top.
/// - Output: the size and format it was made with; alpha shakes with the drawing.
/// - Cost: one pass at full size and up to 28 strokes on top, one target; 7 fetches a pixel. The strokes are
///   one multi-draw where the context has vertex arrays, a draw each where it has not.
/// - State: leaves its program in use. The strokes are blended with the node's blend function, as the picture
///   is. They stay where they are: flip, rotation and shown rectangle of the node turn the picture only.
/// - Setters: none. Time is the count of draws, not the clock, so that the same run gives the same frames.
class ZV_API GraffitiNode : public RenderTexture {
public:
    GraffitiNode() = default;

    /// @param frameBuffer retained; null for one of its own
    static GraffitiNode* create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                PxFormat format);

    void setProgram(Program* program) override;
    void onDrawSelf(const Mat4& matrix) override;

    using RenderTexture::init;

protected:
    bool init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) override;
    /// One step of the cycle: which strokes are drawn, and how far the drawing is shaken.
    virtual void updateAnimationParams();

private:
    /// Locations of the uniforms, -1 where the program has none.
    struct Locations {
        std::int32_t texelWidthOffset = -1;
        std::int32_t texelHeightOffset = -1;
        std::int32_t shakeX = -1;
        std::int32_t drawingType = -1;
    };

    bool canDraw();
    void drawStrokes(RenderState& state);
    void drawFromBuffer(RenderState& state);
    void drawFromMemory(RenderState& state);

    float mShakeX = 0.0F;
    std::int32_t mFirstRect = -1;
    std::int32_t mLastRect = 0;
    std::int32_t mFrame = 0;
    std::int32_t mPeriod = 10;
    Locations mLocations;
    VertexUpload mStrips;
};

}  // namespace zv
