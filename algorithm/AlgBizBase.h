#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "algorithm/AlgBizFunc.h"
#include "algorithm/AlgTypes.h"
#include "core/ZVExport.h"

namespace kel_algorithm {

class AlgEngine;

/// A business: one algorithm, with the consumers that subscribed to its results. Everything runs on the
/// rendering thread. Callbacks may register and unregister, themselves included: who is unregistered is not
/// called any more, who is registered meanwhile is called from the next frame on.
class ZV_API AlgBizBase {
public:
    /// @param engine the owner, not owned; null for a business outside any engine
    explicit AlgBizBase(AlgEngine* engine);
    AlgBizBase(const AlgBizBase&) = delete;
    AlgBizBase& operator=(const AlgBizBase&) = delete;
    virtual ~AlgBizBase();

    /// Makes the business ready. Called when it takes its slot.
    virtual bool init();

    /// Runs the algorithm on the current frame and calls the registered callbacks. Here: nothing.
    virtual void run();

    /// Shares ownership of the subscription. Ignored when it is null or of a type that is not supported.
    virtual void registerAlgFunc(const std::shared_ptr<AlgBizFunc>& func);

    /// Drops every subscription of that owner and keeps the order of the others. A consumer calls it before
    /// it is destroyed.
    virtual void unregisterFunc(void* owner);

    virtual bool isSupportFunc(AlgFuncType type) const = 0;
    virtual AlgBizType getBizType() const = 0;

    bool isInit() const { return (mFlags & kInitialised) != 0; }
    /// Whether anybody is registered; the engine runs a business only then.
    bool isNeedRun() const { return !mFuncs.empty(); }
    AlgEngine* getEngine() const { return mEngine; }
    /// The subscriptions in the order of registration.
    const std::vector<std::shared_ptr<AlgBizFunc>>& getFuncs() const { return mFuncs; }

protected:
    /// One run of a business, from before it detects until its last callback has returned. Who takes part is
    /// settled at its start. False inside another one: a callback or a detector that runs the business again
    /// must not have the results changed that are being delivered.
    class RunScope {
    public:
        explicit RunScope(AlgBizBase& biz) : mBiz(biz), mFirst(!biz.mRunning) {
            if (mFirst) {
                mBiz.mRunning = true;
                mBiz.mEnd = mBiz.mFuncs.size();
            }
        }
        ~RunScope() { mBiz.mRunning = !mFirst; }
        RunScope(const RunScope&) = delete;
        RunScope& operator=(const RunScope&) = delete;
        explicit operator bool() const { return mFirst; }

    private:
        AlgBizBase& mBiz;
        bool mFirst;
    };

    /// Hands a list to every subscription that has this callback and asks for one of these bits of the type,
    /// in the order of registration: the last one gets the list itself, those before it a copy each. `spare`
    /// is where the copies are made; it keeps its memory from frame to frame. Defined in
    /// algorithm/AlgDelivery.h.
    template <class List>
    void deliver(List& list, List& spare, std::int32_t mask,
                 std::function<void(List&)> AlgBizFunc::*callback);

private:
    static constexpr std::uint8_t kInitialised = 1;

    std::uint8_t mFlags = 0;
    AlgEngine* mEngine;
    std::vector<std::shared_ptr<AlgBizFunc>> mFuncs;
    // During a run: the subscription whose turn is next, and the end of those that take part.
    std::size_t mNext = 0;
    std::size_t mEnd = 0;
    bool mRunning = false;
    bool mDelivering = false;
};

}  // namespace kel_algorithm
