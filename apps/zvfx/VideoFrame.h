#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/UniqueDataPtr.h"

namespace zvfx {

/// How much chroma a frame has: one sample for 2 x 2 pixels, or one a pixel.
enum class Chroma { C420, C444 };

/// How YUV and RGB belong together. The numbers are those of the engine's colour conversions.
enum class Matrix { Bt601 = 1, Bt601Full = 2, Bt709 = 3 };

struct Ratio {
    std::int64_t numerator = 0;
    std::int64_t denominator = 0;  ///< 0: not known

    double value() const {
        return denominator != 0 ? static_cast<double>(numerator) / static_cast<double>(denominator) : 0;
    }
};

/// What all frames of a video have in common.
struct VideoFormat {
    int width = 0;
    int height = 0;
    Chroma chroma = Chroma::C420;
    Matrix matrix = Matrix::Bt601;
    Ratio rate{25, 1};       ///< frames a second
    Ratio timeBase{1, 25};   ///< seconds that VideoFrame::time counts in
    Ratio aspect;            ///< width of a pixel by its height
    bool leftSited = false;  ///< chroma of 4:2:0 lies on the left column of its 2 x 2 pixels, not amid them
    bool rgb = false;        ///< comes from RGB, so that full chroma is nothing that players of it expect
    std::vector<std::string> y4m;  ///< parameters of the Y4M header that it comes from, in their order

    bool sizeInsideLimits() const;
    /// "1 to 65535 pixels wide and high, ...": what a size must be and is not.
    std::string sizeComplaint() const;
};

/// Where the samples of a plane lie in a frame's bytes.
struct Plane {
    std::ptrdiff_t offset = 0;  ///< of the top row's first sample
    std::ptrdiff_t stride = 0;  ///< bytes from a row to the one below it
    int step = 1;               ///< bytes from a sample to the next
    int width = 0;
    int height = 0;
};

/// The three planes Y, U and V.
struct FrameLayout {
    std::array<Plane, 3> planes;
    std::size_t bytes = 0;

    /// Planes without padding one behind the other; chroma sizes are rounded up.
    static FrameLayout tight(int width, int height, Chroma chroma);
    /// What the packed 4:2:0 target gives for even sizes: rows of luma padded to four bytes, then U and V
    /// without. The planes tell of `width` x `height` pixels in it, which may be one less than it holds.
    static FrameLayout packed420(int width, int height);
    /// What the 4:4:4 target gives: three bytes a pixel, the bottom row first.
    static FrameLayout packed444(int width, int height);
};

/// One picture of a video. Frames are handed on and used again; their memory stays.
struct VideoFrame {
    zv::UniqueDataPtr<unsigned char> bytes;
    FrameLayout layout;
    std::int64_t time = 0;   ///< in units of the format's time base
    std::string parameters;  ///< of a Y4M frame header, with the blank before them

    /// Memory for a layout. @return false when there is none
    bool prepare(const FrameLayout& wanted);
    const unsigned char* row(std::size_t plane, int y) const;
    unsigned char* row(std::size_t plane, int y);
};

/// Copies `width` samples of a row, tightly; what the plane does not have repeats its last sample. A row
/// below the plane is its last one.
void copyRow(const VideoFrame& frame, std::size_t plane, int y, unsigned char* to, int width);

/// The next even number.
constexpr int evenUp(int size) {
    return size + (size & 1);
}

}  // namespace zvfx
