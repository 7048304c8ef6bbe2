#include "core/Mat4.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "core/MathUtil.h"

using namespace zv;

namespace {

void expectNear(const Mat4& actual, const Mat4& expected, double step = 1e-5) {
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(actual.m[i], expected.m[i], step) << "row " << i % 4 << ", column " << i / 4;
}

Vec3f transformed(const Mat4& matrix, Vec3f v) {
    matrix.transformVec(v);
    return v;
}

const Mat4 kCounted(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
const Mat4 kOther(2, -1, 0, 3, 5, 7, -4, 1, 0, 6, 8, -2, 9, -3, 1, 4);

}  // namespace

TEST(Mat4, TakesRowsAndKeepsColumns) {
    const float columns[16] = {1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15, 4, 8, 12, 16};
    EXPECT_TRUE(std::equal(columns, columns + 16, kCounted.m));
    expectNear(Mat4::IDENTITY, Mat4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1), 0);
    expectNear(Mat4::ZERO, kCounted - kCounted, 0);
    Mat4 matrix;
    matrix.set(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
    expectNear(matrix, kCounted, 0);
    matrix.set(columns);
    matrix.setFromDirection(matrix.m);
    EXPECT_EQ(matrix.m[1], 2.0f);
    matrix.setFromDirection(matrix.m);
    expectNear(matrix, kCounted, 0);
}

TEST(Mat4, ProductsAreRowsTimesColumnsInPlaceToo) {
    const Mat4 a = kCounted, b = kOther;
    const Mat4 expected(48, 19, 20, 15, 112, 55, 40, 39, 176, 91, 60, 63, 240, 127, 80, 87);
    Mat4 left = a, right = b, assigned = a, member = a;
    Mat4::multiply(left, b, left);
    Mat4::multiply(a, right, right);
    assigned *= b;
    member.multiply(b);
    for (const Mat4& result : {a * b, left, right, assigned, member})
        expectNear(result, expected, 0);
    member.multiply(member);
    expectNear(member, expected * expected, 0);
}

TEST(Mat4, SumsDifferencesAndNegation) {
    const Mat4 a = kCounted, b = kOther;
    Mat4 sum = a, difference = a, plus, times;
    sum += b;
    difference -= b;
    MathUtil::addMatrix(a.m, 2.5f, plus.m);
    MathUtil::multiplyMatrix(a.m, -3.0f, times.m);
    for (int i = 0; i < 16; ++i) {
        EXPECT_TRUE(sum.m[i] == a.m[i] + b.m[i] && (a + b).m[i] == sum.m[i]) << i;
        EXPECT_TRUE(difference.m[i] == a.m[i] - b.m[i] && (a - b).m[i] == difference.m[i]) << i;
        EXPECT_TRUE((-a).m[i] == -a.m[i] && plus.m[i] == a.m[i] + 2.5f && times.m[i] == -3 * a.m[i]) << i;
    }
}

TEST(Mat4, TransformsPointsAndDirections) {
    const Mat4 move = Mat4::createTranslation(Vec3f(1, 2, 3));
    Vec3f direction(9, 9, 9);
    move.transformVector(Vec4(), direction);
    EXPECT_EQ(direction, Vec3f());
    EXPECT_EQ(transformed(move * Mat4::createScale(Vec3f(2, 3, 4)), Vec3f(1, 1, 1)), Vec3f(3, 5, 7));
    // The last row does not divide.
    EXPECT_EQ(transformed(kCounted, Vec3f(1, 0, 2)), Vec3f(1 + 6 + 4, 5 + 14 + 8, 9 + 22 + 12));

    float v[4] = {1, 0, 2, -1}, three[4] = {2, 3, 5, 77};
    const float other[3] = {-1, 4, 7};
    MathUtil::crossVec3(three, other, three);
    EXPECT_TRUE(three[0] == 3 * 7 - 5 * 4 && three[1] == 5 * -1 - 2 * 7 && three[2] == 2 * 4 - 3 * -1);
    MathUtil::transformVec4(kCounted.m, v[0], v[1], v[2], v[3], three);
    MathUtil::transformVec4(kCounted.m, v, v);
    EXPECT_TRUE(three[0] == 3 && three[1] == 11 && three[2] == 19 && three[3] == 77);
    EXPECT_TRUE(v[0] == 3 && v[1] == 11 && v[2] == 19 && v[3] == 27);
}

TEST(Mat4, RotationsTurnCounterClockwiseAndEulerAnglesComposeXYZ) {
    const float a = 0.7f, c = std::cos(a), s = std::sin(a);
    expectNear(Mat4::createRotationX(a), Mat4(1, 0, 0, 0, 0, c, -s, 0, 0, s, c, 0, 0, 0, 0, 1));
    expectNear(Mat4::createRotationY(a), Mat4(c, 0, s, 0, 0, 1, 0, 0, -s, 0, c, 0, 0, 0, 0, 1));
    expectNear(Mat4::createRotationZ(a), Mat4(c, -s, 0, 0, s, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1));
    for (const Vec3f& e : {Vec3f(0.4f, -0.9f, 1.3f), Vec3f(-1.5f, 1.5f, -1.5f), Vec3f()}) {
        const Mat4 matrix = Mat4::createEulerAngleXYZ(e);
        expectNear(matrix,
                   Mat4::createRotationX(e.x) * Mat4::createRotationY(e.y) * Mat4::createRotationZ(e.z));
        expectNear(Mat4::createTranslation(matrix.extractEulerAngleXYZ()), Mat4::createTranslation(e));
    }
}

TEST(Mat4, OrthographicMapsTheBoxToTheUnitCube) {
    const Mat4 box = Mat4::createOrthographicOffCenter(-3, 5, 6, 2, 1, 9);
    EXPECT_EQ(transformed(box, Vec3f(-3, 6, -1)), Vec3f(-1, -1, -1));
    EXPECT_EQ(transformed(box, Vec3f(5, 2, -9)), Vec3f(1, 1, 1));
    EXPECT_EQ(box.m[15], 1.0f);
}
