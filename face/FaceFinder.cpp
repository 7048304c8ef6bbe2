#include "face/FaceFinder.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "algorithm/AlgEngine.h"
#include "algorithm/AlgFace3D.h"
#include "algorithm/AlgKelNN.h"
#include "face/FaceCamera.h"
#include "face/FaceLandmarks106.h"
#include "face/FacePose.h"
#include "face/FaceTracker.h"
#include "face/FaceWorker.h"
#include "scene/ZVMediaEngine.h"

namespace zv {

namespace {

using kel_algorithm::AlgFaceMesh;
using kel_algorithm::AlgFaceMeshList;
using kel_algorithm::AlgFaceResults;
using kel_algorithm::AlgKelNN;

/// A result is moved on no further than this.
constexpr float kLongestAge = 0.15F;  // seconds

template <class T>
void fit(UniqueDataPtr<T>& list, std::size_t count) {
    if (list.size() != count) {
        list.resize(count);
    }
}

/// Moves a face on by its velocity.
void moveOn(TrackedFace& face, float seconds) {
    const Vec2f by(face.velocity.x * seconds, face.velocity.y * seconds);
    for (Vec3f& point : face.mesh.points) {
        point = {point.x + by.x, point.y + by.y, point.z};
    }
}

/// The faces of the present frame, found once for both businesses.
class FacesOfFrame {
public:
    FacesOfFrame(ZVMediaEngine& engine, const FaceFinder::Options& options,
                 std::unique_ptr<FaceTracker> tracker)
        : mEngine(engine), mStep(1.0F / std::max(options.framesPerSecond, 0.001F)) {
        if (options.mode == FaceFinder::Mode::Live) {
            mResult.faces.reserve(FaceTracker::kMostFaces);
            mWishes.reserve(FaceTracker::kMostFaces + 2);
            mWorker = std::make_unique<FaceWorker>(std::move(tracker));
        } else {
            mTracker = std::move(tracker);
        }
    }

    /// To be called once a frame.
    void next() {
        ++mSerial;
        mPicture = mEngine.getWinSize();
        if (!mCamera.aim(mEngine.getInputSprite(), mPicture)) {
            mResult.faces.clear();
        } else if (mWorker) {
            nextLive();
        } else {
            mTracker->track(mCamera, mPicture, mStep);
        }
    }

    const std::vector<TrackedFace>& faces() const { return mWorker ? mResult.faces : mTracker->faces(); }
    const Size16& picture() const { return mPicture; }
    std::uint64_t serial() const { return mSerial; }
    /// Whether the face business has subscribers and so has been asked in this frame already.
    bool isAskedForFaces() const { return mEngine.getAlgEngine()->getKelNN()->isNeedRun(); }

private:
    void nextLive() {
        const FaceWorker::Clock::time_point now = FaceWorker::Clock::now();
        mWorker->take(mResult, mWishes);
        if (mResult.picture != mPicture) {
            // Nothing is known about pictures of this size.
            mResult.faces.clear();
            const FaceArea whole{0.0F, 0.0F, static_cast<float>(mPicture.x), static_cast<float>(mPicture.y)};
            mWishes.assign(1, {whole, kWholePixels});
        }
        mCamera.exchange(mWishes, mShots);
        if (!mShots.isEmpty()) {
            mWorker->give(mShots, mShotPicture, mShotTime);
        }
        mShotTime = now;
        mShotPicture = mPicture;
        const float age = std::chrono::duration<float>(now - mResult.time).count();
        for (TrackedFace& face : mResult.faces) {
            moveOn(face, std::clamp(age, 0.0F, kLongestAge));
        }
    }

    static constexpr int kWholePixels = 512;

    ZVMediaEngine& mEngine;
    float mStep;
    FaceCamera mCamera;
    std::unique_ptr<FaceTracker> mTracker;  // in step
    Size16 mPicture{0, 0};
    std::uint64_t mSerial = 0;
    // Live.
    FaceShots mShots;
    FaceWorker::Clock::time_point mShotTime;  // when the parts that are being read were drawn
    Size16 mShotPicture{0, 0};
    FaceWorker::Result mResult;
    std::vector<FaceTracker::Wish> mWishes;
    std::unique_ptr<FaceWorker> mWorker;
};

/// For the face business, which is asked first in a frame.
class LandmarkDetector : public AlgKelNN::Detector {
public:
    explicit LandmarkDetector(std::shared_ptr<FacesOfFrame> faces) : mFaces(std::move(faces)) {}

