#pragma once

#include <memory>

#include "algorithm/AlgBizFunc.h"
#include "core/TVec.h"
#include "scene/Node.h"

namespace zv {
class DrawLines;
class DrawPoints;
class ZVMediaEngine;
}  // namespace zv

namespace zvfx {

/// Draws what the engine's face business tells of each face: its 106 landmarks, or without them a point a
/// bone and the outlines of face, eyes, nose and mouth that follow from the bones; and the axes of the head,
/// x red, y green and z blue.
class FaceOverlay : public zv::Node {
public:
    /// Above all stickers, those added later included. The engine must be the current one; it keeps the
    /// overlay.
    /// @param size of the engine's output
    static void addTo(zv::ZVMediaEngine& engine, const zv::Size16& size);

    FaceOverlay() = default;
    ~FaceOverlay() override;
    FaceOverlay(const FaceOverlay&) = delete;
    FaceOverlay& operator=(const FaceOverlay&) = delete;

private:
    using Bones = zv::UniqueDataPtr<zv::Mat4>;

    void build(const zv::Size16& size);
    void show(const kel_algorithm::AlgFaceMatsList& faces);
    void showLandmarks(const kel_algorithm::AlgFaceLandmarks& face);
    void showBones(const Bones& bones, float size);
    void showOutlines(const Bones& bones);
    void showAxes(const zv::Mat4& head);
    void addOval(const zv::Vec2f& centre, const zv::Vec2f& across, const zv::Vec2f& up);
    zv::Vec2f toClip(const zv::Vec2f& pixels) const;

    zv::DrawLines* mLines = nullptr;    ///< a child
    zv::DrawPoints* mPoints = nullptr;  ///< a child
    kel_algorithm::AlgLandmarksList mLandmarks;
    zv::Vec2f mHalfSize;  ///< of the view port in pixels
    std::shared_ptr<kel_algorithm::AlgBizFunc> mSubscription;
};

}  // namespace zvfx
