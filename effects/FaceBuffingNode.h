#pragma once

#include "core/TVec.h"
#include "core/ZVExport.h"
#include "gl/PxFormat.h"
#include "scene/RenderTexture.h"

namespace zv {

/// The place of face smoothing in the beauty chain. It passes its picture through as it is.
/// - Input: what is in the front scene, any format, any orientation.
/// - Output: the size and format it was made with, the picture unchanged.
/// - Cost: one pass at full size, one target.
/// - State: leaves its program in use.
/// - Setters: none.
class ZV_API FaceBuffingNode : public RenderTexture {
public:
    FaceBuffingNode() = default;

    /// @param frameBuffer retained; null for one of its own
    static FaceBuffingNode* create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                   PxFormat format);
};

}  // namespace zv
