#pragma once

#include <string>
#include <vector>

#include "core/ZVExport.h"

namespace zv {

class Ref;

/// Collects references that nobody keeps and gives them up when it is drained. Adding does not retain;
/// destroying a pool releases nothing, only clear() does.
class ZV_API RefPool {
public:
    explicit RefPool(const char* name);
    /// A copy borrows: it lists the same references, and they are still given up only once. Clear either the
    /// original or the copy, not both.
    RefPool(const RefPool&) = default;
    RefPool(RefPool&&) = default;
    RefPool& operator=(const RefPool&) = default;
    RefPool& operator=(RefPool&&) = default;
    ~RefPool();

    /// Appends without retaining; an object added twice is released twice.
    void add(Ref* object);
    /// Releases every entry once, first to last. What is added meanwhile (for example by a destructor) waits
    /// for the next drain.
    void clear();

private:
    std::vector<Ref*> mObjects;
    std::string mName;
};

}  // namespace zv
