#include "algorithm/AlgBizBase.h"

namespace kel_algorithm {

AlgBizBase::AlgBizBase(AlgEngine* engine) : mEngine(engine) {}

AlgBizBase::~AlgBizBase() = default;

bool AlgBizBase::init() {
    mFlags |= kInitialised;
    return true;
}

void AlgBizBase::run() {}

void AlgBizBase::registerAlgFunc(const std::shared_ptr<AlgBizFunc>& func) {
    if (func && isSupportFunc(func->type)) {
        mFuncs.push_back(func);
    }
}

void AlgBizBase::unregisterFunc(void* owner) {
    std::size_t index = 0;
    while (index < mFuncs.size()) {
        if (mFuncs[index]->owner != owner) {
            ++index;
            continue;
        }
        const std::shared_ptr<AlgBizFunc> dropped = mFuncs[index];
        mFuncs.erase(mFuncs.begin() + static_cast<std::ptrdiff_t>(index));
        if (mRunning) {
            mNext -= index < mNext ? 1 : 0;
            mEnd -= index < mEnd ? 1 : 0;
        }
        // The release of the dropped one may run a consumer's code, which may unregister in turn.
        index = 0;
    }
}

}  // namespace kel_algorithm
