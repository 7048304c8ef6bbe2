#include "core/Ref.h"

#include "core/PoolMgr.h"
#include "core/RefPool.h"

namespace zv {

Ref::~Ref() = default;

void Ref::retain() {
    ++mRefCount;
}

void Ref::release() {
    if (--mRefCount == 0)
        delete this;
}

Ref* Ref::autorelease() {
    PoolMgr::getInstance()->getCurPool()->add(this);
    return this;
}

std::uint32_t Ref::getRefCount() const {
    return mRefCount;
}

}  // namespace zv
