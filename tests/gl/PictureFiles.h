#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "gl/Image.h"

namespace zv::test {

using Bytes = std::vector<unsigned char>;

/// What to put into a PNG file. Rows are packed as PNG keeps them: tight, big-endian, top row first.
struct PngContent {
    std::uint32_t width = 1;
    std::uint32_t height = 1;
    int depth = 8;
    int colourType = 2;  ///< PNG's number: 0 grey, 2 RGB, 3 palette, 4 grey with alpha, 6 RGBA
    Bytes rows;
    Bytes palette = {};       ///< RGB triples
    Bytes transparency = {};  ///< alpha of the first palette entries
    int transparentGrey = -1;
    bool interlaced = false;
};

/// The bytes of a valid PNG file; empty when libpng refuses.
Bytes pngFile(const PngContent& content);

/// What to put into a BMP file: a header of 54 bytes, then `pixels` as they are.
struct BmpContent {
    std::int32_t width = 1;
    std::int32_t height = 1;
    Bytes pixels;
    std::uint32_t imageSize = 0;
    std::uint16_t bitsPerPixel = 24;
    std::uint32_t compression = 0;
};

Bytes bmpFile(const BmpContent& content);

/// Whether a decoded picture has all the bytes that its size and format promise; reads each.
inline bool keepsItsPromise(const Image& image) {
    const std::uint64_t pixels = std::uint64_t{image.getSize().x} * image.getSize().y;
    const std::uint64_t channels = image.getPixelFormat() == PXFORMAT_GRAY8          ? 1
                                   : image.getPixelFormat() == PXFORMAT_GRAY_ALPHA88 ? 2
                                   : image.getPixelFormat() == PXFORMAT_RGB888       ? 3
                                                                                     : 4;
    std::uint64_t sum = 0;
    for (std::uint64_t i = 0; i < image.getImageSize(); ++i) {
        sum += *image.getData().get(i);
    }
    return pixels > 0 && image.getImageSize() >= pixels * channels &&
           image.getImageSize() <= Image::MAX_IMAGE_BYTES && sum <= image.getImageSize() * 255;
}

/// Whether the engine's reader takes that file, which must keep its promise then.
bool decodes(const std::string& path);

}  // namespace zv::test
