#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "core/TVec.h"
#include "face/FaceCamera.h"
#include "face/FaceTracker.h"

namespace zv {

/// Runs a tracker on a thread of its own. Frames are handed in without waiting; one that has not been begun
/// when the next one comes is left out.
class FaceWorker {
public:
    using Clock = std::chrono::steady_clock;

    /// The faces of one frame.
    struct Result {
        std::vector<TrackedFace> faces;
        Clock::time_point time;  ///< when the frame was drawn
        Size16 picture{0, 0};
    };

    /// Starts the thread. The tracker is loaded.
    explicit FaceWorker(std::unique_ptr<FaceTracker> tracker);
    /// Waits for the frame that is being looked at.
    ~FaceWorker();
    FaceWorker(const FaceWorker&) = delete;
    FaceWorker& operator=(const FaceWorker&) = delete;

    /// Hands a frame in; what `shots` holds afterwards is memory for the next one.
    void give(FaceShots& shots, const Size16& picture, Clock::time_point time);

    /// What came last.
    void take(Result& result, std::vector<FaceTracker::Wish>& wishes);

private:
    void run();

    std::unique_ptr<FaceTracker> mTracker;  // the thread's, once it runs
    std::mutex mMutex;
    std::condition_variable mWake;
    bool mEnd = false;
    bool mHasFrame = false;
    FaceShots mShots;
    Size16 mPicture{0, 0};
    Clock::time_point mTime;
    Result mResult;
    std::vector<FaceTracker::Wish> mWishes;
    std::thread mThread;
};

}  // namespace zv
