#pragma once

#include "core/TVec.h"
#include "core/Vec4.h"
#include "core/ZVExport.h"

namespace zv {

/// A 4 x 4 matrix as OpenGL keeps it: column-major, column vectors, products composed right to left. Element
/// (row r, column c) is m[c * 4 + r]; the translation is m[12], m[13], m[14]. Angles are radians.
struct ZV_API Mat4 {
    float m[16];

    static const Mat4 IDENTITY;
    static const Mat4 ZERO;
    /// Number of elements.
    static constexpr int getLength() { return 16; }

    /// The identity.
    constexpr Mat4() : m{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1} {}
    /// Row by row: the first four are the first row.
    constexpr Mat4(float m11, float m12, float m13, float m14, float m21, float m22, float m23, float m24,
                   float m31, float m32, float m33, float m34, float m41, float m42, float m43, float m44)
        : m{m11, m21, m31, m41, m12, m22, m32, m42, m13, m23, m33, m43, m14, m24, m34, m44} {}
    Mat4(const Mat4&) = default;
    Mat4& operator=(const Mat4&) = default;

    /// Row by row, as the constructor.
    void set(float m11, float m12, float m13, float m14, float m21, float m22, float m23, float m24,
             float m31, float m32, float m33, float m34, float m41, float m42, float m43, float m44);
    /// Copies 16 floats that are column-major already.
    void set(const float* src);
    /// Copies 16 row-major floats, transposing them; it takes no direction, whatever its name says.
    void setFromDirection(const float* src);

    void add(const Mat4& other);
    void subtract(const Mat4& other);
    /// this = this x other.
    void multiply(const Mat4& other);
    /// Flips the sign of every element, so 0 becomes -0.
    void negate();
    Mat4 getNegated() const;
    /// The destination may be either operand.
    static void add(const Mat4& a, const Mat4& b, Mat4& dst);
    static void subtract(const Mat4& a, const Mat4& b, Mat4& dst);
    static void multiply(const Mat4& a, const Mat4& b, Mat4& dst);

    Mat4 operator+(const Mat4& other) const;
    Mat4 operator-(const Mat4& other) const;
    Mat4 operator*(const Mat4& other) const;
    Mat4 operator-() const { return getNegated(); }
    Mat4& operator+=(const Mat4& other);
    Mat4& operator-=(const Mat4& other);
    Mat4& operator*=(const Mat4& other);

    /// v = (this x (v, 1)).xyz, without a division by w.
    void transformVec(TVec<3, float>& v) const;
    /// dst = (this x v).xyz.
    void transformVector(const Vec4& v, TVec<3, float>& dst) const;

    static Mat4 createTranslation(const TVec<3, float>& translation);
    static Mat4 createScale(const TVec<3, float>& scale);
    static Mat4 createRotationX(float radians);
    static Mat4 createRotationY(float radians);
    static Mat4 createRotationZ(float radians);
    static Mat4 createOrthographicOffCenter(float left, float right, float bottom, float top, float zNear,
                                            float zFar);
    /// createRotationX(x) x createRotationY(y) x createRotationZ(z).
    static Mat4 createEulerAngleXYZ(const TVec<3, float>& radians);
    /// The inverse of createEulerAngleXYZ() for angles between -pi/2 and pi/2.
    TVec<3, float> extractEulerAngleXYZ() const;
};

}  // namespace zv
