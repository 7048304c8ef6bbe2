#pragma once

#include <cstdint>

#include "core/ZVExport.h"

namespace zv {

/// Intrusively counted base of every long-lived object. The count is not atomic: an object stays on the
/// thread of the engine that made it.
class ZV_API Ref {
public:
    /// Count 1: the creator is the first owner.
    Ref() = default;
    /// A copy takes over the source's count as it stands, so it needs as many releases as the source.
    Ref(const Ref&) = default;
    Ref& operator=(const Ref&) = default;
    virtual ~Ref();

    void retain();
    /// Deletes the object when the count reaches 0. Releasing at count 0 is a programming error.
    void release();
    /// Leaves the caller's reference to the current release pool, which gives it up at its next drain.
    /// Needs a current pool manager on this thread. Answers this.
    Ref* autorelease();
    std::uint32_t getRefCount() const;

private:
    std::uint32_t mRefCount = 1;
};

}  // namespace zv
