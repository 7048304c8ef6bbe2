#include "effects/FaceInput.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "algorithm/AlgBizFunc.h"
#include "algorithm/AlgEngine.h"
#include "scene/ZVMediaEngine.h"

namespace zv {

namespace {

/// Null also while a plain engine is current, or a media engine that is being destroyed.
kel_algorithm::AlgEngine* currentAlgEngine() {
    auto* media = dynamic_cast<ZVMediaEngine*>(ZVEngine::getCurrent());
    return media != nullptr ? media->getAlgEngine() : nullptr;
}

/// As far as an effect sees them: without the ids.
bool areSame(const kel_algorithm::AlgLandmarksList& a, const kel_algorithm::AlgLandmarksList& b) {
    bool same = a.size() == b.size();
    for (std::size_t i = 0; same && i < a.size(); ++i) {
        same = a[i].confidence == b[i].confidence &&
               std::equal(std::begin(a[i].points), std::end(a[i].points), std::begin(b[i].points));
    }
    return same;
}

}  // namespace

FaceInput::~FaceInput() {
    unsubscribe();
}

void FaceInput::want(bool wanted) {
    if (wanted == (mSubscription != nullptr)) {
        return;
    }
    if (!wanted) {
        unsubscribe();
        if (mFromBusiness) {
            mFaces.reset();  // nobody would tell when they leave
            ++mStamp;
        }
        return;
    }
    if (kel_algorithm::AlgEngine* algorithms = currentAlgEngine()) {
        mSubscription = std::make_shared<kel_algorithm::AlgBizFunc>();
        mSubscription->owner = this;
        mSubscription->type = kel_algorithm::ALG_FUNC_LANDMARKS;
        mSubscription->onLandmarks = [this](kel_algorithm::AlgLandmarksList& faces) {
            take(faces);
            mFromBusiness = true;
        };
        algorithms->registerAlgFunc(mSubscription);
    }
}

void FaceInput::unsubscribe() {
    if (!mSubscription) {
        return;
    }
    // The engine that holds the subscription may be gone, or not be the current one: without a callable the
    // record reaches nobody.
    mSubscription->onLandmarks = nullptr;
    mSubscription.reset();
    if (kel_algorithm::AlgEngine* algorithms = currentAlgEngine()) {
        algorithms->unregisterFunc(this);
    }
}

void FaceInput::take(kel_algorithm::AlgLandmarksList& faces) {
    if (!areSame(mFaces, faces)) {
        ++mStamp;
    }
    std::swap(mFaces, faces);
    mFromBusiness = false;
}

std::size_t FaceInput::count() const {
    return std::min(static_cast<std::size_t>(mFaces.size()), kMostFaces);
}

}  // namespace zv
