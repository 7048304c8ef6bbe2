#pragma once

#include <cmath>
#include <cstdio>

#include "BeautyTest.h"
#include "core/RefCreate.h"
#include "effects/ColorConversion.h"
#include "gl/ConfigGL.h"

namespace zv::test {

/// A conversion with the numbers of its standard.
struct Standard {
    const char* name;
    ColorConversion conversion;
    double kr, kb, black, lumaSpan, chromaSpan;
};

constexpr Standard kStandards[] = {{"601Video", COLOR_CONVERSION_601_VIDEO, 0.299, 0.114, 16, 219, 224},
                                   {"601Full", COLOR_CONVERSION_601_FULL, 0.299, 0.114, 0, 255, 255},
                                   {"709Video", COLOR_CONVERSION_709_VIDEO, 0.2126, 0.0722, 16, 219, 224}};

/// Y, U or V in steps of a byte, not rounded, of the mean of `extent` x `extent` pixels, cut to the picture.
inline double yuvOf(int channel, const Standard& to, const Picture& picture, int x, int y, int extent = 1) {
    double rgb[3] = {0, 0, 0};
    for (int i = 0; i < extent * extent; ++i) {
        const Pixel pixel = picture.at(std::min(x + i % extent, picture.width - 1),
                                       std::min(y + i / extent, picture.height - 1));
        for (std::size_t c = 0; c < 3; ++c)
            rgb[c] += pixel[c] / (255.0 * extent * extent);
    }
    const double luma = to.kr * rgb[0] + (1 - to.kr - to.kb) * rgb[1] + to.kb * rgb[2];
    const double weight = channel == 1 ? to.kb : to.kr;
    return channel == 0
               ? to.black + to.lumaSpan * luma
               : std::min(128 + to.chromaSpan * (rgb[channel == 1 ? 2 : 0] - luma) / (2 - 2 * weight), 255.0);
}

/// Largest and mean distance in steps of a byte.
struct YuvError {
    double largest = 0.0, sum = 0.0;
    int count = 0;

    void add(double actual, double exact) {
        largest = std::max(largest, std::abs(actual - exact));
        sum += std::abs(actual - exact);
        ++count;
    }
    void print(const char* what, const char* name, int width, int height) const {
        std::printf("[  figures ] %-4s %-14s %4d x %-4d largest %.3f mean %.3f\n", what, name, width, height,
                    largest, sum / count);
    }
};

/// A plane of one or two bytes a texel as YUVSprite asks for it.
inline unsigned int makePlane(int width, int height, int channels, const unsigned char* bytes) {
    const bool isNew = ConfigGL::getInstance()->getVersionGL() >= 300;
    const unsigned int formats[2][2] = {{GL_LUMINANCE, GL_LUMINANCE_ALPHA}, {GL_RED, GL_RG}};
    unsigned int name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    const unsigned int format = formats[isNew][channels - 1];
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<int>(format), width, height, 0, format, GL_UNSIGNED_BYTE,
                 bytes);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    return name;
}

}  // namespace zv::test
