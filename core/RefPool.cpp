#include "core/RefPool.h"

#include <utility>

#include "core/Ref.h"

namespace zv {

RefPool::RefPool(const char* name) : mName(name) {}

RefPool::~RefPool() = default;

void RefPool::add(Ref* object) {
    mObjects.push_back(object);
}

void RefPool::clear() {
    // Destructors may add to this pool while the walk runs, so the walk has the array to itself.
    std::vector<Ref*> draining;
    draining.swap(mObjects);
    for (Ref* object : draining)
        object->release();
}

}  // namespace zv
