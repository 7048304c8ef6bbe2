#pragma once

#include <cstddef>

namespace zv::test {

/// Counts the calls of operator new on this thread, in the library and in the test, since it was made.
/// What happens inside the GL driver is left out while a GLCallRecorder is alive.
class AllocationCounter {
public:
    AllocationCounter();

    std::size_t allocations() const;

    /// False under AddressSanitizer, which keeps operator new for itself: there nothing is counted.
    static bool available();

    /// On Windows, where the library allocates through its own copy of operator new: counts its calls of
    /// malloc as well. Nothing elsewhere. To be called once, at the start.
    static void watchLibrary();

    /// Between the two this thread's allocations stay uncounted; pairs may be nested.
    static void pause();
    static void resume();

private:
    std::size_t mAllocations;
};

}  // namespace zv::test
