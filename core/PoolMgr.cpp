#include "core/PoolMgr.h"

#include <atomic>

#include "core/RefPool.h"

namespace zv {

namespace {

// Set by the engine's layer; engines on several threads share the one look-up.
std::atomic<PoolMgr::Lookup> sLookup{nullptr};

}  // namespace

PoolMgr::PoolMgr() {
    push_back(new RefPool("Zorvik Default Pool"));
}

PoolMgr::~PoolMgr() {
    clear();
}

PoolMgr* PoolMgr::getInstance() {
    const Lookup lookup = sLookup.load();
    return lookup != nullptr ? lookup() : nullptr;
}

void PoolMgr::setLookup(Lookup lookup) {
    sLookup.store(lookup);
}

RefPool* PoolMgr::getCurPool() const {
    return mPools.back();
}

void PoolMgr::push_back(RefPool* pool) {
    mPools.push_back(pool);
}

void PoolMgr::pop() {
    if (mPools.empty())
        return;
    // The pool stays the current one while it drains, so that destructors can still autorelease.
    RefPool* pool = mPools.back();
    pool->clear();
    mPools.pop_back();
    delete pool;
}

void PoolMgr::clear() {
    while (!mPools.empty())
        pop();
}

}  // namespace zv
