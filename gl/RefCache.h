#pragma once

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/Ref.h"

namespace zv {

/// Keeps counted objects by key. The cache holds one reference to each; nothing leaves it unasked. An object
/// may use the cache while it is destroyed by it.
template <class T>
class RefCache {
public:
    RefCache() = default;
    RefCache(const RefCache&) = delete;
    RefCache& operator=(const RefCache&) = delete;
    virtual ~RefCache() { clear(); }

    virtual bool init() { return true; }

    /// Retains the object under the key, in place of another one that the key had, which is released. Null is
    /// kept too.
    void add(const std::string& key, T* object) {
        auto found = mObjects.find(key);
        if (found != mObjects.end() && found->second == object)
            return;
        if (object != nullptr)
            object->retain();
        T* former = nullptr;
        if (found != mObjects.end())
            former = std::exchange(found->second, object);
        else
            mObjects.emplace(key, object);
        if (former != nullptr)
            former->release();
    }

    /// Null when there is none; not retained for the caller.
    T* get(const std::string& key) const {
        const auto found = mObjects.find(key);
        return found != mObjects.end() ? found->second : nullptr;
    }

    void remove(const std::string& key) {
        const auto found = mObjects.find(key);
        if (found == mObjects.end())
            return;
        T* former = found->second;
        mObjects.erase(found);
        if (former != nullptr)
            former->release();
    }

    /// Releases what the cache alone still holds.
    void removeUnused() {
        std::vector<T*> unused;
        for (auto entry = mObjects.begin(); entry != mObjects.end();) {
            T* object = entry->second;
            if (object != nullptr && object->getRefCount() >= 2) {
                ++entry;
                continue;
            }
            if (object != nullptr)
                unused.push_back(object);
            entry = mObjects.erase(entry);
        }
        for (T* object : unused) {
            object->release();
        }
    }

    /// Releases every object.
    void clear() {
        std::unordered_map<std::string, T*> objects;
        objects.swap(mObjects);
        for (auto& entry : objects) {
            if (entry.second != nullptr)
                entry.second->release();
        }
    }

protected:
    std::unordered_map<std::string, T*> mObjects;
};

}  // namespace zv
