#pragma once

#include <vector>

#include "core/ZVExport.h"

namespace zv {

class RefPool;

/// A stack of release pools; each engine owns one, and there is none for the whole process. The last pool is
/// the current one.
class ZV_API PoolMgr {
public:
    /// Answers the pool manager of the engine that is current on the calling thread, or null.
    using Lookup = PoolMgr* (*)();

    /// Pushes the default pool, so a new manager always has a current one.
    PoolMgr();
    PoolMgr(const PoolMgr&) = delete;
    PoolMgr& operator=(const PoolMgr&) = delete;
    /// Drains and deletes every pool, the top one first.
    ~PoolMgr();

    /// The manager of the calling thread's current engine; null when there is none.
    static PoolMgr* getInstance();
    /// The engine lies above this layer, so it says here how it is found. Null takes the look-up away.
    static void setLookup(Lookup lookup);

    /// The top of the stack; undefined when the stack is empty.
    RefPool* getCurPool() const;
    /// Takes ownership of the pool.
    void push_back(RefPool* pool);
    /// Drains the top pool once and deletes it; what its drain adds to it is lost with it, unreleased. Does
    /// nothing on an empty stack.
    void pop();
    /// Pops until the stack is empty; the default pool goes too.
    void clear();

private:
    std::vector<RefPool*> mPools;
};

}  // namespace zv
