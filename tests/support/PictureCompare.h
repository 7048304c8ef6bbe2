#pragma once

#include <string>

#include "support/Picture.h"

namespace zv::test {

/// How far two pictures are apart, in 8-bit steps over all four channels.
struct PictureDifference {
    bool sameSize = false;
    int maxStep = 0;      ///< the largest step of any channel of any pixel
    double meanStep = 0;  ///< the mean over all channels of all pixels
    int x = 0, y = 0;     ///< where the largest step is (first such pixel, row by row)
};

PictureDifference comparePictures(const Picture& actual, const Picture& expected);

/// Fails the test (at the caller's line) unless the pictures have one size and differ by at most `maxStep` in
/// any channel and `meanStep` on average. On failure NAME-actual.png, NAME-expected.png and
/// NAME-difference.png (steps brightened) are written under ZV_TEST_OUT_DIR and the message prints their
/// paths.
/// @return whether they are near.
bool expectNear(const Picture& actual, const Picture& expected, double maxStep, double meanStep,
                const std::string& name, const char* file = __builtin_FILE(), int line = __builtin_LINE());

/// expectNear with both tolerances 0.
bool expectSame(const Picture& actual, const Picture& expected, const std::string& name,
                const char* file = __builtin_FILE(), int line = __builtin_LINE());

}  // namespace zv::test
