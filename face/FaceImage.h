#pragma once

#include <cstddef>
#include <cstdint>

#include "core/TVec.h"
#include "face/FaceExport.h"

namespace zv {

/// A rectangle of the picture: pixels, origin top left, y down.
struct FaceArea {
    float left = 0.0F;
    float top = 0.0F;
    float right = 0.0F;
    float bottom = 0.0F;

    float width() const { return right - left; }
    float height() const { return bottom - top; }
};

/// A square of the picture that may be turned.
struct FaceRegion {
    Vec2f centre;          ///< pixels of the picture
    float side = 0.0F;     ///< pixels of the picture
    float angle = 0.0F;    ///< radians, clockwise as seen: 0 is upright
    FaceArea box() const;  ///< the upright rectangle around it
};

/// Pixels in memory that show an area of the picture. Does not own them.
struct FaceImage {
    const std::uint8_t* pixels = nullptr;  ///< the area's top left pixel
    int width = 0;                         ///< at least 1
    int height = 0;                        ///< at least 1
    int channels = 4;                      ///< 3 or 4: red, green, blue and what is not looked at
    std::ptrdiff_t rowBytes = 0;  ///< to the row below; negative where the bottom row is first in memory
    FaceArea area;                ///< what the pixels show
};

/// What lies beyond the image's border.
enum class FaceBorder {
    Black,    ///< zeros
    Repeated  ///< the nearest pixel of the border
};

/// Takes a square out of the image, as a network wants it: three planes (red, green, blue) of size x size
/// floats, each scale x value + offset. Bilinear; where the square is coarser than the image, each sample is
/// the mean of several.
/// @param out room for 3 x size x size floats
ZV_FACE_API void sampleRegion(const FaceImage& image, const FaceRegion& region, int size, FaceBorder border,
                              float scale, float offset, float* out);

}  // namespace zv
