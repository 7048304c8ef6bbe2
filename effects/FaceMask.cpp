#include "effects/FaceMask.h"

#include <algorithm>
#include <cmath>

namespace zv {

namespace {

/// Cells of the mesh in an eye distance.
constexpr float kCellsPerUnit = 12.0F;

/// The outline is a superellipse, |x|^p + |y|^p = 1: jaws are a little squarer than an ellipse.
constexpr float kSquareness = 2.25F;
constexpr float kRimFrom = 0.70F;  ///< of 1: where the mask begins to fade
/// How far up the forehead it reaches: a fringe is to keep its strands.
constexpr float kForehead = 0.8F;

/// Half the thickness of a brow, and where the mask is whole again.
constexpr float kBrowHalf = 0.08F;
constexpr float kBrowFade = 0.20F;

float smoothstep(float from, float to, float x) {
    const float t = std::clamp((x - from) / (to - from), 0.0F, 1.0F);
    return t * t * (3.0F - 2.0F * t);
}

float squaredRadius(Vec2f place, Vec2f centre, float halfWidth, float halfHeight) {
    const float x = (place.x - centre.x) / halfWidth;
    const float y = (place.y - centre.y) / halfHeight;
    return x * x + y * y;
}

float distanceToLine(Vec2f place, Vec2f from, Vec2f to) {
    const Vec2f along(to.x - from.x, to.y - from.y);
    const Vec2f away(place.x - from.x, place.y - from.y);
    const float squared = std::max(along.x * along.x + along.y * along.y, 1e-6F);
    const float part = std::clamp((away.x * along.x + away.y * along.y) / squared, 0.0F, 1.0F);
    const float x = away.x - part * along.x;
    const float y = away.y - part * along.y;
    return std::sqrt(x * x + y * y);
}

}  // namespace

bool FaceMask::set(const FaceGeometry& face) {
    mFace = face;
    const float top = kForehead * face.hairline;
    const float sides = std::max(std::abs(face.midline(top)), std::abs(face.midline(face.chin.y)));
    bool first = true;
    for (const float y : {face.chin.y, top}) {
        for (const float x : {-face.faceHalf[0] - sides, face.faceHalf[1] + sides}) {
            const Vec2f corner = face.toPicture({x, y});
            mArea.low =
                first ? corner : Vec2f(std::min(mArea.low.x, corner.x), std::min(mArea.low.y, corner.y));
            mArea.high =
                first ? corner : Vec2f(std::max(mArea.high.x, corner.x), std::max(mArea.high.y, corner.y));
            first = false;
        }
    }
    mArea.step = face.unit / kCellsPerUnit;
    return face.trust > 0.0F;
}

float FaceMask::at(Vec2f pixel) const {
    const Vec2f place = mFace.toFace(pixel);
    float mask = ovalAt(place);
    if (mask == 0.0F) {
        return 0.0F;
    }
    for (int side = 0; side < 2; ++side) {
        const float half = mFace.eyeHalf[side];
        mask *= smoothstep(1.0F, 2.0F, squaredRadius(place, mFace.eyes[side], 1.2F * half, 0.75F * half));
    }
    mask *= smoothstep(1.0F, 1.7F,
                       squaredRadius(place, mFace.mouth, 1.25F * mFace.mouthHalf, 1.25F * mFace.lipHalf));
    return mask * browsAt(place) * mFace.trust;
}

float FaceMask::ovalAt(Vec2f place) const {
    const float x = place.x - mFace.midline(place.y);
    const float across = std::abs(x) / mFace.faceHalf[x < 0.0F ? 0 : 1];
    const float down = std::abs(place.y / (place.y < 0.0F ? mFace.chin.y : kForehead * mFace.hairline));
    if (across >= 1.0F || down >= 1.0F) {
        return 0.0F;
    }
    return 1.0F - smoothstep(kRimFrom, 1.0F, std::pow(across, kSquareness) + std::pow(down, kSquareness));
}

float FaceMask::browsAt(Vec2f place) const {
    float nearest = kBrowFade;
    for (const auto& brow : mFace.brows) {
        for (int i = 0; i + 1 < 5; ++i) {
            nearest = std::min(nearest, distanceToLine(place, brow[i], brow[i + 1]));
        }
    }
    return smoothstep(kBrowHalf, kBrowFade, nearest);
}

}  // namespace zv
