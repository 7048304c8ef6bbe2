#pragma once

#include <cstdint>

namespace zv {

/// What a host wants of its default surface.
struct GLContextAttrs {
    std::int32_t redBits = 8;
    std::int32_t greenBits = 8;
    std::int32_t blueBits = 8;
    std::int32_t alphaBits = 8;
    std::int32_t depthBits = 24;
    std::int32_t stencilBits = 8;
    std::int32_t multisamplingCount = 0;  ///< samples a pixel; 0 is none
};

}  // namespace zv
