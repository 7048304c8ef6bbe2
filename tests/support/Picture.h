#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/TVec.h"

namespace zv::test {

using Pixel = std::array<std::uint8_t, 4>;  ///< red, green, blue, alpha

/// An RGBA picture of 8 bits a channel, rows tightly packed. Pictures from files have their top row first;
/// pictures read from GL have GL's first row (the bottom one) first: see flippedY().
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgba;

    Picture() = default;
    Picture(int pictureWidth, int pictureHeight, Pixel fill = {0, 0, 0, 0});

    /// A picture whose pixels come from `colour(x, y)`.
    template <class Colour>
    static Picture make(int width, int height, Colour&& colour) {
        Picture picture(width, height);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                picture.set(x, y, colour(x, y));
            }
        }
        return picture;
    }
    /// Every pixel different from its neighbours in every channel, deterministic; `alpha` opaque unless told.
    static Picture noise(int width, int height, std::uint32_t seed = 1, bool opaque = true);
    /// Reads a PNG of any kind as RGBA; fails the test and answers an empty picture when it cannot.
    static Picture load(const std::string& path);
    /// Reads the bound (read) frame buffer.
    static Picture readFrameBuffer(int width, int height, int x = 0, int y = 0);
    /// Reads a texture's level 0 through a frame buffer of its own; the bound frame buffer is put back.
    static Picture readTexture(unsigned int name, int width, int height, unsigned int target = 0x0DE1);

    bool empty() const { return rgba.empty(); }
    Pixel at(int x, int y) const;
    void set(int x, int y, Pixel pixel);
    /// Between the pixels, linear, the border repeated; whole numbers are pixel centres.
    std::array<double, 4> between(double x, double y) const;
    Picture flippedY() const;
    Picture cropped(int x, int y, int cropWidth, int cropHeight) const;
    /// The pixels without alpha, rows tight: what an RGB texture takes.
    std::vector<std::uint8_t> rgb() const;
    /// Writes a PNG (RGBA); answers false when it cannot.
    bool save(const std::string& path) const;

    bool operator==(const Picture& other) const {
        return width == other.width && height == other.height && rgba == other.rgba;
    }
    bool operator!=(const Picture& other) const { return !(*this == other); }

private:
    std::size_t offset(int x, int y) const;
};

inline Size16 sizeOf(const Picture& picture) {
    return {static_cast<unsigned short>(picture.width), static_cast<unsigned short>(picture.height)};
}

}  // namespace zv::test
