#include "core/Mat4.h"

#include <cmath>
#include <cstring>

#include "core/MathUtil.h"

namespace zv {

const Mat4 Mat4::IDENTITY;
const Mat4 Mat4::ZERO(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);

void Mat4::set(float m11, float m12, float m13, float m14, float m21, float m22, float m23, float m24,
               float m31, float m32, float m33, float m34, float m41, float m42, float m43, float m44) {
    *this = Mat4(m11, m12, m13, m14, m21, m22, m23, m24, m31, m32, m33, m34, m41, m42, m43, m44);
}

void Mat4::set(const float* src) {
    std::memmove(m, src, sizeof(m));
}

void Mat4::setFromDirection(const float* src) {
    MathUtil::transposeMatrix(src, m);
}

void Mat4::add(const Mat4& other) {
    add(*this, other, *this);
}

void Mat4::subtract(const Mat4& other) {
    subtract(*this, other, *this);
}

void Mat4::multiply(const Mat4& other) {
    multiply(*this, other, *this);
}

void Mat4::negate() {
    MathUtil::negateMatrix(m, m);
}

Mat4 Mat4::getNegated() const {
    Mat4 result(*this);
    result.negate();
    return result;
}

void Mat4::add(const Mat4& a, const Mat4& b, Mat4& dst) {
    MathUtil::addMatrix(a.m, b.m, dst.m);
}

void Mat4::subtract(const Mat4& a, const Mat4& b, Mat4& dst) {
    MathUtil::subtractMatrix(a.m, b.m, dst.m);
}

void Mat4::multiply(const Mat4& a, const Mat4& b, Mat4& dst) {
    MathUtil::multiplyMatrix(a.m, b.m, dst.m);
}

Mat4 Mat4::operator+(const Mat4& other) const {
    return Mat4(*this) += other;
}

Mat4 Mat4::operator-(const Mat4& other) const {
    return Mat4(*this) -= other;
}

Mat4 Mat4::operator*(const Mat4& other) const {
    return Mat4(*this) *= other;
}

Mat4& Mat4::operator+=(const Mat4& other) {
    add(other);
    return *this;
}

Mat4& Mat4::operator-=(const Mat4& other) {
    subtract(other);
    return *this;
}

Mat4& Mat4::operator*=(const Mat4& other) {
    multiply(other);
    return *this;
}

void Mat4::transformVec(TVec<3, float>& v) const {
    transformVector(Vec4(v, 1.0f), v);
}

void Mat4::transformVector(const Vec4& v, TVec<3, float>& dst) const {
    float transformed[3];
    MathUtil::transformVec4(m, v.x, v.y, v.z, v.w, transformed);
    dst = TVec<3, float>(transformed[0], transformed[1], transformed[2]);
}

Mat4 Mat4::createTranslation(const TVec<3, float>& translation) {
    Mat4 result;
    result.m[12] = translation.x;
    result.m[13] = translation.y;
    result.m[14] = translation.z;
    return result;
}

Mat4 Mat4::createScale(const TVec<3, float>& scale) {
    Mat4 result;
    result.m[0] = scale.x;
    result.m[5] = scale.y;
    result.m[10] = scale.z;
    return result;
}

Mat4 Mat4::createRotationX(float radians) {
    Mat4 result;
    result.m[5] = std::cos(radians);
    result.m[6] = std::sin(radians);
    result.m[9] = -std::sin(radians);
    result.m[10] = std::cos(radians);
    return result;
}

Mat4 Mat4::createRotationY(float radians) {
    Mat4 result;
    result.m[0] = std::cos(radians);
    result.m[2] = -std::sin(radians);
    result.m[8] = std::sin(radians);
    result.m[10] = std::cos(radians);
    return result;
}

Mat4 Mat4::createRotationZ(float radians) {
    Mat4 result;
    result.m[0] = std::cos(radians);
    result.m[1] = std::sin(radians);
    result.m[4] = -std::sin(radians);
    result.m[5] = std::cos(radians);
    return result;
}

Mat4 Mat4::createOrthographicOffCenter(float left, float right, float bottom, float top, float zNear,
                                       float zFar) {
    Mat4 result;
    result.m[0] = 2.0f / (right - left);
    result.m[5] = 2.0f / (top - bottom);
    result.m[10] = 2.0f / (zNear - zFar);
    result.m[12] = (left + right) / (left - right);
    result.m[13] = (top + bottom) / (bottom - top);
    result.m[14] = (zNear + zFar) / (zNear - zFar);
    return result;
}

Mat4 Mat4::createEulerAngleXYZ(const TVec<3, float>& radians) {
    // The elements are those of Z x Y x X transposed, which is the inverse rotation: hence the negated
    // angles.
    const float ca = std::cos(-radians.x);
    const float sa = std::sin(-radians.x);
    const float cb = std::cos(-radians.y);
    const float sb = std::sin(-radians.y);
    const float cc = std::cos(-radians.z);
    const float sc = std::sin(-radians.z);
    Mat4 result;
    result.m[0] = cc * cb;
    result.m[1] = sb * sa * cc - sc * ca;
    result.m[2] = sb * ca * cc + sc * sa;
    result.m[4] = sc * cb;
    result.m[5] = sb * sa * sc + cc * ca;
    result.m[6] = sb * ca * sc - sa * cc;
    result.m[8] = -sb;
    result.m[9] = sa * cb;
    result.m[10] = cb * ca;
    return result;
}

TVec<3, float> Mat4::extractEulerAngleXYZ() const {
    const float t1 = std::atan2(m[9], m[10]);
    const float t2 = std::atan2(-m[8], std::sqrt(m[0] * m[0] + m[4] * m[4]));
    const float s1 = std::sin(t1);
    const float c1 = std::cos(t1);
    const float t3 = std::atan2(s1 * m[2] - c1 * m[1], c1 * m[5] - s1 * m[6]);
    return TVec<3, float>(-t1, -t2, -t3);
}

}  // namespace zv
