#include "bench/Faces.h"

#include <array>
#include <cmath>
#include <fstream>

namespace zv::bench {

namespace {

constexpr float kPortraitSide = 512.0F;
std::array<Vec2f, kel_algorithm::kFacePoints> sFace;

}  // namespace

bool loadSampleFace(const std::string& path) {
    std::ifstream file(path);
    for (Vec2f& point : sFace) {
        if (!(file >> point.x >> point.y)) {
            return false;
        }
    }
    return true;
}

kel_algorithm::AlgLandmarksList sampleFaces(const Size16& size, int count, int frame) {
    kel_algorithm::AlgLandmarksList faces(static_cast<std::size_t>(count));
    const auto columns = static_cast<int>(std::ceil(std::sqrt(static_cast<double>(count))));
    const float scale = static_cast<float>(size.x) / kPortraitSide / static_cast<float>(columns);
    const float shake = 2.0F * std::sin(0.7F * static_cast<float>(frame));
    for (int i = 0; i < count; ++i) {
        kel_algorithm::AlgFaceLandmarks& face = *faces.get(static_cast<std::size_t>(i));
        const auto column = static_cast<float>(i % columns);
        const auto row = static_cast<float>(i / columns);
        for (std::size_t k = 0; k < sFace.size(); ++k) {
            face.points[k].x = sFace[k].x * scale + shake + column * static_cast<float>(size.x / columns);
            face.points[k].y =
                static_cast<float>(size.y) - sFace[k].y * scale - row * static_cast<float>(size.y / columns);
        }
        face.confidence = 1.0F;
        face.faceId = i;
    }
    return faces;
}

}  // namespace zv::bench
