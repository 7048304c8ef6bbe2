#pragma once

#include <map>

#include "core/TVec.h"
#include "core/ZVExport.h"
#include "gl/PxFormat.h"
#include "scene/RenderTexture.h"

namespace zv {

/// The place of face reshaping in the beauty chain. It keeps the settings of the deformation; without face
/// data there is nothing to deform, and the picture passes through as it is.
/// - Input: what is in the front scene, any format, any orientation.
/// - Output: the size and format it was made with, the picture unchanged.
/// - Cost: one pass at full size, one target.
/// - State: leaves its program in use.
/// - Setters: see each; they are kept, and do not change the picture without face data.
class ZV_API FaceShapeNode : public RenderTexture {
public:
    FaceShapeNode() = default;

    /// @param frameBuffer retained; null for one of its own
    static FaceShapeNode* create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                 PxFormat format);

    /// Strength of one kind of deformation, any number; 0, the default, is none.
    void updateFaceShape(int type, float value);
    /// 0 for a type that was never set.
    float getFaceShape(int type) const;
    /// Distance from the border of the picture, in pixels, within which nothing is deformed; default 30.
    void setClipEdge(float pixels) { mClipEdge = pixels; }
    float getClipEdge() const { return mClipEdge; }

private:
    std::map<int, float> mStrengths;
    float mClipEdge = 30.0F;
};

}  // namespace zv
