#include "zvfx/FaceOverlay.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "algorithm/AlgEngine.h"
#include "core/VertexFormats.h"
#include "scene/DrawLines.h"
#include "scene/DrawPoints.h"
#include "scene/ZVMediaEngine.h"

namespace zvfx {

namespace {

/// The bones of a face, in the order of their matrices.
enum Bone : std::size_t { kHead, kLeftEye, kRightEye, kNose, kMouth, kChin, kForehead, kBones };

constexpr zv::Color4B kOutline{90, 220, 255, 230};
constexpr zv::Color4B kPoint{255, 225, 60, 255};
constexpr zv::Color4B kAxes[3] = {{255, 70, 70, 255}, {80, 230, 90, 255}, {80, 130, 255, 255}};

// Sizes in model units, of which one is the distance of the outer eye corners.
constexpr float kFaceHalfWidth = 0.72F;
constexpr zv::Vec2f kEye{0.19F, 0.09F};
constexpr zv::Vec2f kMouthSize{0.30F, 0.12F};
constexpr float kNoseWing = 0.17F;
constexpr float kAxisLength = 0.5F;

// Sizes on the screen, as parts of the output's height, so that the picture looks the same at any size.
constexpr float kLineWidth = 1.0F / 360.0F;
constexpr float kPointSize = 1.0F / 70.0F;
constexpr float kLandmarkSize = 1.0F / 55.0F;  // as a part of the face's width

zv::Vec2f middle(const zv::Vec2f& a, const zv::Vec2f& b) {
    return {(a.x + b.x) / 2.0F, (a.y + b.y) / 2.0F};
}

zv::Vec2f from(const zv::Vec2f& a, const zv::Vec2f& b) {
    return {b.x - a.x, b.y - a.y};
}

zv::Vec2f origin(const zv::Mat4& matrix) {
    return {matrix.m[12], matrix.m[13]};
}

/// One of the three axes, scaled, in pixels; depth does not show.
zv::Vec2f axis(const zv::Mat4& matrix, std::size_t column, float scale) {
    return {matrix.m[4 * column] * scale, matrix.m[4 * column + 1] * scale};
}

}  // namespace

void FaceOverlay::addTo(zv::ZVMediaEngine& engine, const zv::Size16& size) {
    auto* overlay = new FaceOverlay;
    overlay->autorelease();
    overlay->build(size);
    engine.addSticker(overlay);
    overlay->mSubscription = std::make_shared<kel_algorithm::AlgBizFunc>();
    overlay->mSubscription->owner = overlay;
    overlay->mSubscription->type = kel_algorithm::ALG_FUNC_FACE_ALL;
    // Landmarks come before the matrices of the same frame.
    overlay->mSubscription->onLandmarks = [overlay](kel_algorithm::AlgLandmarksList& faces) {
        std::swap(overlay->mLandmarks, faces);
    };
    overlay->mSubscription->onFaceMats = [overlay](kel_algorithm::AlgFaceMatsList& faces) {
        overlay->show(faces);
    };
    engine.getAlgEngine()->registerAlgFunc(overlay->mSubscription);
}

FaceOverlay::~FaceOverlay() {
    // The engine may still hold the subscription: without a callable it reaches nobody.
    if (mSubscription) {
        mSubscription->onFaceMats = nullptr;
        mSubscription->onLandmarks = nullptr;
    }
}

void FaceOverlay::build(const zv::Size16& size) {
    mHalfSize = {static_cast<float>(size.x) / 2.0F, static_cast<float>(size.y) / 2.0F};
    const float width = std::round(static_cast<float>(size.y) * kLineWidth);
    mLines = zv::DrawLines::create(static_cast<unsigned short>(std::max(width, 1.0F)));
    mPoints = zv::DrawPoints::create();
    mLines->setBlendFunc(zv::BlendFunc::ALPHA_NON_PREMULTIPLIED);
    mPoints->setBlendFunc(zv::BlendFunc::ALPHA_NON_PREMULTIPLIED);
    addChild(mLines);
    addChild(mPoints);
    setLocalZOrder(std::numeric_limits<int>::max());
}

void FaceOverlay::show(const kel_algorithm::AlgFaceMatsList& faces) {
    mLines->clear();
    mPoints->clear();
    const float size = std::max(2.0F * mHalfSize.y * kPointSize, 3.0F);
    for (std::size_t face = 0; face < faces.size(); ++face) {
        const Bones& bones = *faces.get(face);
        if (mLandmarks.size() == faces.size()) {
            showLandmarks(*mLandmarks.get(face));
        } else {
            showBones(bones, size);
        }
        if (bones.size() > kHead) {
            showAxes(*bones.get(kHead));
        }
    }
}

void FaceOverlay::showLandmarks(const kel_algorithm::AlgFaceLandmarks& face) {
    constexpr std::size_t kPoints = kel_algorithm::kFacePoints;
    std::array<zv::Vec2f, kPoints> points;
    zv::Vec2f low = toClip(face.points[0]), high = low;
    for (std::size_t i = 0; i < kPoints; ++i) {
        points[i] = toClip(face.points[i]);
        low = {std::min(low.x, points[i].x), std::min(low.y, points[i].y)};
        high = {std::max(high.x, points[i].x), std::max(high.y, points[i].y)};
    }
    // Parts of the face's width, so that they do not run together on a small one.
    const float size = std::max((high.x - low.x) * mHalfSize.x * kLandmarkSize, 2.0F);
    mPoints->addPoints(points.data(), kPoints, size, kPoint);
}

void FaceOverlay::showBones(const Bones& bones, float size) {
    if (bones.size() >= kBones) {
        showOutlines(bones);
    }
    for (std::size_t bone = 0; bone < bones.size(); ++bone) {
        const zv::Vec2f point = toClip(origin(*bones.get(bone)));
        mPoints->addPoints(&point, 1, size, kPoint);
    }
}

void FaceOverlay::showOutlines(const Bones& bones) {
    const zv::Mat4& head = *bones.get(kHead);
    const zv::Vec2f top = origin(*bones.get(kForehead)), bottom = origin(*bones.get(kChin));
    const zv::Vec2f centre = middle(top, bottom);
    addOval(centre, axis(head, 0, kFaceHalfWidth), from(centre, top));
    for (const Bone eye : {kLeftEye, kRightEye}) {
        const zv::Mat4& matrix = *bones.get(eye);
        addOval(origin(matrix), axis(matrix, 0, kEye.x), axis(matrix, 1, kEye.y));
    }
    const zv::Mat4& mouth = *bones.get(kMouth);
    addOval(origin(mouth), axis(mouth, 0, kMouthSize.x), axis(mouth, 1, kMouthSize.y));
    const zv::Mat4& nose = *bones.get(kNose);
    const zv::Vec2f tip = origin(nose), wing = axis(nose, 0, kNoseWing);
    const zv::Vec2f points[] = {toClip(origin(head)), toClip({tip.x - wing.x, tip.y - wing.y}),
                                toClip({tip.x + wing.x, tip.y + wing.y})};
    mLines->addPoly(points, 3, true, kOutline);
}

void FaceOverlay::showAxes(const zv::Mat4& head) {
    for (std::size_t i = 0; i < 3; ++i) {
        const zv::Vec2f start = origin(head), along = axis(head, i, kAxisLength);
        const zv::Vec2f ends[] = {toClip(start), toClip({start.x + along.x, start.y + along.y})};
        mLines->addPoly(ends, 2, false, kAxes[i]);
    }
}

void FaceOverlay::addOval(const zv::Vec2f& centre, const zv::Vec2f& across, const zv::Vec2f& up) {
    constexpr std::size_t kCorners = 48;
    constexpr float kTurn = 6.2831853F;
    std::array<zv::Vec2f, kCorners> points;
    for (std::size_t i = 0; i < kCorners; ++i) {
        const float angle = kTurn * static_cast<float>(i) / static_cast<float>(kCorners);
        const float c = std::cos(angle), s = std::sin(angle);
        points[i] = toClip({centre.x + c * across.x + s * up.x, centre.y + c * across.y + s * up.y});
    }
    mLines->addPoly(points.data(), points.size(), true, kOutline);
}

zv::Vec2f FaceOverlay::toClip(const zv::Vec2f& pixels) const {
    return {pixels.x / mHalfSize.x - 1.0F, pixels.y / mHalfSize.y - 1.0F};
}

}  // namespace zvfx
