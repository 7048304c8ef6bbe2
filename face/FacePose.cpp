#include "face/FacePose.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace zv {

namespace {

struct FitWeight {
    int point;
    float weight;
};

#include "face/CanonicalFace.inc"

using Matrix3 = std::array<std::array<double, 3>, 3>;
using Matrix4 = std::array<std::array<double, 4>, 4>;

constexpr double kDegrees = 57.29577951308232;

// The network's depth is flatter than a face is, so a turned head reads as turned less than it is; and a face
// that is level reads as nodding. Measured with the portrait's mesh turned by known angles, see
// docs/faces.md.
constexpr float kYawGain = 1.5F;
constexpr float kPitchGain = 1.2F;
constexpr float kPitchOffset = 5.0F;
constexpr float kMostTurn = 85.0F;
/// The least that the distance of the eye corners is taken to be foreshortened to.
constexpr float kLeastForeshortening = 0.4F;

std::array<double, 3> toArray(const Vec3f& v) {
    return {v.x, v.y, v.z};
}

/// The correlation of the average face with the mesh's points, both about their weighted middles.
Matrix3 correlate(const FaceMeshPoints& mesh) {
    double total = 0.0;
    std::array<double, 3> middleOfModel{}, middleOfMesh{};
    const auto modelOf = [](const FitWeight& fit) {
        const Vec3f& v = kVertices[fit.point];
        return std::array<double, 3>{v.x, -v.y, -v.z};  // as the mesh: y down, z away from the viewer
    };
    for (const FitWeight& fit : kFitWeights) {
        total += fit.weight;
    }
    for (const FitWeight& fit : kFitWeights) {
        const auto model = modelOf(fit), seen = toArray(mesh.points[fit.point]);
        for (std::size_t i = 0; i < 3; ++i) {
            middleOfModel[i] += fit.weight / total * model[i];
            middleOfMesh[i] += fit.weight / total * seen[i];
        }
    }
    Matrix3 sum{};
    for (const FitWeight& fit : kFitWeights) {
        const auto model = modelOf(fit), seen = toArray(mesh.points[fit.point]);
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t j = 0; j < 3; ++j) {
                sum[i][j] += fit.weight * (model[i] - middleOfModel[i]) * (seen[j] - middleOfMesh[j]);
            }
        }
    }
    return sum;
}

/// Eigenvector of the largest eigenvalue of a symmetric matrix, by Jacobi's rotations.
std::array<double, 4> mainDirection(Matrix4 m) {
    Matrix4 vectors{};
    for (std::size_t i = 0; i < 4; ++i) {
        vectors[i][i] = 1.0;
    }
    constexpr int kSweeps = 12;  // it converges quadratically; five are enough for doubles
    for (int sweep = 0; sweep < kSweeps; ++sweep) {
        for (std::size_t p = 0; p < 3; ++p) {
            for (std::size_t q = p + 1; q < 4; ++q) {
                if (m[p][q] == 0.0) {
                    continue;
                }
                const double angle = 0.5 * std::atan2(2.0 * m[p][q], m[q][q] - m[p][p]);
                const double c = std::cos(angle), s = std::sin(angle);
                for (std::size_t k = 0; k < 4; ++k) {
                    const double a = m[k][p], b = m[k][q];
                    m[k][p] = c * a - s * b;
                    m[k][q] = s * a + c * b;
                }
                for (std::size_t k = 0; k < 4; ++k) {
                    const double a = m[p][k], b = m[q][k], u = vectors[k][p], v = vectors[k][q];
                    m[p][k] = c * a - s * b;
                    m[q][k] = s * a + c * b;
                    vectors[k][p] = c * u - s * v;
                    vectors[k][q] = s * u + c * v;
                }
            }
        }
    }
    std::size_t best = 0;
    for (std::size_t i = 1; i < 4; ++i) {
        best = m[i][i] > m[best][best] ? i : best;
    }
    return {vectors[0][best], vectors[1][best], vectors[2][best], vectors[3][best]};
}

/// The turn that brings the average face closest to the mesh (Horn, Closed-form solution of absolute
/// orientation using unit quaternions, 1987).
Matrix3 fitRotation(const FaceMeshPoints& mesh) {
    const Matrix3 s = correlate(mesh);
    const double xx = s[0][0], xy = s[0][1], xz = s[0][2], yx = s[1][0], yy = s[1][1], yz = s[1][2],
                 zx = s[2][0], zy = s[2][1], zz = s[2][2];
    const auto [w, x, y, z] = mainDirection({{{xx + yy + zz, yz - zy, zx - xz, xy - yx},
                                              {yz - zy, xx - yy - zz, xy + yx, zx + xz},
                                              {zx - xz, xy + yx, yy - xx - zz, yz + zy},
                                              {xy - yx, zx + xz, yz + zy, zz - xx - yy}}});
    return {{{1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y)},
             {2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x)},
             {2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)}}};
}

