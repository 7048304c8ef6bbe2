#include "support/PictureCompare.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace zv::test {

namespace {

int stepAt(const Picture& actual, const Picture& expected, std::size_t index) {
    return std::abs(int{actual.rgba[index]} - int{expected.rgba[index]});
}

/// Steps times 16, in grey where all channels differ alike; opaque, so that differences of alpha show as
/// white.
Picture differencePicture(const Picture& actual, const Picture& expected) {
    Picture picture(actual.width, actual.height);
    for (std::size_t i = 0; i < actual.rgba.size(); i += 4) {
        const int alphaStep = stepAt(actual, expected, i + 3);
        for (std::size_t c = 0; c < 3; ++c) {
            const int step = std::max(stepAt(actual, expected, i + c), alphaStep);
            picture.rgba[i + c] = static_cast<std::uint8_t>(std::min(step * 16, 255));
        }
        picture.rgba[i + 3] = 255;
    }
    return picture;
}

std::string describe(const Pixel& pixel) {
    return std::to_string(pixel[0]) + " " + std::to_string(pixel[1]) + " " + std::to_string(pixel[2]) + " " +
           std::to_string(pixel[3]);
}

/// Writes what was compared and answers the lines that say where.
std::string writeEvidence(const Picture& actual, const Picture& expected, bool sameSize, std::string name) {
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == '/' || c == '\\' || c == ' '; }, '_');
    std::error_code error;
    std::filesystem::create_directories(ZV_TEST_OUT_DIR, error);
    const std::string base = std::string(ZV_TEST_OUT_DIR) + "/" + name;
    std::string lines;
    const auto write = [&](const Picture& picture, const std::string& path) {
        lines += (picture.save(path) ? "  " : "  cannot write ") + path + "\n";
    };
    write(actual, base + "-actual.png");
    write(expected, base + "-expected.png");
    if (sameSize) {
        write(differencePicture(actual, expected), base + "-difference.png");
    }
    return lines;
}

}  // namespace

PictureDifference comparePictures(const Picture& actual, const Picture& expected) {
    PictureDifference difference;
    difference.sameSize = actual.width == expected.width && actual.height == expected.height;
    if (!difference.sameSize || actual.empty()) {
        return difference;
    }
    double sum = 0;
    for (std::size_t i = 0; i < actual.rgba.size(); ++i) {
        const int step = stepAt(actual, expected, i);
        sum += step;
        if (step > difference.maxStep) {
            difference.maxStep = step;
            difference.x = static_cast<int>(i / 4 % static_cast<std::size_t>(actual.width));
            difference.y = static_cast<int>(i / 4 / static_cast<std::size_t>(actual.width));
        }
    }
    difference.meanStep = sum / static_cast<double>(actual.rgba.size());
    return difference;
}

bool expectNear(const Picture& actual, const Picture& expected, double maxStep, double meanStep,
                const std::string& name, const char* file, int line) {
    const PictureDifference difference = comparePictures(actual, expected);
    const bool near = difference.sameSize && !actual.empty() && difference.maxStep <= maxStep &&
                      difference.meanStep <= meanStep;
    if (near) {
        return true;
    }
    if (actual.empty() || expected.empty()) {
        ADD_FAILURE_AT(file, line) << name << ": nothing to compare, " << (actual.empty() ? "no" : "an")
                                   << " actual picture and " << (expected.empty() ? "no" : "an")
                                   << " expected one";
        return false;
    }
    const std::string evidence = writeEvidence(actual, expected, difference.sameSize, name);
    if (!difference.sameSize) {
        ADD_FAILURE_AT(file, line) << name << ": " << actual.width << " x " << actual.height << " instead of "
                                   << expected.width << " x " << expected.height << "\n"
                                   << evidence;
        return false;
    }
    ADD_FAILURE_AT(file, line) << name << ": largest step " << difference.maxStep << " (" << maxStep
                               << " allowed), mean " << difference.meanStep << " (" << meanStep
                               << " allowed); at (" << difference.x << ", " << difference.y << ") "
                               << describe(actual.at(difference.x, difference.y)) << " instead of "
                               << describe(expected.at(difference.x, difference.y)) << "\n"
                               << evidence;
    return false;
}

bool expectSame(const Picture& actual, const Picture& expected, const std::string& name, const char* file,
                int line) {
    return expectNear(actual, expected, 0, 0, name, file, line);
}

}  // namespace zv::test
