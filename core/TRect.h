#pragma once

#include "core/TVec.h"

namespace zv {

template <typename T, typename S>
struct TRect {
    TVec<2, T> origin;
    TVec<2, S> size;

    constexpr TRect() = default;
    constexpr TRect(T x, T y, S width, S height) : origin(x, y), size(width, height) {}

    constexpr bool operator==(const TRect& o) const { return origin == o.origin && size == o.size; }
    constexpr bool operator!=(const TRect& o) const { return !(*this == o); }
};

using RectF = TRect<float, float>;
using ViewPort = TRect<short, unsigned short>;

}  // namespace zv
