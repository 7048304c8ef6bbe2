#pragma once

#include <cmath>
#include <cstdint>

#include "algorithm/AlgDelivery.h"
#include "algorithm/AlgKelNN.h"

namespace zv::test {

/// Landmarks that the face effects take for a face: a ring of points, with eyes and chin where a face has
/// them.
inline void placeFace(kel_algorithm::AlgFaceLandmarks& face, Vec2f middle, float radius) {
    for (int i = 0; i < kel_algorithm::kFacePoints; ++i) {
        const float turn = static_cast<float>(i) * 0.7F;
        face.points[i] = {middle.x + radius * std::cos(turn), middle.y + radius * std::sin(turn)};
    }
    constexpr int kLeftEye = 74, kRightEye = 77, kChin = 16;
    face.points[kLeftEye] = {middle.x - 0.5F * radius, middle.y + 0.3F * radius};
    face.points[kRightEye] = {middle.x + 0.5F * radius, middle.y + 0.3F * radius};
    face.points[kChin] = {middle.x, middle.y - radius};
    face.confidence = 1.0F;
}

/// A detector that finds what it was told.
struct ToldDetector : kel_algorithm::AlgKelNN::Detector {
    kel_algorithm::AlgFaceResults told;
    int calls = 0;
    bool detect(kel_algorithm::AlgFaceResults& results) override {
        ++calls;
        kel_algorithm::copyElement(told.landmarks, results.landmarks);
        kel_algorithm::copyElement(told.mats, results.mats);
        return true;
    }
};

}  // namespace zv::test
