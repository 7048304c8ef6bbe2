#pragma once

#include "core/ZVExport.h"

namespace zv {

/// The two factors of glBlendFunc.
struct ZV_API BlendFunc {
    unsigned int src;  ///< GL enum, factor of what is drawn
    unsigned int dst;  ///< GL enum, factor of what is there

    /// No blending at all: what is drawn replaces what is there.
    static const BlendFunc DISABLE;
    static const BlendFunc ALPHA_PREMULTIPLIED;
    static const BlendFunc ALPHA_NON_PREMULTIPLIED;
    static const BlendFunc ADDITIVE;

    BlendFunc() : src(DISABLE.src), dst(DISABLE.dst) {}
    constexpr BlendFunc(unsigned int source, unsigned int destination) : src(source), dst(destination) {}

    bool operator==(const BlendFunc& other) const { return src == other.src && dst == other.dst; }
    bool operator!=(const BlendFunc& other) const { return !(*this == other); }
};

}  // namespace zv
