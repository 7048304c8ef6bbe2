#pragma once

#include "core/TVec.h"
#include "effects/FaceGeometry.h"
#include "effects/FaceGrid.h"

namespace zv {

/// How much of a picture is the skin of one face: 1 within the oval of the face, 0 outside of it and on eyes,
/// brows and lips, with soft borders.
class FaceMask {
public:
    /// False when the face has no weight.
    bool set(const FaceGeometry& face);

    /// Where the mask may be above 0, in pixels.
    const FaceArea& area() const { return mArea; }
    /// The distance of the eyes in pixels.
    float unit() const { return mFace.unit; }

    /// 0 to 1.
    float at(Vec2f pixel) const;

private:
    float ovalAt(Vec2f place) const;
    float browsAt(Vec2f place) const;

    FaceGeometry mFace;
    FaceArea mArea;
};

}  // namespace zv
