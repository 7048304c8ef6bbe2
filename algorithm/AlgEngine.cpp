#include "algorithm/AlgEngine.h"

#include "algorithm/AlgBizBase.h"
#include "algorithm/AlgFace3D.h"
#include "algorithm/AlgKelNN.h"

namespace kel_algorithm {

namespace {

constexpr std::size_t kFaceSlot = 0;
constexpr std::size_t kFace3DSlot = 3;

}  // namespace

AlgEngine::AlgEngine() = default;

AlgEngine::~AlgEngine() = default;

void AlgEngine::registerAlgFunc(const std::shared_ptr<AlgBizFunc>& func) {
    if (!func) {
        return;
    }
    if (AlgKelNN::supportFunc(func->type)) {
        getKelNN();
    }
    if (AlgFace3D::supportFunc(func->type)) {
        getFace3D();
    }
    for (const std::shared_ptr<AlgBizBase>& biz : mBiz) {
        if (biz && biz->isSupportFunc(func->type)) {
            biz->registerAlgFunc(func);
            return;
        }
    }
}

void AlgEngine::unregisterFunc(void* owner) {
    for (const std::shared_ptr<AlgBizBase>& biz : mBiz) {
        if (biz) {
            biz->unregisterFunc(owner);
        }
    }
}

bool AlgEngine::setBiz(std::size_t slot, const std::shared_ptr<AlgBizBase>& biz) {
    if (slot >= kSlots || slot == kFaceSlot || slot == kFace3DSlot) {
        return false;
    }
    if (biz && !biz->isInit() && !biz->init()) {
        return false;
    }
    mBiz[slot] = biz;
    return true;
}

AlgBizBase* AlgEngine::getBiz(std::size_t slot) const {
    return slot < kSlots ? mBiz[slot].get() : nullptr;
}

AlgKelNN* AlgEngine::getKelNN() {
    if (!mBiz[kFaceSlot]) {
        mBiz[kFaceSlot] = std::make_shared<AlgKelNN>(this);
        mBiz[kFaceSlot]->init();
    }
    return static_cast<AlgKelNN*>(mBiz[kFaceSlot].get());
}

AlgFace3D* AlgEngine::getFace3D() {
    if (!mBiz[kFace3DSlot]) {
        mBiz[kFace3DSlot] = std::make_shared<AlgFace3D>(this);
        mBiz[kFace3DSlot]->init();
    }
    return static_cast<AlgFace3D*>(mBiz[kFace3DSlot].get());
}

void AlgEngine::run() {
    for (std::size_t slot = 0; slot < kSlots; ++slot) {
        // Held here, since a callback may empty the slot.
        const std::shared_ptr<AlgBizBase> biz = mBiz[slot];
        if (biz && biz->isNeedRun()) {
            biz->run();
        }
    }
}

}  // namespace kel_algorithm
