#pragma once

#include <cstdint>

namespace zv {

/// Layout of a pixel. The numbers are fixed.
enum PxFormat : std::int32_t {
    PXFORMAT_NONE = 0,
    PXFORMAT_BGRA8888 = 1,
    PXFORMAT_RGBA8888 = 2,
    PXFORMAT_RGB888 = 3,
    PXFORMAT_RGB565 = 4,
    PXFORMAT_A8 = 5,
    PXFORMAT_GRAY8 = 6,         ///< images only: textures refuse it
    PXFORMAT_GRAY_ALPHA88 = 7,  ///< images only: textures refuse it
    PXFORMAT_R8 = 8,
    PXFORMAT_RG88 = 9,
    PXFORMAT_RGBA4444 = 10,
    PXFORMAT_RGB5A1 = 11,
    PXFORMAT_S3TC_DXT1 = 17,
    PXFORMAT_S3TC_DXT3 = 18,
    PXFORMAT_S3TC_DXT5 = 19,
    PXFORMAT_ATC_RGB = 20,
    PXFORMAT_ATC_EXPLICIT_ALPHA = 21,
    PXFORMAT_ATC_INTERPOLATED_ALPHA = 22
};

/// What GL is told about a pixel format.
struct PxFormatInfo {
    unsigned int internalFormat;
    unsigned int format;  ///< all bits set for compressed formats, which do not use it
    unsigned int type;    ///< all bits set for compressed formats, which do not use it
    int bpp;              ///< bits a pixel
    bool compressed;
    bool alpha;  ///< the 8-bit alpha format deliberately says no
};

}  // namespace zv
