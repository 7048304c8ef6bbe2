#pragma once

#include "core/ZVExport.h"

namespace zv {

/// Arithmetic on raw column-major arrays of 16 floats. A destination may be one of the operands.
class ZV_API MathUtil {
public:
    /// Adds the scalar to every element.
    static void addMatrix(const float* m, float scalar, float* dst);
    static void addMatrix(const float* m1, const float* m2, float* dst);
    static void subtractMatrix(const float* m1, const float* m2, float* dst);
    static void multiplyMatrix(const float* m, float scalar, float* dst);
    /// dst = m1 x m2.
    static void multiplyMatrix(const float* m1, const float* m2, float* dst);
    static void negateMatrix(const float* m, float* dst);
    static void transposeMatrix(const float* m, float* dst);
    /// Writes the components x, y, z of m x (x, y, z, w): three floats.
    static void transformVec4(const float* m, float x, float y, float z, float w, float* dst);
    /// Writes all four components of m x v4.
    static void transformVec4(const float* m, const float* v4, float* dst4);
    /// dst = a x b, three floats each.
    static void crossVec3(const float* a, const float* b, float* dst);

    /// No vector unit is dispatched to: always false.
    static bool isNeon32Enabled();
    static bool isNeon64Enabled();
};

}  // namespace zv
