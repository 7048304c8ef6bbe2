#include "core/MathUtil.h"

#include <cstddef>
#include <cstring>

namespace zv {

void MathUtil::addMatrix(const float* m, float scalar, float* dst) {
    for (int i = 0; i < 16; ++i)
        dst[i] = m[i] + scalar;
}

void MathUtil::addMatrix(const float* m1, const float* m2, float* dst) {
    for (int i = 0; i < 16; ++i)
        dst[i] = m1[i] + m2[i];
}

void MathUtil::subtractMatrix(const float* m1, const float* m2, float* dst) {
    for (int i = 0; i < 16; ++i)
        dst[i] = m1[i] - m2[i];
}

void MathUtil::multiplyMatrix(const float* m, float scalar, float* dst) {
    for (int i = 0; i < 16; ++i)
        dst[i] = m[i] * scalar;
}

void MathUtil::multiplyMatrix(const float* m1, const float* m2, float* dst) {
    // Complete before it is stored, since dst may be an operand.
    float product[16];
    for (std::size_t column = 0; column < 4; ++column)
        for (std::size_t row = 0; row < 4; ++row)
            product[column * 4 + row] = m1[row] * m2[column * 4] + m1[4 + row] * m2[column * 4 + 1] +
                                        m1[8 + row] * m2[column * 4 + 2] + m1[12 + row] * m2[column * 4 + 3];
    std::memcpy(dst, product, sizeof(product));
}

void MathUtil::negateMatrix(const float* m, float* dst) {
    for (int i = 0; i < 16; ++i)
        dst[i] = -m[i];
}

void MathUtil::transposeMatrix(const float* m, float* dst) {
    float transposed[16];
    for (std::size_t column = 0; column < 4; ++column)
        for (std::size_t row = 0; row < 4; ++row)
            transposed[column * 4 + row] = m[row * 4 + column];
    std::memcpy(dst, transposed, sizeof(transposed));
}

void MathUtil::transformVec4(const float* m, float x, float y, float z, float w, float* dst) {
    for (int row = 0; row < 3; ++row)
        dst[row] = m[row] * x + m[4 + row] * y + m[8 + row] * z + m[12 + row] * w;
}

void MathUtil::transformVec4(const float* m, const float* v4, float* dst4) {
    const float x = v4[0];
    const float y = v4[1];
    const float z = v4[2];
    const float w = v4[3];
    for (int row = 0; row < 4; ++row)
        dst4[row] = m[row] * x + m[4 + row] * y + m[8 + row] * z + m[12 + row] * w;
}

void MathUtil::crossVec3(const float* a, const float* b, float* dst) {
    const float x = a[1] * b[2] - a[2] * b[1];
    const float y = a[2] * b[0] - a[0] * b[2];
    const float z = a[0] * b[1] - a[1] * b[0];
    dst[0] = x;
    dst[1] = y;
    dst[2] = z;
}

bool MathUtil::isNeon32Enabled() {
    return false;
}

bool MathUtil::isNeon64Enabled() {
    return false;
}

}  // namespace zv
