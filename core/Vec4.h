#pragma once

#include "core/TVec.h"

namespace zv {

struct Vec4 {
    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
    float w = 0.0f;

    constexpr Vec4() = default;
    constexpr Vec4(float first, float second, float third, float fourth)
        : x(first), y(second), z(third), w(fourth) {}
    constexpr Vec4(const TVec<3, float>& v, float fourth) : x(v.x), y(v.y), z(v.z), w(fourth) {}

    /// Component i, 0 to 3.
    float& operator[](unsigned char i) { return i == 0 ? x : i == 1 ? y : i == 2 ? z : w; }
    const float& operator[](unsigned char i) const { return i == 0 ? x : i == 1 ? y : i == 2 ? z : w; }
};

}  // namespace zv
