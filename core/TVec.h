#pragma once

namespace zv {

/// N contiguous components, named x, y (, z).
template <int N, typename T>
struct TVec;

template <typename T>
struct TVec<2, T> {
    T x{};
    T y{};

    constexpr TVec() = default;
    constexpr TVec(T first, T second) : x(first), y(second) {}

    constexpr bool operator==(const TVec& o) const { return x == o.x && y == o.y; }
    constexpr bool operator!=(const TVec& o) const { return !(*this == o); }
};

template <typename T>
struct TVec<3, T> {
    T x{};
    T y{};
    T z{};

    constexpr TVec() = default;
    constexpr TVec(T first, T second, T third) : x(first), y(second), z(third) {}

    constexpr bool operator==(const TVec& o) const { return x == o.x && y == o.y && z == o.z; }
    constexpr bool operator!=(const TVec& o) const { return !(*this == o); }
};

using Vec2f = TVec<2, float>;
using Vec3f = TVec<3, float>;
/// A size in pixels: x is the width, y the height.
using Size16 = TVec<2, unsigned short>;

}  // namespace zv
