#include "core/Mat4.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "core/MathUtil.h"

using zv::Mat4;
using zv::MathUtil;
using zv::Vec3f;
using zv::Vec4;

namespace {

/// A matrix as it is written on paper: rows of columns.
using Rows = std::array<std::array<double, 4>, 4>;

Rows rowsOf(const Mat4& matrix) {
    Rows rows{};
    for (std::size_t i = 0; i < 16; ++i)
        rows[i % 4][i / 4] = static_cast<double>(matrix.m[i]);
    return rows;
}

Rows product(const Rows& a, const Rows& b) {
    Rows result{};
    for (std::size_t row = 0; row < 4; ++row)
        for (std::size_t column = 0; column < 4; ++column)
            for (std::size_t k = 0; k < 4; ++k)
                result[row][column] += a[row][k] * b[k][column];
    return result;
}

void expectRows(const Mat4& actual, const Rows& expected, double step = 1e-5) {
    const Rows rows = rowsOf(actual);
    for (std::size_t row = 0; row < 4; ++row)
        for (std::size_t column = 0; column < 4; ++column)
            EXPECT_NEAR(rows[row][column], expected[row][column], step)
                << "row " << row << ", column " << column;
}

/// Rows without symmetry; `seed` tells two of them apart.
Mat4 sample(float seed) {
    Mat4 matrix;
    for (int i = 0; i < 16; ++i)
        matrix.m[i] = std::sin(seed + 1.7f * static_cast<float>(i));
    return matrix;
}

Vec3f transformed(const Mat4& matrix, Vec3f v) {
    matrix.transformVec(v);
    return v;
}

const Mat4 kCounted(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);

}  // namespace

TEST(Mat4, TakesRowsAndKeepsColumns) {
    const float columns[16] = {1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15, 4, 8, 12, 16};
    EXPECT_TRUE(std::equal(columns, columns + 16, kCounted.m));
    EXPECT_EQ(Mat4::getLength(), 16);

    Mat4 matrix;
    expectRows(matrix, {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}}, 0);
    expectRows(Mat4::IDENTITY, rowsOf(matrix), 0);
    expectRows(Mat4::ZERO, Rows{}, 0);
    matrix.set(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
    expectRows(matrix, rowsOf(kCounted), 0);
    Mat4 copied;
    copied.set(columns);
    expectRows(copied, rowsOf(kCounted), 0);
    const float rows[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    copied.setFromDirection(rows);
    expectRows(copied, rowsOf(kCounted), 0);
    copied.setFromDirection(copied.m);
    EXPECT_TRUE(std::equal(rows, rows + 16, copied.m));
}

TEST(Mat4, ProductsAgreeWithADoubleComputation) {
    const Mat4 a = sample(0.3f);
    const Mat4 b = sample(2.1f);
    const Rows expected = product(rowsOf(a), rowsOf(b));
    Mat4 left = a;
    Mat4 right = b;
    Mat4 assigned = a;
    Mat4 member = a;
    Mat4::multiply(left, b, left);
    Mat4::multiply(a, right, right);
    assigned *= b;
    member.multiply(b);
    for (const Mat4& result : {a * b, left, right, assigned, member})
        expectRows(result, expected);
    member.multiply(member);
    expectRows(member, product(expected, expected));
}

TEST(Mat4, SumsDifferencesAndNegation) {
    const Mat4 a = sample(0.3f);
    const Mat4 b = sample(2.1f);
    Mat4 sum = a;
    Mat4 difference = a;
    sum += b;
    difference -= b;
    Mat4 inPlace = a;
    Mat4::subtract(b, inPlace, inPlace);
    float plus[16];
    float times[16];
    MathUtil::addMatrix(a.m, 2.5f, plus);
    MathUtil::multiplyMatrix(a.m, -3.0f, times);
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(sum.m[i], a.m[i] + b.m[i]);
        EXPECT_EQ((a + b).m[i], sum.m[i]);
        EXPECT_EQ(difference.m[i], a.m[i] - b.m[i]);
        EXPECT_EQ((a - b).m[i], difference.m[i]);
        EXPECT_EQ(inPlace.m[i], -difference.m[i]);
        EXPECT_EQ((-a).m[i], -a.m[i]);
        EXPECT_EQ(plus[i], a.m[i] + 2.5f);
        EXPECT_EQ(times[i], a.m[i] * -3.0f);
        EXPECT_TRUE(std::signbit(Mat4::ZERO.getNegated().m[i]));
    }
}

