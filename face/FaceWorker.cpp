#include "face/FaceWorker.h"

#include <utility>

namespace zv {

FaceWorker::FaceWorker(std::unique_ptr<FaceTracker> tracker) : mTracker(std::move(tracker)) {
    mResult.faces.reserve(FaceTracker::kMostFaces);
    mWishes.reserve(FaceTracker::kMostFaces + 2);
    mThread = std::thread([this] { run(); });
}

FaceWorker::~FaceWorker() {
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mEnd = true;
    }
    mWake.notify_one();
    mThread.join();
}

void FaceWorker::give(FaceShots& shots, const Size16& picture, Clock::time_point time) {
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        std::swap(mShots, shots);
        mPicture = picture;
        mTime = time;
        mHasFrame = true;
    }
    mWake.notify_one();
}

void FaceWorker::take(Result& result, std::vector<FaceTracker::Wish>& wishes) {
    const std::lock_guard<std::mutex> lock(mMutex);
    result = mResult;
    wishes = mWishes;
}

void FaceWorker::run() {
    FaceShots shots;
    Clock::time_point before;
    std::unique_lock<std::mutex> lock(mMutex);
    while (true) {
        mWake.wait(lock, [this] { return mEnd || mHasFrame; });
        if (mEnd) {
            return;
        }
        std::swap(shots, mShots);
        mHasFrame = false;
        const Size16 picture = mPicture;
        const Clock::time_point time = mTime;
        lock.unlock();
        const float seconds = std::chrono::duration<float>(time - before).count();
        before = time;
        mTracker->track(shots, picture, seconds);
        lock.lock();
        mResult.faces = mTracker->faces();
        mResult.time = time;
        mResult.picture = picture;
        mWishes = mTracker->wishes();
    }
}

}  // namespace zv