    bool detect(AlgFaceResults& results) override {
        mFaces->next();
        const std::vector<TrackedFace>& faces = mFaces->faces();
        fit(results.landmarks, faces.size());
        fit(results.mats, faces.size());
        for (std::size_t i = 0; i < results.landmarks.size(); ++i) {
            toLandmarks106(faces[i].mesh, mFace.points);
            mFace.confidence = faces[i].confidence;
            mFace.faceId = faces[i].id;
            AlgKelNN::conventFaceInfo(mFace, mFaces->picture(), mFaces->picture(), results.landmarks[i]);
        }
        for (std::size_t i = 0; i < results.mats.size(); ++i) {
            fillBones(faces[i], results.mats[i]);
        }
        return true;
    }

private:
    void fillBones(const TrackedFace& face, UniqueDataPtr<Mat4>& bones) const {
        Vec3f places[kFaceBones];
        findFaceBones(face.mesh, places);
        fit(bones, kFaceBones);
        for (std::size_t i = 0; i < bones.size(); ++i) {
            bones[i] = faceBoneMatrix(face.pose, places[i], mFaces->picture().y, face.presence);
        }
    }

    std::shared_ptr<FacesOfFrame> mFaces;
    kel_algorithm::AlgDetectedFace mFace;
};

/// For the face 3D business.
class MeshDetector : public kel_algorithm::AlgFace3D::Detector {
public:
    explicit MeshDetector(std::shared_ptr<FacesOfFrame> faces) : mFaces(std::move(faces)) {}

    bool detect(AlgFaceMeshList& results) override {
        if (!mFaces->isAskedForFaces() || mFaces->serial() == mSerial) {
            mFaces->next();
        }
        mSerial = mFaces->serial();
        const std::vector<TrackedFace>& faces = mFaces->faces();
        fit(results, faces.size());
        for (std::size_t i = 0; i < results.size(); ++i) {
            fill(faces[i], results[i]);
        }
        return true;
    }

private:
    void fill(const TrackedFace& face, AlgFaceMesh& mesh) const {
        const float height = mFaces->picture().y;
        Vec3f places[kFaceBones];
        findFaceBones(face.mesh, places);
        mesh.faceId = face.id;
        mesh.pose = faceBoneMatrix(face.pose, places[0], height, 1.0F);
        fit(mesh.vertices, kFaceMeshPoints);
        if (mesh.indices.size() != kFaceMeshIndices) {
            mesh.indices.resize(kFaceMeshIndices);
            std::copy_n(faceMeshIndices(), mesh.indices.size(), mesh.indices.get(0));
        }
        // The pose turns and scales alike along its axes, so its transpose leads back.
        const float* pose = mesh.pose.m;
        const float unit2 = std::max(face.pose.unit * face.pose.unit, 1.0F);
        const float depth = depthOfHead(face.mesh);
        for (std::size_t i = 0; i < mesh.vertices.size(); ++i) {
            const Vec3f& point = face.mesh.points[i];
            const float x = point.x - pose[12], y = height - point.y - pose[13],
                        z = depth - point.z - pose[14];
            mesh.vertices[i] = {(pose[0] * x + pose[1] * y + pose[2] * z) / unit2,
                                (pose[4] * x + pose[5] * y + pose[6] * z) / unit2,
                                (pose[8] * x + pose[9] * y + pose[10] * z) / unit2};
        }
    }

    /// z of the place of bone 0.
    static float depthOfHead(const FaceMeshPoints& mesh) {
        using namespace face_point;
        return (mesh.points[kLeftEyeOuter].z + mesh.points[kLeftEyeInner].z + mesh.points[kRightEyeInner].z +
                mesh.points[kRightEyeOuter].z) /
               4.0F;
    }

    std::shared_ptr<FacesOfFrame> mFaces;
    std::uint64_t mSerial = 0;  ///< of the frame delivered last
};

}  // namespace

bool FaceFinder::attach(ZVMediaEngine& engine, const Options& options) {
    auto tracker = std::make_unique<FaceTracker>();
    if (!tracker->load()) {
        return false;
    }
    auto faces = std::make_shared<FacesOfFrame>(engine, options, std::move(tracker));
    engine.getAlgEngine()->getKelNN()->setDetector(std::make_shared<LandmarkDetector>(faces));
    engine.getAlgEngine()->getFace3D()->setDetector(std::make_shared<MeshDetector>(faces));
    return true;
}

void FaceFinder::detach(ZVMediaEngine& engine) {
    engine.getAlgEngine()->getKelNN()->setDetector(nullptr);
    engine.getAlgEngine()->getFace3D()->setDetector(nullptr);
}

}  // namespace zv
