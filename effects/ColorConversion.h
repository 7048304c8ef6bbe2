#pragma once

#include <cstdint>

#include "core/ZVExport.h"

namespace zv {

class Program;

/// The standard and the range that YUV values keep to.
enum ColorConversion : std::int32_t {
    COLOR_CONVERSION_601_VIDEO = 1,  ///< BT.601; luma 16 to 235, chroma 16 to 240 around 128
    COLOR_CONVERSION_601_FULL = 2,   ///< BT.601; luma 0 to 255, chroma around 128 over the whole byte
    COLOR_CONVERSION_709_VIDEO = 3   ///< BT.709; luma 16 to 235, chroma 16 to 240 around 128
};

/// What takes YUV values, less the offsets of their range, to RGB: 3 x 3, column by column, for Y, U and V.
/// The values of full range stand for 0 to 1 each. Null for any other number.
ZV_API const float* yuvToRgbMatrix(ColorConversion conversion);

/// What takes (R, G, B, 1) to (Y, U, V, 1), all 0 to 1: 4 x 4, column by column, the offsets in the last one.
/// Null for any other number.
ZV_API const float* rgbToYuvMatrix(ColorConversion conversion);

/// Sends rgbToYuvMatrix() to "u_rgbToYuv", unless it is there already, and leaves the program in use. Does
/// nothing without a program and for any other number.
ZV_API void sendRgbToYuv(Program* program, ColorConversion conversion);

}  // namespace zv
