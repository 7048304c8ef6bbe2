#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "core/TVec.h"
#include "face/FaceBias.h"
#include "face/FaceDetector.h"
#include "face/FaceExport.h"
#include "face/FaceMesh.h"
#include "face/FacePose.h"
#include "face/FaceViews.h"
#include "face/OneEuroFilter.h"

namespace zv {

/// A face that is followed, in pixels of the picture, smoothed.
struct TrackedFace {
    std::int32_t id = 0;      ///< stays with the face; not used again
    float confidence = 0.0F;  ///< 0 to 1; falls to 0 over a few frames when the face is gone
    float presence = 1.0F;    ///< 1 while the face is there, falling to 0 while it fades
    FaceMeshPoints mesh;
    FacePose pose;
    Vec2f velocity;  ///< pixels a second, of the face as a whole
};

/// Follows faces from frame to frame. The detector looks for new ones: in every frame while none is seen, and
/// now and then beside those that are followed, then in steps over three frames so that none takes long. Each
/// face is then followed by its mesh alone: where it was, and how it moved, says where to look for it.
/// What is handed out is smoothed, steady at rest and quick in motion. A face that is not seen any more stays
/// for a few frames, in case it was covered for a moment, and fades over some more. Used by one thread at a
/// time; allocates nothing after the first frames.
class ZV_FACE_API FaceTracker {
public:
    static constexpr std::size_t kMostFaces = 8;

    FaceTracker();
    ~FaceTracker();
    FaceTracker(const FaceTracker&) = delete;
    FaceTracker& operator=(const FaceTracker&) = delete;

    /// False, with the reason in the log, when a model cannot be used; then no face is ever found.
    bool load();

    /// Takes the next frame.
    /// @param picture its size; another one than before starts anew
    /// @param seconds since the frame before; at the first frame not looked at
    void track(FaceViews& views, const Size16& picture, float seconds);

    /// What the last frame held, the faces that are followed longest first.
    const std::vector<TrackedFace>& faces() const { return mFaces; }

    /// What the next track() will ask for, as far as it is known now.
    struct Wish {
        FaceArea area;
        int pixels = 0;
    };
    const std::vector<Wish>& wishes() const { return mWishes; }

    /// Forgets all faces.
    void reset();

private:
    /// One face, with what is needed to find and to smooth it.
    struct Track {
        TrackedFace face;
        FaceMeshPoints raw;  // as the network saw it last
        FaceRegion region;   // where to look next
        FaceBias bias;       // of what the network sees
        FaceRegion wanted;   // the region when the detector was given its pixels
        Vec2f middle;        // of the raw points, last time
        int missed = 0;      // frames since it was seen
        bool isNew = true;
        std::array<OneEuroFilter, kFaceMeshPoints * 3> points;
        std::array<OneEuroFilter, 4> pose;  // roll, yaw, pitch, unit
    };

    void detect(FaceViews& views, const Size16& picture);
    void detectOn(FaceViews& views, const Size16& picture);
    bool wantsPixels() const;
    bool anySeen() const;
    bool anyMissed() const;
    bool viewOf(FaceViews& views, const FaceRegion& square, FaceImage& image) const;
    void detectIn(FaceViews& views, FaceDetector& detector, const FaceRegion& square);
    void markRegions();
    void adoptAll();
    void adopt(const FaceDetection& found);
    bool look(FaceViews& views, Track& track, float news);
    bool isTurnToLearn(const Track& track) const;
    bool lookClosely(FaceViews& views, Track& track);
    void follow(FaceViews& views, Track& track, float seconds);
    void smooth(Track& track, float seconds);
    void lose(Track& track, float seconds);
    void dropTwins();
    void dropGone();
    void publish();
    void wishNext(const Size16& picture);
    Track* freeTrack();

    FaceDetector mNear{FaceDetector::Range::Near};
    FaceDetector mFar{FaceDetector::Range::Far};
    FaceMesh mMesh;
    FaceMeshPoints mInMirror;
    bool mLoaded = false;
    Size16 mPicture;
    std::int32_t mNextId = 1;
    int mSinceDetection = 0;
    bool mDetecting = false;  // in steps
    int mZone = 0;
    std::vector<std::unique_ptr<Track>> mTracks;  // in use, oldest first
    std::vector<std::unique_ptr<Track>> mSpare;
    std::vector<FaceDetection> mFound;
    std::vector<TrackedFace> mFaces;
    std::vector<Wish> mWishes;
};

}  // namespace zv
