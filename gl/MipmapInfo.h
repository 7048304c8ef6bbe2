#pragma once

#include <cstdint>

namespace zv {

/// One level of an upload; the bytes stay the caller's. Null data allocates the level without filling it.
struct _MipmapInfo {  // NOLINT(bugprone-reserved-identifier): the name is part of the fixed interface.
    const unsigned char* data = nullptr;
    std::uint64_t length = 0;  ///< bytes
};

}  // namespace zv
