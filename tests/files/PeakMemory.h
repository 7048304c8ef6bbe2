#pragma once

#include <cstdint>

#if !defined(_WIN32)
#include <sys/resource.h>
#endif

namespace zv::test {

/// The most bytes that the process ever held in memory, whoever took them; 0 where it is not known.
inline std::uint64_t peakMemory() {
#if defined(_WIN32)
    return 0;
#else
    struct rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::uint64_t>(usage.ru_maxrss) * 1024;
#endif
}

}  // namespace zv::test
