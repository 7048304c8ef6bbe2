#include "face/FaceLandmarks106.h"

#include <cmath>

#include "algorithm/AlgTypes.h"

namespace zv {

namespace {

// Points of the mesh along the jaw, from a temple to the chin.
constexpr int kJawPoints = 12;
constexpr int kLeftJaw[kJawPoints] = {127, 234, 93, 132, 58, 172, 136, 150, 149, 176, 148, 152};
constexpr int kRightJaw[kJawPoints] = {356, 454, 323, 361, 288, 397, 365, 379, 378, 400, 377, 152};

constexpr int kEyePoints = 16;
constexpr int kLeftEye[kEyePoints] = {33,  246, 161, 160, 159, 158, 157, 173,
                                      133, 155, 154, 153, 145, 144, 163, 7};
constexpr int kRightEye[kEyePoints] = {263, 466, 388, 387, 386, 385, 384, 398,
                                       362, 382, 381, 380, 374, 373, 390, 249};

constexpr int kContour = 33;        // landmarks 0 to 32
constexpr int kSideOfContour = 17;  // of a temple to the chin, which both sides share
constexpr int kMiddleOfLeftEye = -1;
constexpr int kMiddleOfRightEye = -2;

/// For the landmarks from 33 on: the point of the mesh, or the middle of an eye.
constexpr int kPoints[kel_algorithm::kFacePoints - kContour] = {
    70,
    63,
    105,
    66,
    107,
    336,
    296,
    334,
    293,
    300,  // upper brows
    168,
    197,
    5,
    4,
    98,
    97,
    2,
    326,
    327,  // nose
    33,
    160,
    158,
    133,
    153,
    144,
    362,
    385,
    387,
    263,
    373,
    380,  // eyes
    53,
    52,
    65,
    55,
    285,
    295,
    282,
    283,  // lower brows
    159,
    145,
    kMiddleOfLeftEye,
    386,
    374,
    kMiddleOfRightEye,  // lids
    193,
    417,
    198,
    420,
    129,
    358,  // sides of the nose
    61,
    40,
    37,
    0,
    267,
    270,
    291,
    321,
    405,
    17,
    181,
    91,  // outer lips
    78,
    81,
    13,
    311,
    308,
    402,
    14,
    178,  // inner lips
    kMiddleOfLeftEye,
    kMiddleOfRightEye,  // pupils
};

struct MouthCorner {
    int landmark;
    int outer;
    int inner;
};
constexpr MouthCorner kMouthCorners[] = {{84, 61, 78}, {90, 291, 308}};

float distance(const Vec3f& a, const Vec3f& b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

/// Points at even steps along the jaw of one side; `step` is 1 or -1 from one landmark to the next.
void sampleJaw(const FaceMeshPoints& mesh, const int* jaw, Vec2f* out, int step) {
    float length = 0.0F;
    for (int i = 1; i < kJawPoints; ++i) {
        length += distance(mesh.points[jaw[i - 1]], mesh.points[jaw[i]]);
    }
    int part = 1;
    float start = 0.0F;
    for (int i = 0; i < kSideOfContour; ++i) {
        const float target = length * static_cast<float>(i) / static_cast<float>(kSideOfContour - 1);
        float span = distance(mesh.points[jaw[part - 1]], mesh.points[jaw[part]]);
        while (part < kJawPoints - 1 && start + span < target) {
            start += span;
            ++part;
            span = distance(mesh.points[jaw[part - 1]], mesh.points[jaw[part]]);
        }
        const float along = span > 0.0F ? std::fmin((target - start) / span, 1.0F) : 0.0F;
        const Vec3f& a = mesh.points[jaw[part - 1]];
        const Vec3f& b = mesh.points[jaw[part]];
        *out = {a.x + along * (b.x - a.x), a.y + along * (b.y - a.y)};
        out += step;
    }
}

Vec2f middleOf(const FaceMeshPoints& mesh, const int* eye) {
    Vec2f sum;
    for (int i = 0; i < kEyePoints; ++i) {
        sum = {sum.x + mesh.points[eye[i]].x, sum.y + mesh.points[eye[i]].y};
    }
    return {sum.x / kEyePoints, sum.y / kEyePoints};
}

}  // namespace

void toLandmarks106(const FaceMeshPoints& mesh, Vec2f* landmarks) {
    Vec2f* out = landmarks;
    sampleJaw(mesh, kLeftJaw, out, 1);
    sampleJaw(mesh, kRightJaw, out + kContour - 1, -1);
    const Vec2f left = middleOf(mesh, kLeftEye), right = middleOf(mesh, kRightEye);
    out += kContour;
    for (const int point : kPoints) {
        if (point >= 0) {
            *out = {mesh.points[point].x, mesh.points[point].y};
        } else {
            *out = point == kMiddleOfLeftEye ? left : right;
        }
        ++out;
    }
    // The outer lips' corners lie a little outside the mouth, the inner lips' a little inside.
    for (const MouthCorner& corner : kMouthCorners) {
        const Vec3f& outer = mesh.points[corner.outer];
        const Vec3f& inner = mesh.points[corner.inner];
        landmarks[corner.landmark] = {(outer.x + inner.x) / 2.0F, (outer.y + inner.y) / 2.0F};
    }
}

}  // namespace zv
