#include "effects/FaceGeometry.h"

#include <algorithm>
#include <cmath>

namespace zv {

namespace {

// Places among the 106 points.
constexpr int kEyes[2] = {74, 77};
constexpr int kEyeCorners[2][2] = {{52, 55}, {58, 61}};
constexpr int kCheeks[2] = {5, 27};
constexpr int kBrows[2][5][2] = {{{33, 33}, {34, 64}, {35, 65}, {36, 66}, {37, 67}},
                                 {{38, 68}, {39, 69}, {40, 70}, {41, 71}, {42, 42}}};
constexpr int kBridge = 43;
constexpr int kNoseTip = 46;
constexpr int kNostrils[2] = {82, 83};
constexpr int kMouthCorners[2] = {84, 90};
constexpr int kLips[2] = {87, 93};
constexpr int kChin = 16;

constexpr float kLeastUnit = 4.0F;      ///< pixels; a smaller face is a speck
constexpr float kMostUnit = 16384.0F;   ///< pixels
constexpr float kSureFrom = 0.5F;       ///< the confidence from which on a face counts in full
constexpr float kHairAboveBrow = 0.8F;  ///< as faces have it on average

Vec2f plus(Vec2f a, Vec2f b) {
    return {a.x + b.x, a.y + b.y};
}

Vec2f minus(Vec2f a, Vec2f b) {
    return {a.x - b.x, a.y - b.y};
}

Vec2f half(Vec2f a) {
    return {0.5F * a.x, 0.5F * a.y};
}

Vec2f middle(Vec2f a, Vec2f b) {
    return half(plus(a, b));
}

float length(Vec2f a) {
    return std::sqrt(a.x * a.x + a.y * a.y);
}

Vec2f cut(Vec2f place, float left, float right, float low, float high) {
    return {std::clamp(place.x, left, right), std::clamp(place.y, low, high)};
}

}  // namespace

bool FaceGeometry::set(const kel_algorithm::AlgFaceLandmarks& face) {
    const Vec2f* points = face.points;
    for (const Vec2f& point : face.points) {
        if (!(std::abs(point.x) < 1e6F && std::abs(point.y) < 1e6F)) {
            return false;
        }
    }
    const Vec2f across = minus(points[kEyes[1]], points[kEyes[0]]);
    const float distance = length(across);
    if (!(distance > kLeastUnit && distance < kMostUnit)) {
        return false;
    }
    origin = middle(points[kEyes[0]], points[kEyes[1]]);
    right = {across.x / distance, across.y / distance};
    // The eyes of a face turned aside come closer, what is above and below them does not.
    unit = std::max(distance, 0.5F * length(minus(points[kChin], origin)));
    trust = face.confidence > 0.0F ? std::min(face.confidence / kSureFrom, 1.0F) : 0.0F;
    chin = toFace(points[kChin]);
    if (!(unit < kMostUnit) || chin.y > -0.3F) {
        return false;
    }
    chin = cut(chin, -1.0F, 1.0F, -2.6F, -1.1F);
    bridge = cut(toFace(points[kBridge]), -0.6F, 0.6F, -0.3F, 0.4F);
    noseTip = cut(toFace(points[kNoseTip]), -1.0F, 1.0F, 0.6F * chin.y, -0.2F);
    const Vec2f corners = middle(points[kMouthCorners[0]], points[kMouthCorners[1]]);
    const Vec2f lips = middle(points[kLips[0]], points[kLips[1]]);
    mouth = cut(toFace(middle(corners, lips)), -1.0F, 1.0F, 0.85F * chin.y, 0.3F * chin.y);
    const auto apart = [&](const int(&pair)[2]) {
        return 0.5F * length(minus(points[pair[1]], points[pair[0]])) / unit;
    };
    noseHalf = std::clamp(apart(kNostrils), 0.15F, 0.5F);
    mouthHalf = std::clamp(apart(kMouthCorners), 0.2F, 0.8F);
    lipHalf = std::clamp(apart(kLips), 0.08F, 0.5F);
    float browTop = -1.0F;
    for (int side = 0; side < 2; ++side) {
        eyes[side] = cut(toFace(points[kEyes[side]]), -0.6F, 0.6F, -0.3F, 0.3F);
        eyeHalf[side] = std::clamp(apart(kEyeCorners[side]), 0.1F, 0.3F);
        const Vec2f cheek = toFace(points[kCheeks[side]]);
        const float out = (cheek.x - midline(cheek.y)) * (side == 0 ? -1.0F : 1.0F);
        faceHalf[side] = std::clamp(out, 0.4F, 1.5F);
        for (int i = 0; i < 5; ++i) {
            const int(&pair)[2] = kBrows[side][i];
            brows[side][i] = cut(toFace(middle(points[pair[0]], points[pair[1]])), -1.5F, 1.5F, 0.1F, 0.8F);
            browTop = std::max(browTop, brows[side][i].y);
        }
    }
    hairline = browTop + kHairAboveBrow;
    return true;
}

Vec2f FaceGeometry::toFace(Vec2f pixel) const {
    const Vec2f away = minus(pixel, origin);
    return {(away.x * right.x + away.y * right.y) / unit, (away.y * right.x - away.x * right.y) / unit};
}

Vec2f FaceGeometry::toPicture(Vec2f place) const {
    return {origin.x + unit * (place.x * right.x - place.y * right.y),
            origin.y + unit * (place.x * right.y + place.y * right.x)};
}

float FaceGeometry::midline(float y) const {
    const float part = (y - bridge.y) / (chin.y - bridge.y);
    return bridge.x + (chin.x - bridge.x) * std::clamp(part, -1.0F, 1.5F);
}

}  // namespace zv