TEST(Mat4, TransformsPointsAndDirections) {
    const Mat4 move = Mat4::createTranslation(Vec3f(1, 2, 3));
    EXPECT_EQ(transformed(move, Vec3f()), Vec3f(1, 2, 3));
    Vec3f direction(9, 9, 9);
    move.transformVector(Vec4(), direction);
    EXPECT_EQ(direction, Vec3f());
    EXPECT_EQ(transformed(move * Mat4::createScale(Vec3f(2, 3, 4)), Vec3f(1, 1, 1)), Vec3f(3, 5, 7));
    // The last row does not divide.
    EXPECT_EQ(transformed(kCounted, Vec3f(1, 0, 2)), Vec3f(1 + 6 + 4, 5 + 14 + 8, 9 + 22 + 12));

    float v[4] = {1, 0, 2, -1};
    float three[4] = {0, 0, 0, 77};
    MathUtil::transformVec4(kCounted.m, v[0], v[1], v[2], v[3], three);
    MathUtil::transformVec4(kCounted.m, v, v);
    const float expected[4] = {3, 11, 19, 27};
    EXPECT_TRUE(std::equal(expected, expected + 4, v));
    EXPECT_TRUE(std::equal(expected, expected + 3, three));
    EXPECT_EQ(three[3], 77.0f);

    float cross[3] = {2, 3, 5};
    const float other[3] = {-1, 4, 7};
    MathUtil::crossVec3(cross, other, cross);
    EXPECT_EQ(Vec3f(cross[0], cross[1], cross[2]), Vec3f(3 * 7 - 5 * 4, 5 * -1 - 2 * 7, 2 * 4 - 3 * -1));
}

TEST(Mat4, RotationsTurnCounterClockwiseAboutTheirAxis) {
    const double angle = 0.7;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const float a = static_cast<float>(angle);
    expectRows(Mat4::createRotationX(a), {{{1, 0, 0, 0}, {0, c, -s, 0}, {0, s, c, 0}, {0, 0, 0, 1}}}, 1e-6);
    expectRows(Mat4::createRotationY(a), {{{c, 0, s, 0}, {0, 1, 0, 0}, {-s, 0, c, 0}, {0, 0, 0, 1}}}, 1e-6);
    expectRows(Mat4::createRotationZ(a), {{{c, -s, 0, 0}, {s, c, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}}, 1e-6);
}

TEST(Mat4, EulerAnglesComposeXYZAndComeBack) {
    for (const Vec3f& e : {Vec3f(0.4f, -0.9f, 1.3f), Vec3f(-1.5f, 1.5f, -1.5f), Vec3f(0, 0, 0.2f), Vec3f()}) {
        const Mat4 matrix = Mat4::createEulerAngleXYZ(e);
        expectRows(matrix,
                   product(product(rowsOf(Mat4::createRotationX(e.x)), rowsOf(Mat4::createRotationY(e.y))),
                           rowsOf(Mat4::createRotationZ(e.z))));
        const Vec3f back = matrix.extractEulerAngleXYZ();
        EXPECT_NEAR(back.x, e.x, 1e-5);
        EXPECT_NEAR(back.y, e.y, 1e-5);
        EXPECT_NEAR(back.z, e.z, 1e-5);
    }
}

TEST(Mat4, OrthographicMapsTheBoxToTheUnitCube) {
    const Mat4 pixels = Mat4::createOrthographicOffCenter(0, 640, 0, 480, -1, 1);
    EXPECT_EQ(transformed(pixels, Vec3f(0, 0, 0.25f)), Vec3f(-1, -1, -0.25f));
    EXPECT_EQ(transformed(pixels, Vec3f(640, 480, -1)), Vec3f(1, 1, 1));
    const Mat4 box = Mat4::createOrthographicOffCenter(-3, 5, 7, 2, 1, 9);
    const Vec3f low = transformed(box, Vec3f(-3, 7, -1));
    const Vec3f high = transformed(box, Vec3f(5, 2, -9));
    EXPECT_NEAR(low.x, -1, 1e-6);
    EXPECT_NEAR(low.y, -1, 1e-6);
    EXPECT_NEAR(low.z, -1, 1e-6);
    EXPECT_NEAR(high.x, 1, 1e-6);
    EXPECT_NEAR(high.y, 1, 1e-6);
    EXPECT_NEAR(high.z, 1, 1e-6);
    EXPECT_EQ(box.m[15], 1.0f);
}
