#pragma once

#include <cstdint>

#include "core/ZVExport.h"

namespace zv {

/// How a texture is sampled, as GL enums.
struct ZV_API TexParams {
    std::int32_t minFilter;
    std::int32_t magFilter;
    std::int32_t wrapS;
    std::int32_t wrapT;

    /// Linear filters, clamped to the edge.
    static const TexParams DEFAULT;
};

}  // namespace zv
