#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace zvfx {

/// A queue of at most `capacity` things between threads. It never allocates after it was made.
template <class Thing>
class Channel {
public:
    explicit Channel(std::size_t capacity) : mThings(capacity) {}

    /// Waits for room. @return false, with the thing dropped, when the channel was aborted
    bool push(Thing thing) {
        std::unique_lock<std::mutex> lock(mMutex);
        mChanged.wait(lock, [this] { return mAborted || mCount < mThings.size(); });
        if (mAborted) {
            return false;
        }
        mThings[(mFirst + mCount++) % mThings.size()] = std::move(thing);
        mChanged.notify_all();
        return true;
    }

    /// Waits for the next thing. @return nothing when the channel was closed and is empty, or was aborted
    std::optional<Thing> pop() {
        std::unique_lock<std::mutex> lock(mMutex);
        mChanged.wait(lock, [this] { return mAborted || mClosed || mCount > 0; });
        if (mAborted || mCount == 0) {
            return std::nullopt;
        }
        std::optional<Thing> thing(std::move(mThings[mFirst]));
        mFirst = (mFirst + 1) % mThings.size();
        --mCount;
        mChanged.notify_all();
        return thing;
    }

    /// Nothing more comes; what is there can still be taken.
    void close() {
        const std::lock_guard<std::mutex> lock(mMutex);
        mClosed = true;
        mChanged.notify_all();
    }

    /// Ends every wait, now and later.
    void abort() {
        const std::lock_guard<std::mutex> lock(mMutex);
        mAborted = true;
        mChanged.notify_all();
    }

private:
    std::mutex mMutex;
    std::condition_variable mChanged;
    std::vector<Thing> mThings;  // a ring
    std::size_t mFirst = 0;
    std::size_t mCount = 0;
    bool mClosed = false;
    bool mAborted = false;
};

}  // namespace zvfx
