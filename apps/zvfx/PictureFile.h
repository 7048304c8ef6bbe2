#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zvfx {

/// A decoded picture, 8 bits a channel, RGB or RGBA, rows tightly packed, the top one first.
struct Picture {
    int width = 0;
    int height = 0;
    int channels = 3;  ///< 3, or 4 with alpha
    std::vector<std::uint8_t> pixels;
};

/// A picture may hold this many bytes when it is decoded: 256 MiB.
constexpr std::uint64_t kMostPictureBytes = std::uint64_t{256} << 20;

/// Reads a PNG, BMP or JPEG file. Grey and palette pictures become RGB, transparency of any kind becomes
/// alpha, 16-bit channels are rounded to 8.
/// @return what went wrong, or nothing
std::string readPicture(const std::string& path, Picture& picture);

/// Encodes pixels as a PNG file. `pixels` has its bottom row first.
/// @return false when memory runs out
bool encodePng(const Picture& picture, std::vector<std::uint8_t>& png);

}  // namespace zvfx
