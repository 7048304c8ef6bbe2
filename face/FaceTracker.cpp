#include "face/FaceTracker.h"

#include <algorithm>
#include <cmath>

#include "face/FaceZones.h"

namespace zv {

namespace {

constexpr float kLeastConfidence = 0.5F;  // of a mesh that is a face
constexpr int kCloseLooks = 3;            // at a face that is new
constexpr int kDetectEvery = 15;          // frames, while faces are followed
constexpr int kHold = 3;                  // frames that a face stays after it was last seen
constexpr int kFade = 6;                  // frames over which it then fades
constexpr int kFirstTurn = 4;             // frames after the detector's, to learn a face's bias
constexpr float kNews = 0.2F;             // share of what is learnt each time in what is known
constexpr float kDamping = 0.8F;          // of its motion meanwhile, each frame
constexpr float kSameFace = 0.3F;         // parts of a region's side between two middles of one face
constexpr float kLeastSide = 12.0F;       // pixels of a region that is worth a look
constexpr float kLeastStep = 0.004F, kLongestStep = 0.5F;  // seconds

constexpr int kDetectPixels = 512;  // twice what the detector sees, so that what it sees can be a mean
constexpr int kMeshPixels = 256;
constexpr float kAroundWish = 1.2F;  // a face may move until the pixels are there

constexpr OneEuroFilter::Settings kPointSmoothing{0.4F, 6.0F, 1.5F};   // speed in eye distances a second
constexpr OneEuroFilter::Settings kAngleSmoothing{1.0F, 0.08F, 2.0F};  // speed in degrees a second

FaceRegion wholeOf(const Size16& picture) {
    const auto width = static_cast<float>(picture.x), height = static_cast<float>(picture.y);
    return {{width / 2.0F, height / 2.0F}, std::max(width, height), 0.0F};
}

Vec2f middleOf(const FaceMeshPoints& mesh) {
    Vec2f sum;
    for (const Vec3f& point : mesh.points) {
        sum = {sum.x + point.x, sum.y + point.y};
    }
    return {sum.x / kFaceMeshPoints, sum.y / kFaceMeshPoints};
}

bool areNear(const Vec2f& a, const Vec2f& b, float side) {
    return std::hypot(a.x - b.x, a.y - b.y) < kSameFace * side;
}

}  // namespace

FaceTracker::FaceTracker() = default;

FaceTracker::~FaceTracker() = default;

bool FaceTracker::load() {
    mLoaded = mMesh.load() && mFar.load() && mNear.load();
    mTracks.reserve(kMostFaces);
    mSpare.reserve(kMostFaces);
    mFaces.reserve(kMostFaces);
    mWishes.reserve(kMostFaces + 2);
    return mLoaded;
}

void FaceTracker::reset() {
    while (!mTracks.empty()) {
        mSpare.push_back(std::move(mTracks.back()));
        mTracks.pop_back();
    }
    mSinceDetection = 0;
    mDetecting = false;
    mZone = 0;
    mFaces.clear();
    mWishes.clear();
}

void FaceTracker::track(FaceViews& views, const Size16& picture, float seconds) {
    if (picture != mPicture) {
        reset();
        mPicture = picture;
    }
    if (!mLoaded || picture.x == 0 || picture.y == 0) {
        return;
    }
    const float step = std::clamp(seconds, kLeastStep, kLongestStep);
    ++mSinceDetection;
    if (anySeen()) {
        detectOn(views, picture);
    } else {
        detect(views, picture);
    }
    for (const auto& track : mTracks) {
        follow(views, *track, step);
    }
    dropTwins();
    dropGone();
    publish();
    wishNext(picture);
}

bool FaceTracker::anySeen() const {
    return std::any_of(mTracks.begin(), mTracks.end(), [](const auto& track) { return track->missed == 0; });
}

bool FaceTracker::anyMissed() const {
    return std::any_of(mTracks.begin(), mTracks.end(), [](const auto& track) { return track->missed > 0; });
}

/// Nobody is seen: everything at once.
void FaceTracker::detect(FaceViews& views, const Size16& picture) {
    mFound.clear();
    mSinceDetection = 0;
    mDetecting = false;
    markRegions();
    detectIn(views, mFar, wholeOf(picture));
    if (mTracks.empty() && mFound.empty()) {
        detectIn(views, mNear, wholeOf(picture));
    }
    const FaceZones zones(picture);
    if (mTracks.empty() && mFound.empty() && zones.count() > 0) {
        // All of them when the picture is new, then one a frame.
        const int looks = mZone == 0 ? zones.count() : 1;
        for (int i = 0; i < looks && mFound.empty(); ++i) {
            const int zone = mZone % zones.count();
            mZone = zone + 1;
            detectIn(views, mFar, zones.at(zone, picture));
        }
    }
    adoptAll();
}

/// Beside faces that are followed: one frame gives the detector its pixels, each later one runs a part of it.
void FaceTracker::detectOn(FaceViews& views, const Size16& picture) {
    if (mDetecting) {
        mFound.clear();
        mDetecting = !mFar.proceed(mFound);
        adoptAll();
        return;
    }
    FaceImage image;
    if ((anyMissed() || mSinceDetection >= kDetectEvery) && viewOf(views, wholeOf(picture), image)) {
        markRegions();
        mFar.begin(image, wholeOf(picture));
        mDetecting = true;
        mSinceDetection = 0;
    }
}

bool FaceTracker::viewOf(FaceViews& views, const FaceRegion& square, FaceImage& image) const {
    const FaceArea box = square.box();
    return views.view({std::max(box.left, 0.0F), std::max(box.top, 0.0F),
                       std::min(box.right, static_cast<float>(mPicture.x)),
                       std::min(box.bottom, static_cast<float>(mPicture.y))},
                      kDetectPixels, image);
}

void FaceTracker::detectIn(FaceViews& views, FaceDetector& detector, const FaceRegion& square) {
    FaceImage image;
    if (viewOf(views, square, image)) {
        detector.detect(image, square, mFound);
    }
}

void FaceTracker::markRegions() {
    for (const auto& track : mTracks) {
        track->wanted = track->region;
    }
}

void FaceTracker::adoptAll() {
    for (const FaceDetection& found : mFound) {
        adopt(found);
    }
}

/// A face that is followed already is only found again if it was lost. Faces may have moved since the
/// detector was given its pixels, so they are compared as they were then.
void FaceTracker::adopt(const FaceDetection& found) {
    const FaceRegion region = FaceMesh::regionOf(found);
    for (const auto& track : mTracks) {
        if (areNear(track->wanted.centre, region.centre, std::max(track->wanted.side, region.side))) {
            if (track->missed > 0) {
                track->region = region;
            }
            return;
        }
    }
    Track* track = freeTrack();
    if (track == nullptr) {
        return;
    }
    track->region = track->wanted = region;
    track->missed = 0;
    track->isNew = true;
    track->face = TrackedFace();
    track->bias.reset();
    for (OneEuroFilter& filter : track->points) {
        filter.reset();
    }
    for (OneEuroFilter& filter : track->pose) {
        filter.reset();
    }
}

FaceTracker::Track* FaceTracker::freeTrack() {
    if (mTracks.size() >= kMostFaces) {
        return nullptr;
    }
    if (mSpare.empty()) {
        mSpare.push_back(std::make_unique<Track>());
    }
    mTracks.push_back(std::move(mSpare.back()));
    mSpare.pop_back();
    return mTracks.back().get();
}

/// One look through the network. Moves the region to what was seen.
/// @param news share of what a second look, in a mirror, says of the network's bias; 0 leaves that out
bool FaceTracker::look(FaceViews& views, Track& track, float news) {
    FaceImage image;
    const bool worth = track.region.side >= kLeastSide && track.region.centre.x > -track.region.side &&
                       track.region.centre.y > -track.region.side &&
                       track.region.centre.x < static_cast<float>(mPicture.x) + track.region.side &&
                       track.region.centre.y < static_cast<float>(mPicture.y) + track.region.side;
    if (!worth || !views.view(track.region.box(), kMeshPixels, image) ||
        !mMesh.find(image, track.region, track.raw) || !(track.raw.confidence >= kLeastConfidence)) {
        return false;
    }
    if (news > 0.0F && mMesh.findInMirror(track.region, mInMirror) &&
        mInMirror.confidence >= kLeastConfidence) {
        track.bias.learn(track.raw, mInMirror, track.region, news);
    }
    track.bias.takeOff(track.raw, track.region);
    track.region = FaceMesh::regionOf(track.raw);
    return true;
}

/// One face in a frame, and none in the frames in which the detector works.
bool FaceTracker::isTurnToLearn(const Track& track) const {
    const auto turn = static_cast<std::size_t>(std::max(mSinceDetection - kFirstTurn, 0));
    return mSinceDetection >= kFirstTurn && turn < mTracks.size() && mTracks[turn].get() == &track;
}

/// The first region of a face came from the detector and fitted loosely. Further looks are through better
/// ones, each a little different, and their mean is better than each.
bool FaceTracker::lookClosely(FaceViews& views, Track& track) {
    constexpr float kShare = 1.0F / kCloseLooks;
    FaceMeshPoints mean;
    for (int i = 0; i < kCloseLooks; ++i) {
        if (!look(views, track, i == 0 ? 1.0F : 0.0F)) {
            return false;
        }
        for (std::size_t j = 0; j < kFaceMeshPoints; ++j) {
            const Vec3f& seen = track.raw.points[j];
            Vec3f& point = mean.points[j];
            point = {point.x + kShare * seen.x, point.y + kShare * seen.y, point.z + kShare * seen.z};
        }
    }
    std::copy(std::begin(mean.points), std::end(mean.points), std::begin(track.raw.points));
    return true;
}

void FaceTracker::follow(FaceViews& views, Track& track, float seconds) {
    if (!look(views, track, isTurnToLearn(track) ? kNews : 0.0F) ||
        (track.isNew && !lookClosely(views, track))) {
        lose(track, seconds);
        return;
    }
    const Vec2f middle = middleOf(track.raw);
    Vec2f& velocity = track.face.velocity;
    if (track.isNew) {
        track.isNew = false;
        track.face.id = mNextId++;
        velocity = {};
    } else {
        const float times = static_cast<float>(track.missed + 1) * seconds;
        velocity = {(velocity.x + (middle.x - track.middle.x) / times) / 2.0F,
                    (velocity.y + (middle.y - track.middle.y) / times) / 2.0F};
    }
    track.middle = middle;
    track.missed = 0;
    track.region.centre = {track.region.centre.x + velocity.x * seconds,
                           track.region.centre.y + velocity.y * seconds};
    smooth(track, seconds);
    track.face.presence = 1.0F;
    track.face.confidence = std::min(track.raw.confidence, 1.0F);
}

void FaceTracker::smooth(Track& track, float seconds) {
    const FacePose pose = fitFacePose(track.raw);
    OneEuroFilter::Settings settings = kPointSmoothing;
    settings.perSpeed /= std::max(pose.unit, 1.0F);
    OneEuroFilter* filter = track.points.data();
    for (int i = 0; i < kFaceMeshPoints; ++i) {
        const Vec3f& seen = track.raw.points[i];
        Vec3f& point = track.face.mesh.points[i];
        point.x = (filter++)->filter(seen.x, seconds, settings);
        point.y = (filter++)->filter(seen.y, seconds, settings);
        point.z = (filter++)->filter(seen.z, seconds, settings);
    }
    track.face.mesh.confidence = track.raw.confidence;
    FacePose& smoothed = track.face.pose;
    // The short way round.
    const float roll = smoothed.roll + std::remainder(pose.roll - smoothed.roll, 360.0F);
    smoothed.roll = track.pose[0].filter(roll, seconds, kAngleSmoothing);
    smoothed.yaw = track.pose[1].filter(pose.yaw, seconds, kAngleSmoothing);
    smoothed.pitch = track.pose[2].filter(pose.pitch, seconds, kAngleSmoothing);
    smoothed.unit = track.pose[3].filter(pose.unit, seconds, settings);
}

/// The face was not seen: it goes on as it moved, slower and slower, and fades.
void FaceTracker::lose(Track& track, float seconds) {
    ++track.missed;
    if (track.isNew) {
        return;
    }
    Vec2f& velocity = track.face.velocity;
    velocity = {velocity.x * kDamping, velocity.y * kDamping};
    const Vec2f by(velocity.x * seconds, velocity.y * seconds);
    for (std::size_t i = 0; i < kFaceMeshPoints; ++i) {
        Vec3f& point = track.face.mesh.points[i];
        point = {point.x + by.x, point.y + by.y, point.z};
        track.points[3 * i].shift(by.x);
        track.points[3 * i + 1].shift(by.y);
    }
    track.region.centre = {track.region.centre.x + by.x, track.region.centre.y + by.y};
    const auto faded = static_cast<float>(std::max(track.missed - kHold, 0));
    track.face.presence = std::max(1.0F - faded / static_cast<float>(kFade), 0.0F);
    track.face.confidence = std::min(track.raw.confidence, 1.0F) * track.face.presence;
}

/// Two that have come to follow one face become one, under the older id.
void FaceTracker::dropTwins() {
    for (std::size_t i = 0; i < mTracks.size(); ++i) {
        for (std::size_t j = i + 1; j < mTracks.size(); ++j) {
            Track& older = *mTracks[i];
            Track& younger = *mTracks[j];
            const float side = std::min(older.region.side, younger.region.side);
            if (older.isNew || younger.isNew || !areNear(older.region.centre, younger.region.centre, side)) {
                continue;
            }
            if (older.missed > younger.missed) {
                younger.face.id = older.face.id;
                std::swap(mTracks[i], mTracks[j]);
            }
            mSpare.push_back(std::move(mTracks[j]));
            mTracks.erase(mTracks.begin() + static_cast<std::ptrdiff_t>(j));
            --j;
        }
    }
}

void FaceTracker::dropGone() {
    for (std::size_t i = mTracks.size(); i-- > 0;) {
        // One that was never seen may only wait for its pixels.
        const int longest = mTracks[i]->isNew ? kHold : kHold + kFade;
        if (mTracks[i]->missed >= longest) {
            mSpare.push_back(std::move(mTracks[i]));
            mTracks.erase(mTracks.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
}

void FaceTracker::publish() {
    mFaces.clear();
    for (const auto& track : mTracks) {
        if (!track->isNew) {
            mFaces.push_back(track->face);
            mFaces.back().pose.roll = std::remainder(track->face.pose.roll, 360.0F);
        }
    }
}

/// Whether the detector is going to begin in the next frame.
bool FaceTracker::wantsPixels() const {
    return !anySeen() || (!mDetecting && (anyMissed() || mSinceDetection + 1 >= kDetectEvery));
}

void FaceTracker::wishNext(const Size16& picture) {
    mWishes.clear();
    const FaceArea whole{0.0F, 0.0F, static_cast<float>(picture.x), static_cast<float>(picture.y)};
    if (wantsPixels()) {
        mWishes.push_back({whole, kDetectPixels});
    }
    const FaceZones zones(picture);
    if (mTracks.empty() && zones.count() > 0) {
        mWishes.push_back({zones.at(mZone % zones.count(), picture).box(), kDetectPixels});
    }
    for (const auto& track : mTracks) {
        FaceRegion around = track->region;
        around.side *= kAroundWish;
        mWishes.push_back({around.box(), kMeshPixels});
    }
}

}  // namespace zv
