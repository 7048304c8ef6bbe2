#include "support/AllocationCounter.h"

#include <cstdlib>
#include <new>

#if defined(_WIN32)
#include "host/ImportTable.h"
#endif

#if defined(__SANITIZE_ADDRESS__)
#define ZV_COUNTS_ALLOCATIONS 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZV_COUNTS_ALLOCATIONS 0
#else
#define ZV_COUNTS_ALLOCATIONS 1
#endif
#else
#define ZV_COUNTS_ALLOCATIONS 1
#endif

namespace {

struct Counts {
    std::size_t allocations = 0;
    int paused = 0;
};

// Plain data, so that it can be used before and after everything else of the thread.
thread_local Counts tCounts;

}  // namespace

#if ZV_COUNTS_ALLOCATIONS
namespace {

void* allocate(std::size_t size) {
    if (tCounts.paused == 0) {
        ++tCounts.allocations;
    }
    return std::malloc(size != 0 ? size : 1);
}

}  // namespace

// The array, nothrow and sized forms of the standard library end in these. The aligned ones are left alone.
void* operator new(std::size_t size) {
    void* memory = allocate(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
#endif

#if defined(_WIN32)
namespace {

void* replaceAllocation(std::string_view name, void* address) {
    return name == "malloc" ? reinterpret_cast<void*>(allocate) : address;
}

}  // namespace
#endif

namespace zv::test {

void AllocationCounter::watchLibrary() {
#if defined(_WIN32)
    host::replaceImports("zorvik.dll", "msvcrt.dll", replaceAllocation);
#endif
}

AllocationCounter::AllocationCounter() : mAllocations(tCounts.allocations) {}

std::size_t AllocationCounter::allocations() const {
    return tCounts.allocations - mAllocations;
}

bool AllocationCounter::available() {
    return ZV_COUNTS_ALLOCATIONS != 0;
}

void AllocationCounter::pause() {
    ++tCounts.paused;
}

void AllocationCounter::resume() {
    --tCounts.paused;
}

}  // namespace zv::test
