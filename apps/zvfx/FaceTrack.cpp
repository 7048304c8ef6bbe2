#include "zvfx/FaceTrack.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>

namespace zvfx {

namespace {

using Json = nlohmann::json;

/// How pixels of the track become pixels of the view port; depth by the mean of both.
struct Scale {
    float x = 1.0F;
    float y = 1.0F;
};

const Json* find(const Json& object, const char* name) {
    const auto found = object.find(name);
    return found != object.end() ? &*found : nullptr;
}

std::optional<float> toFloat(const Json& value) {
    const double number = value.is_number() ? value.get<double>() : std::numeric_limits<double>::infinity();
    if (!(std::abs(number) <= static_cast<double>(std::numeric_limits<float>::max()))) {
        return std::nullopt;
    }
    return static_cast<float>(number);
}

std::string readSize(const Json& size, const zv::Size16& viewPort, Scale& scale) {
    float sides[2] = {};
    if (!size.is_array() || size.size() != 2) {
        return "\"size\" is a width and a height";
    }
    for (std::size_t i = 0; i < 2; ++i) {
        sides[i] = toFloat(size[i]).value_or(0.0F);
        if (!(sides[i] >= 1.0F)) {
            return "a side of \"size\" is at least 1";
        }
    }
    scale = {static_cast<float>(viewPort.x) / sides[0], static_cast<float>(viewPort.y) / sides[1]};
    return {};
}

std::string readMatrix(const Json& numbers, const Scale& scale, zv::Mat4& matrix) {
    if (!numbers.is_array() || numbers.size() != 16) {
        return "a matrix has 16 numbers, column by column";
    }
    const float rows[4] = {scale.x, scale.y, (scale.x + scale.y) / 2.0F, 1.0F};
    for (std::size_t i = 0; i < 16; ++i) {
        const std::optional<float> number = toFloat(numbers[i]);
        matrix.m[i] = number.value_or(0.0F) * rows[i % 4];
        if (!number || !std::isfinite(matrix.m[i])) {
            return "a matrix has 16 numbers that a float can hold";
        }
    }
    return {};
}

std::string readLine(const std::string& text, const zv::Size16& viewPort, Scale& scale,
                     FaceTrack::Frame& frame) {
    const Json line = Json::parse(text, nullptr, false);
    if (line.is_discarded() || !line.is_object()) {
        return "is no JSON object";
    }
    if (const Json* size = find(line, "size")) {
        std::string wrong = readSize(*size, viewPort, scale);
        if (!wrong.empty()) {
            return wrong;
        }
    }
    const Json* faces = find(line, "faces");
    if (faces == nullptr || !faces->is_array()) {
        return "lacks \"faces\", a list of lists of matrices";
    }
    for (const Json& matrices : *faces) {
        if (!matrices.is_array() || matrices.empty()) {
            return "a face is a list of at least one matrix";
        }
        FaceTrack::Face face(matrices.size());
        for (std::size_t i = 0; i < face.size(); ++i) {
            std::string wrong = readMatrix(matrices[i], scale, face[i]);
            if (!wrong.empty()) {
                return wrong;
            }
        }
        frame.push_back(std::move(face));
    }
    return {};
}

}  // namespace

std::string FaceTrack::load(const std::string& path, const zv::Size16& viewPort) {
    std::ifstream file(std::filesystem::u8path(path), std::ios::binary);
    if (!file) {
        mFrames.clear();
        return path + ": cannot be opened";
    }
    const std::string wrong = read(file, viewPort);
    return wrong.empty() ? wrong : path + wrong;
}

std::string FaceTrack::read(std::istream& lines, const zv::Size16& viewPort) {
    mFrames.clear();
    Scale scale;
    std::string text;
    for (std::size_t number = 1; std::getline(lines, text); ++number) {
        if (text.find_first_not_of(" \t\r") == std::string::npos) {
            continue;
        }
        Frame frame;
        const std::string wrong = readLine(text, viewPort, scale, frame);
        if (!wrong.empty()) {
            return ", line " + std::to_string(number) + ": " + wrong;
        }
        mFrames.push_back(std::move(frame));
    }
    if (lines.bad()) {
        return ": cannot be read";
    }
    return mFrames.empty() ? ": holds no frame" : std::string();
}

bool FaceTrackDetector::detect(kel_algorithm::AlgFaceResults& results) {
    const FaceTrack::Frame& frame = mTrack.frames()[std::min(mNext, mTrack.frames().size() - 1)];
    ++mNext;
    if (results.mats.size() != frame.size()) {
        results.mats.resize(frame.size());
    }
    for (std::size_t i = 0; i < results.mats.size(); ++i) {
        if (results.mats[i].size() != frame[i].size()) {
            results.mats[i].resize(frame[i].size());
        }
        for (std::size_t bone = 0; bone < results.mats[i].size(); ++bone) {
            results.mats[i][bone] = frame[i][bone];
        }
    }
    return true;
}

}  // namespace zvfx
