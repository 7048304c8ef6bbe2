#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "fuzz/InputFile.h"
#include "gl/Image.h"

namespace zv::test {

/// Decodes the bytes as a file of that name and holds the reader to what it promises.
inline void decodeImage(const unsigned char* data, std::size_t size, const char* name) {
    // The reader tells about files that are none on standard output, by the million here.
    static const bool quiet = std::freopen("/dev/null", "w", stdout) != nullptr;
    InputFile::instance().setBytes(data, size);
    Image image;
    if (!quiet || !image.initWithFile(name)) {
        return;
    }
    const std::uint64_t pixels = std::uint64_t{image.getSize().x} * image.getSize().y;
    const std::uint64_t channels = image.getPixelFormat() == PXFORMAT_GRAY8          ? 1
                                   : image.getPixelFormat() == PXFORMAT_GRAY_ALPHA88 ? 2
                                   : image.getPixelFormat() == PXFORMAT_RGB888       ? 3
                                                                                     : 4;
    std::uint64_t sum = 0;
    for (std::uint64_t i = 0; i < image.getImageSize(); ++i) {
        sum += *image.getData().get(i);
    }
    if (pixels == 0 || image.getImageSize() < pixels * channels ||
        image.getImageSize() > Image::MAX_IMAGE_BYTES || sum > image.getImageSize() * 255) {
        std::abort();
    }
}

}  // namespace zv::test
