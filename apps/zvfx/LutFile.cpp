#include "zvfx/LutFile.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>

namespace zvfx {

namespace {

/// Where a colour lies in a table with `n` levels a channel; the picture has n x sqrt(n) pixels a side.
struct Layout {
    int levels;
    int side;
    bool hald;

    std::size_t pixel(int red, int green, int blue) const {
        const int tiles = side / levels;
        const int x = hald ? red + levels * (green % tiles) : red + levels * (blue % tiles);
        const int y = hald ? green / tiles + blue * levels / tiles : green + levels * (blue / tiles);
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(side) + static_cast<std::size_t>(x);
    }
};

/// How much neighbours along green and blue differ. Whatever a look does to colours, it does similar things
/// to similar ones, so the layout that a table was made in is the smooth one.
std::uint64_t roughness(const Picture& picture, const Layout& layout) {
    const auto channels = static_cast<std::size_t>(picture.channels);
    std::uint64_t sum = 0;
    const auto add = [&](std::size_t a, std::size_t b) {
        for (std::size_t c = 0; c < 3; ++c) {
            sum += static_cast<std::uint64_t>(
                std::abs(picture.pixels[a * channels + c] - picture.pixels[b * channels + c]));
        }
    };
    for (int blue = 0; blue < layout.levels; ++blue) {
        for (int green = 0; green < layout.levels; ++green) {
            for (int red = 0; red < layout.levels; ++red) {
                const std::size_t here = layout.pixel(red, green, blue);
                if (green + 1 < layout.levels) {
                    add(here, layout.pixel(red, green + 1, blue));
                }
                if (blue + 1 < layout.levels) {
                    add(here, layout.pixel(red, green, blue + 1));
                }
            }
        }
    }
    return sum;
}

}  // namespace

std::string findLut(const std::string& fileOrLook, const std::string& resources, std::string& path) {
    std::error_code error;
    const std::filesystem::path given = std::filesystem::u8path(fileOrLook);
    if (std::filesystem::exists(given, error)) {
        path = std::filesystem::absolute(given, error).u8string();
        return {};
    }
    if (!given.has_parent_path() && !given.has_extension()) {
        const std::filesystem::path look =
            std::filesystem::u8path(resources) / "zv_res" / "lookups" / (fileOrLook + "-512.png");
        if (std::filesystem::exists(look, error)) {
            path = std::filesystem::absolute(look, error).u8string();
            return {};
        }
        return fileOrLook + ": no such file, and no look of that name";
    }
    return fileOrLook + ": no such file";
}

bool looksLikeHald(const Picture& picture) {
    const int levels = picture.width == 512 ? 64 : 16;
    // Noise is as rough either way; the margin leaves it to be the table that it is given as.
    return 2 * roughness(picture, {levels, picture.width, true}) <
           roughness(picture, {levels, picture.width, false});
}

std::string checkLutFile(const std::string& path) {
    Picture picture;
    if (std::string wrong = readPicture(path, picture); !wrong.empty()) {
        return wrong;
    }
    if (picture.width != picture.height || (picture.width != 512 && picture.width != 64)) {
        return path + ": has " + std::to_string(picture.width) + " x " + std::to_string(picture.height) +
               " pixels; a colour table has 512 x 512 or 64 x 64";
    }
    if (looksLikeHald(picture)) {
        return path + ": is a HALD image; a colour table has tiles side by side, one for each level of blue";
    }
    return {};
}

}  // namespace zvfx
