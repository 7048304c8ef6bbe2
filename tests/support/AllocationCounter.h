#pragma once

#include <cstddef>

namespace zv::test {

/// Counts what operator new and delete do on this thread, in the library and in the test, since it was made.
/// What happens inside the GL driver is left out while a GLCallRecorder is alive.
class AllocationCounter {
public:
    AllocationCounter();

    std::size_t allocations() const;
    std::size_t frees() const;
    std::size_t bytes() const;

    /// False under AddressSanitizer, which keeps operator new for itself. Skip with
    /// ZV_NEEDS_ALLOCATION_COUNTER().
    static bool available();

    /// On Windows, where the library allocates through its own copy of operator new: counts its calls of
    /// malloc as well. Nothing elsewhere. To be called once, at the start.
    static void watchLibrary();

    /// Between the two this thread's allocations stay uncounted; pairs may be nested.
    static void pause();
    static void resume();

private:
    std::size_t mAllocations;
    std::size_t mFrees;
    std::size_t mBytes;
};

}  // namespace zv::test

/// Skips a test that counts allocations where they cannot be counted, and says why.
#define ZV_NEEDS_ALLOCATION_COUNTER()                \
    if (!::zv::test::AllocationCounter::available()) \
    GTEST_SKIP() << "operator new belongs to the sanitizer in this build"