Vec3f meanOf(const FaceMeshPoints& mesh, std::initializer_list<int> indices) {
    Vec3f sum;
    const float share = 1.0F / static_cast<float>(indices.size());
    for (const int i : indices) {
        const Vec3f& point = mesh.points[i];
        sum = {sum.x + share * point.x, sum.y + share * point.y, sum.z + share * point.z};
    }
    return sum;
}

/// The average face is symmetric to the last digit.
std::array<std::int32_t, kFaceMeshPoints> pairPoints() {
    std::array<std::int32_t, kFaceMeshPoints> pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        float least = std::numeric_limits<float>::max();
        for (std::size_t j = 0; j < pairs.size(); ++j) {
            const float x = kVertices[i].x + kVertices[j].x, y = kVertices[i].y - kVertices[j].y,
                        z = kVertices[i].z - kVertices[j].z, distance = x * x + y * y + z * z;
            if (distance < least) {
                least = distance;
                pairs[i] = static_cast<std::int32_t>(j);
            }
        }
    }
    return pairs;
}

}  // namespace

FacePose fitFacePose(const FaceMeshPoints& mesh) {
    const Matrix3 r = fitRotation(mesh);
    FacePose pose;
    pose.roll = static_cast<float>(kDegrees * std::atan2(r[1][0], r[0][0]));
    const auto yaw = static_cast<float>(kDegrees * std::atan2(-r[2][0], std::hypot(r[0][0], r[1][0])));
    const auto pitch = static_cast<float>(kDegrees * std::atan2(r[2][1], r[2][2]));
    pose.yaw = std::clamp(yaw * kYawGain, -kMostTurn, kMostTurn);
    pose.pitch = std::clamp((pitch - kPitchOffset) * kPitchGain, -kMostTurn, kMostTurn);
    const Vec3f& left = mesh.points[face_point::kLeftEyeOuter];
    const Vec3f& right = mesh.points[face_point::kRightEyeOuter];
    const float seen = std::hypot(right.x - left.x, right.y - left.y);
    const auto shorter = static_cast<float>(std::cos(pose.yaw / kDegrees));
    pose.unit = seen / std::max(shorter, kLeastForeshortening);
    return pose;
}

void findFaceBones(const FaceMeshPoints& mesh, Vec3f* places) {
    using namespace face_point;
    places[1] = meanOf(mesh, {kLeftEyeOuter, kLeftEyeInner});
    places[2] = meanOf(mesh, {kRightEyeOuter, kRightEyeInner});
    places[3] = mesh.points[kNoseTip];
    places[4] = meanOf(mesh, {kUpperLip, kLowerLip, kMouthLeft, kMouthRight});
    places[5] = mesh.points[kChin];
    places[6] = meanOf(mesh, {kHairline, kForehead});
    places[0] = {(places[1].x + places[2].x) / 2.0F, (places[1].y + places[2].y) / 2.0F,
                 (places[1].z + places[2].z) / 2.0F};
    const float depth = places[0].z;
    for (int i = 0; i < kFaceBones; ++i) {
        places[i].z -= depth;
    }
}

Mat4 faceBoneMatrix(const FacePose& pose, const Vec3f& place, float height, float scale) {
    const auto toRadians = [](float degrees) { return static_cast<float>(degrees / kDegrees); };
    // Seen with y up and z towards the viewer, turns about y and z run the other way; those about x do not.
    const Mat4 turn = Mat4::createRotationZ(-toRadians(pose.roll)) *
                      Mat4::createRotationY(-toRadians(pose.yaw)) *
                      Mat4::createRotationX(toRadians(pose.pitch));
    const float unit = pose.unit * scale;
    return Mat4::createTranslation({place.x, height - place.y, -place.z}) * turn *
           Mat4::createScale({unit, unit, unit});
}

const std::int32_t* faceMeshMirror() {
    static const std::array<std::int32_t, kFaceMeshPoints> sPairs = pairPoints();
    return sPairs.data();
}

const std::int32_t* faceMeshIndices() {
    return kTriangles;
}

}  // namespace zv
