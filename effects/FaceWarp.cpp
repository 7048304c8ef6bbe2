#include "effects/FaceWarp.h"

#include <algorithm>
#include <cmath>

#include "effects/FaceShapeNode.h"

namespace zv {

namespace {

/// What each value does at 1. Parts of the distance from the centre for eyes and mouth, of the half width of
/// face, chin and nose, and of the eye distance for the rest. All are far below what would fold a field.
constexpr float kEyes = 0.25F;
constexpr float kSlim = 0.13F;
constexpr float kChin = 0.22F;
constexpr float kShort = 0.18F;
constexpr float kNose = 0.22F;
constexpr float kMouth = 0.26F;
constexpr float kForehead = 0.22F;

/// Cells of the mesh in an eye distance.
constexpr float kCellsPerUnit = 16.0F;
/// The most by which the way to the border is shortened or stretched.
constexpr float kBorderSlope = 0.35F;

/// Where t^3 (1 - t^2)^2 and t (1 - t^2)^2 are largest, and 1 over what they are there.
constexpr float kCubicPeak = 0.6547F, kCubicScale = 10.915F;
constexpr float kLinearPeak = 0.4472F, kLinearScale = 3.494F;

/// From 1 in the middle to 0 at 1, with slope 0 there: of the squared distance.
float bell(float squared) {
    const float rest = 1.0F - squared;
    return rest > 0.0F ? rest * rest : 0.0F;
}

float window(float away, float down, float up) {
    const float t = away / (away < 0.0F ? down : up);
    return bell(t * t);
}

}  // namespace

bool FaceWarp::set(const FaceGeometry& face, const float* values) {
    mFace = face;
    mFieldCount = 0;
    mNearBorder = false;
    addFields(values);
    measureArea();
    return mFieldCount > 0;
}

void FaceWarp::add(const Field& field) {
    if (field.amount != 0.0F) {
        mFields[mFieldCount++] = field;
    }
}

/// What moves much comes first: the others then find eyes, nose and mouth where the points are.
void FaceWarp::addFields(const float* values) {
    const FaceGeometry& face = mFace;
    const auto amount = [&](FaceShapeType type, float most) { return values[type] * most * face.trust; };
    const float chinY = face.chin.y;

    Field slim{Kind::ALONG_X, true, amount(FACE_SHAPE_SLIM, kSlim)};
    slim.centre.y = 0.62F * chinY;
    slim.left = face.faceHalf[0] / kCubicPeak;
    slim.right = face.faceHalf[1] / kCubicPeak;
    slim.down = -0.72F * chinY;
    slim.up = -0.72F * chinY;
    slim.narrowing = 0.4F;
    add(slim);

    Field chin{Kind::ALONG_X, false, amount(FACE_SHAPE_CHIN, kChin)};
    chin.centre.y = 0.97F * chinY;
    chin.left = 0.52F * face.faceHalf[0] / kLinearPeak;
    chin.right = 0.52F * face.faceHalf[1] / kLinearPeak;
    chin.down = -0.38F * chinY;
    chin.up = -0.45F * chinY;
    add(chin);

    Field shorter{Kind::ALONG_Y, false, -amount(FACE_SHAPE_SHORT, kShort)};
    shorter.centre = {face.chin.x, chinY};
    shorter.left = 1.7F * face.faceHalf[0];
    shorter.right = 1.7F * face.faceHalf[1];
    shorter.up = -0.75F * chinY;
    shorter.down = -0.5F * chinY;
    add(shorter);

    Field forehead{Kind::ALONG_Y, false, -amount(FACE_SHAPE_FOREHEAD, kForehead)};
    forehead.centre = {face.midline(face.hairline), face.hairline};
    forehead.left = 1.7F * face.faceHalf[0];
    forehead.right = 1.7F * face.faceHalf[1];
    forehead.up = 0.8F;
    forehead.down = std::max(0.9F * face.hairline, 0.5F);
    add(forehead);

    Field nose{Kind::ALONG_X, false, amount(FACE_SHAPE_NOSE, kNose)};
    nose.centre.y = face.noseTip.y;
    nose.left = face.noseHalf / kLinearPeak;
    nose.right = nose.left;
    nose.up = 0.9F * (face.bridge.y - face.noseTip.y) + 0.1F;
    nose.down = 0.35F;
    add(nose);

    Field mouth{Kind::SCALE, false, amount(FACE_SHAPE_MOUTH, kMouth)};
    mouth.centre = face.mouth;
    mouth.left = mouth.right = 1.7F * face.mouthHalf;
    mouth.up = mouth.down = std::max(1.5F * face.lipHalf + 0.15F, 0.85F * face.mouthHalf);
    add(mouth);

    for (int side = 0; side < 2; ++side) {
        Field eye{Kind::SCALE, false, amount(FACE_SHAPE_EYES, kEyes)};
        eye.centre = face.eyes[side];
        eye.left = eye.right = 2.2F * face.eyeHalf[side];
        eye.up = eye.down = 1.9F * face.eyeHalf[side];
        add(eye);
    }
}

void FaceWarp::measureArea() {
    mArea = {};
    mArea.step = mFace.unit / kCellsPerUnit;
    bool first = true;
    for (std::size_t i = 0; i < mFieldCount; ++i) {
        const Field& field = mFields[i];
        const float low = field.centre.y - field.down;
        const float high = field.centre.y + field.up;
        const bool follows = field.kind == Kind::ALONG_X;
        for (const float y : {low, high}) {
            const float middle = follows ? mFace.midline(y) : field.centre.x;
            for (const float x : {middle - field.left, middle + field.right}) {
                const Vec2f corner = mFace.toPicture({x, y});
                mArea.low =
                    first ? corner : Vec2f(std::min(mArea.low.x, corner.x), std::min(mArea.low.y, corner.y));
                mArea.high = first
                                 ? corner
                                 : Vec2f(std::max(mArea.high.x, corner.x), std::max(mArea.high.y, corner.y));
                first = false;
            }
        }
    }
}

void FaceWarp::keepBorder(const TVec<2, unsigned short>& size, float clipEdge) {
    const float edge = clipEdge > 0.0F ? clipEdge : 0.0F;
    mLow = {edge, edge};
    mHigh = {static_cast<float>(size.x) - edge, static_cast<float>(size.y) - edge};
    // Nothing moves by more than half a unit, so further inside there is nothing to hold back.
    const float reach = 0.5F * mFace.unit / kBorderSlope;
    mNearBorder = mArea.low.x < mLow.x + reach || mArea.low.y < mLow.y + reach ||
                  mArea.high.x > mHigh.x - reach || mArea.high.y > mHigh.y - reach;
}

Vec2f FaceWarp::sourceOf(Vec2f pixel) const {
    Vec2f place = mFace.toFace(pixel);
    const Vec2f before = place;
    for (std::size_t i = 0; i < mFieldCount; ++i) {
        place = apply(mFields[i], place);
    }
    return place == before ? pixel : mFace.toPicture(place);
}

Vec2f FaceWarp::apply(const Field& field, Vec2f place) const {
    const float away = place.y - field.centre.y;
    if (away <= -field.down || away >= field.up) {
        return place;
    }
    const float most = mNearBorder ? mostAt(place) : 1.0F;
    switch (field.kind) {
        case Kind::SCALE:
            return scaled(field, place, most);
        case Kind::ALONG_X:
            return movedAlongX(field, place, most);
        default:
            return movedAlongY(field, place, most);
    }
}

/// The longest way, in units, that something may move here. It grows more slowly than the distance from what
/// does not move, so the order of places on a line stays.
float FaceWarp::mostAt(Vec2f place) const {
    const Vec2f pixel = mFace.toPicture(place);
    const float inside = std::min(std::min(pixel.x - mLow.x, mHigh.x - pixel.x),
                                  std::min(pixel.y - mLow.y, mHigh.y - pixel.y));
    return std::max(kBorderSlope * inside / mFace.unit, 0.0F);
}

Vec2f FaceWarp::scaled(const Field& field, Vec2f place, float most) const {
    const Vec2f away(place.x - field.centre.x, place.y - field.centre.y);
    const float x = away.x / field.left;
    const float y = away.y / field.up;
    float part = field.amount * bell(x * x + y * y);
    const float length = std::sqrt(away.x * away.x + away.y * away.y);
    if (std::abs(part) * length > most) {
        part = std::copysign(most / length, part);
    }
    return {place.x - away.x * part, place.y - away.y * part};
}

Vec2f FaceWarp::movedAlongX(const Field& field, Vec2f place, float most) const {
    const float away = place.x - mFace.midline(place.y);
    const float low = std::clamp(place.y / mFace.chin.y, 0.0F, 1.0F);
    const float reach = (away < 0.0F ? field.left : field.right) * (1.0F - field.narrowing * low * low);
    const float t = away / reach;
    const float squared = t * t;
    const float shape = field.keepsMiddle ? kCubicScale * squared * t : kLinearScale * t;
    const float halfWidth = reach * (field.keepsMiddle ? kCubicPeak : kLinearPeak);
    const float move = field.amount * halfWidth * shape * bell(squared) *
                       window(place.y - field.centre.y, field.down, field.up);
    return {place.x + std::clamp(move, -most, most), place.y};
}

Vec2f FaceWarp::movedAlongY(const Field& field, Vec2f place, float most) const {
    const float move = field.amount * window(place.x - field.centre.x, field.left, field.right) *
                       window(place.y - field.centre.y, field.down, field.up);
    return {place.x, place.y + std::clamp(move, -most, most)};
}

}  // namespace zv
