#include "face/FaceBias.h"

#include <algorithm>
#include <cmath>

namespace zv {

void FaceBias::learn(const FaceMeshPoints& seen, const FaceMeshPoints& inMirror, const FaceRegion& region,
                     float share) {
    const float c = std::cos(region.angle) / region.side, s = std::sin(region.angle) / region.side;
    for (int i = 0; i < kFaceMeshPoints; ++i) {
        const Vec3f& a = seen.points[i];
        const Vec3f& b = inMirror.points[i];
        const float x = (a.x - b.x) / 2.0F, y = (a.y - b.y) / 2.0F, z = (a.z - b.z) / 2.0F;
        Vec3f& offset = mOffsets[i];
        offset = {offset.x + share * (c * x + s * y - offset.x),
                  offset.y + share * (c * y - s * x - offset.y),
                  offset.z + share * (z / region.side - offset.z)};
    }
}

void FaceBias::takeOff(FaceMeshPoints& mesh, const FaceRegion& region) const {
    const float c = std::cos(region.angle) * region.side, s = std::sin(region.angle) * region.side;
    for (int i = 0; i < kFaceMeshPoints; ++i) {
        const Vec3f& offset = mOffsets[i];
        Vec3f& point = mesh.points[i];
        point = {point.x - (c * offset.x - s * offset.y), point.y - (s * offset.x + c * offset.y),
                 point.z - region.side * offset.z};
    }
}

void FaceBias::reset() {
    std::fill(std::begin(mOffsets), std::end(mOffsets), Vec3f());
}

}  // namespace zv
