#pragma once

#include "core/TVec.h"
#include "face/FaceImage.h"
#include "face/FaceMesh.h"

namespace zv {

/// What the network sees askew in one face. It is not symmetric: in a picture's mirror image it does not see
/// the mirror image of what it sees in the picture. Half of that difference, point by point, is its own
/// doing.
class FaceBias {
public:
    /// Takes in what the network made of a region and of the region's mirror image.
    /// @param share of the news in what is known, 0 to 1
    void learn(const FaceMeshPoints& seen, const FaceMeshPoints& inMirror, const FaceRegion& region,
               float share);
    /// Takes the bias off what the network saw in that region.
    void takeOff(FaceMeshPoints& mesh, const FaceRegion& region) const;
    void reset();

private:
    Vec3f mOffsets[kFaceMeshPoints];  // in axes turned with the region, parts of its side
};

}  // namespace zv
