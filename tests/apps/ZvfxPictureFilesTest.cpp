// What goes into zvfx and comes out of it, pixel by pixel: kinds of files, sizes, effects.
#include <gtest/gtest.h>
#include <png.h>
#define STBI_WRITE_NO_STDIO
#include <stb_image_write.h>

#include <algorithm>
#include <cstdlib>

#include "apps/RunProgram.h"
#include "support/PictureCompare.h"
#include "support/TempDir.h"

namespace zv::test {

namespace {

/// Whether a PNG file keeps alpha: its colour type is 6, and 2 without.
bool pngHasAlpha(const std::string& path) {
    return readFile(path).at(25) == 6;
}

/// Runs zvfx on a file of the folder and reads what came out.
Picture process(const TempDir& folder, const std::string& input, std::vector<std::string> options = {}) {
    options.insert(options.begin(), {input, "-o", folder.file("out.png")});
    const ProgramResult result = runZvfx(options);
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_EQ(result.output + result.error, "");
    return result.status == 0 ? Picture::load(folder.file("out.png")) : Picture();
}

/// Writes a PNG of one of libpng's simple formats. `colours` is the palette of a palette format.
std::string writePng(const TempDir& folder, unsigned int format, int width, int height, const void* samples,
                     const std::vector<std::uint8_t>& colours = {}) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = format;
    image.colormap_entries = static_cast<png_uint_32>(
        colours.size() / PNG_IMAGE_SAMPLE_CHANNELS(format & ~PNG_FORMAT_FLAG_COLORMAP));
    const std::string path = folder.file("in.png");
    EXPECT_NE(png_image_write_to_file(&image, path.c_str(), 0, samples, 0, colours.data()), 0)
        << image.message;
    return path;
}

void append(std::string& bytes, std::uint32_t value, int count) {
    for (int i = 0; i < count; ++i) {
        bytes += static_cast<char>(value >> (8 * i));
    }
}

/// A BMP file of 24 bits a pixel, rows padded to four bytes.
std::string bmp(const Picture& picture, bool topDown) {
    const auto width = static_cast<std::uint32_t>(picture.width);
    const auto height = static_cast<std::uint32_t>(picture.height);
    std::string rows;
    for (int i = 0; i < picture.height; ++i) {
        const int y = topDown ? i : picture.height - 1 - i;
        for (int x = 0; x < picture.width; ++x) {
            const Pixel pixel = picture.at(x, y);
            for (const std::size_t channel : {2u, 1u, 0u}) {
                rows += static_cast<char>(pixel[channel]);
            }
        }
        rows.append((4 - rows.size() % 4) % 4, '\0');
    }
    std::string file = "BM";
    append(file, static_cast<std::uint32_t>(54 + rows.size()), 4);
    append(file, 0, 4);
    append(file, 54, 4);
    append(file, 40, 4);
    append(file, width, 4);
    append(file, topDown ? 0u - height : height, 4);
    append(file, 1, 2);
    append(file, 24, 2);
    for (int i = 0; i < 6; ++i) {
        append(file, 0, 4);
    }
    return file + rows;
}

}  // namespace

struct SameCase {
    const char* name;
    int width;
    int height;
    bool alpha;
    std::vector<std::string> options;
};

void PrintTo(const SameCase& row, std::ostream* stream) {
    *stream << row.name;
}

class ZvfxSamePixelsPicture : public ::testing::TestWithParam<SameCase> {};

TEST_P(ZvfxSamePixelsPicture, ComeOutAsTheyWentIn) {
    const SameCase& row = GetParam();
    const TempDir folder;
    const Picture picture = Picture::noise(row.width, row.height, 7, !row.alpha);
    std::string input = folder.file("in.png");
    if (row.alpha) {
        ASSERT_TRUE(picture.save(input));
    } else {
        input = writePng(folder, PNG_FORMAT_RGB, row.width, row.height, picture.rgb().data());
    }
    expectSame(process(folder, input, row.options), picture, std::string("zvfx-same-") + row.name);
    EXPECT_EQ(pngHasAlpha(folder.file("out.png")), row.alpha);
    EXPECT_EQ(folder.entries(), (std::vector<std::string>{"in.png", "out.png"}));
}

INSTANTIATE_TEST_SUITE_P(
    , ZvfxSamePixelsPicture,
    ::testing::Values(SameCase{"OnePixelRgb", 1, 1, false, {}}, SameCase{"OnePixelRgba", 1, 1, true, {}},
                      SameCase{"OddRgb", 7, 5, false, {}}, SameCase{"OddRgba", 5, 7, true, {}},
                      SameCase{"OneRow", 1027, 1, false, {}}, SameCase{"OneColumn", 1, 1027, true, {}},
                      SameCase{"LargeOdd", 641, 479, false, {}},
                      SameCase{"CompatibilityRgb", 33, 17, false, {"--gl", "compat"}},
                      SameCase{"CompatibilityRgba", 33, 17, true, {"--gl", "compat"}},
                      SameCase{"SizeOfTheInput", 33, 17, false, {"--size", "33x17"}},
                      SameCase{"LastOfThreeFrames", 9, 9, true, {"--frames", "3"}}),
    [](const auto& row) { return row.param.name; });

TEST(ZvfxFilesPicture, PortraitIsUnchanged) {
    const TempDir folder;
    const std::string portrait = std::string(ZV_TEST_DATA_DIR) + "/portrait.png";
    expectSame(process(folder, portrait), Picture::load(portrait), "zvfx-portrait");
}

TEST(ZvfxFilesPicture, BitmapsStandUprightWhicheverRowComesFirst) {
    for (const bool topDown : {false, true}) {
        const TempDir folder;
        const Picture picture = Picture::noise(5, 3, 3);
        const std::string input = folder.write("in.BMP", bmp(picture, topDown));
        expectSame(process(folder, input), picture, topDown ? "zvfx-bmp-top-down" : "zvfx-bmp");
    }
}

TEST(ZvfxFilesPicture, GreyAndPaletteAreExpandedAndAlphaIsFound) {
    const std::vector<std::uint8_t> grey = {0, 10, 128, 200, 254, 255};
    const auto greyAt = [&](int x, int y) { return grey[static_cast<std::size_t>(y * 3 + x)]; };
    {
        const TempDir folder;
        const std::string input = writePng(folder, PNG_FORMAT_GRAY, 3, 2, grey.data());
        expectSame(process(folder, input),
                   Picture::make(3, 2,
                                 [&](int x, int y) {
                                     return Pixel{greyAt(x, y), greyAt(x, y), greyAt(x, y), 255};
                                 }),
                   "zvfx-grey");
        EXPECT_FALSE(pngHasAlpha(folder.file("out.png")));
    }
    {
        const TempDir folder;
        const std::string input = writePng(folder, PNG_FORMAT_GA, 3, 1, grey.data());
        const Picture expected = Picture::make(3, 1, [&](int x, int) {
            const std::size_t at = static_cast<std::size_t>(x) * 2;
            return Pixel{grey[at], grey[at], grey[at], grey[at + 1]};
        });
        expectSame(process(folder, input), expected, "zvfx-grey-alpha");
    }
    const std::vector<std::uint8_t> indices = {0, 1, 2, 2, 1, 0};
    const std::vector<std::uint8_t> colours = {255, 0, 0, 255, 0, 128, 64, 255, 1, 2, 3, 90};
    const TempDir folder;
    const std::string input = writePng(folder, PNG_FORMAT_RGBA_COLORMAP, 6, 1, indices.data(), colours);
    const Picture expected = Picture::make(6, 1, [&](int x, int) {
        const std::size_t at = std::size_t{indices[static_cast<std::size_t>(x)]} * 4;
        return Pixel{colours[at], colours[at + 1], colours[at + 2], colours[at + 3]};
    });
    expectSame(process(folder, input), expected, "zvfx-palette");
    EXPECT_TRUE(pngHasAlpha(folder.file("out.png")));
}

TEST(ZvfxFilesPicture, SixteenBitChannelsAreRounded) {
    // 128 / 257 lies below one half and 129 / 257 above it; cutting the low byte off would give 0, 0, 0 and
    // 254.
    const std::vector<std::uint16_t> samples = {128, 129, 0x00FF, 0xFE80, 0xFF7F, 0xFFFF};
    const TempDir folder;
    const std::string input = writePng(folder, PNG_FORMAT_LINEAR_RGB, 2, 1, samples.data());
    const Picture expected = Picture::make(2, 1, [](int x, int) {
        return x == 0 ? Pixel{0, 1, 1, 255} : Pixel{254, 255, 255, 255};
    });
    expectSame(process(folder, input), expected, "zvfx-16-bit");
}

TEST(ZvfxFilesPicture, JpegIsDecodedUpright) {
    const TempDir folder;
    const Picture picture = Picture::make(16, 16, [](int, int y) {
        return y < 8 ? Pixel{255, 0, 0, 255} : Pixel{0, 0, 255, 255};
    });
    std::string jpeg;
    const auto append = [](void* to, void* data, int size) {
        static_cast<std::string*>(to)->append(static_cast<const char*>(data), static_cast<std::size_t>(size));
    };
    ASSERT_NE(stbi_write_jpg_to_func(append, &jpeg, 16, 16, 3, picture.rgb().data(), 95), 0);
    // A JPEG stores rounded YCbCr: a pure colour comes back within a few steps.
    expectNear(process(folder, folder.write("in.jpg", jpeg)), picture, 4, 2, "zvfx-jpeg");
}

TEST(ZvfxFilesPicture, SizeScalesTheWholePicture) {
    const TempDir folder;
    const auto quarter = [](int x, int y, int middleX, int middleY) {
        return Pixel{static_cast<std::uint8_t>(x < middleX ? 40 : 200),
                     static_cast<std::uint8_t>(y < middleY ? 60 : 180), 90, 255};
    };
    const Picture picture = Picture::make(20, 10, [&](int x, int y) { return quarter(x, y, 10, 5); });
    ASSERT_TRUE(picture.save(folder.file("in.png")));
    for (const char* size : {"61x31", "8x4"}) {
        const Picture out = process(folder, folder.file("in.png"), {"--size", size});
        ASSERT_EQ(std::to_string(out.width) + "x" + std::to_string(out.height), size);
        for (const int x : {0, out.width - 1}) {
            for (const int y : {0, out.height - 1}) {
                EXPECT_EQ(out.at(x, y), quarter(x, y, out.width / 2, out.height / 2))
                    << size << " " << x << " " << y;
            }
        }
    }
}

struct HsvCase {
    const char* name;
    const char* factors;
    /// What the factors make of a colour.
    Pixel (*expected)(Pixel);
};

void PrintTo(const HsvCase& row, std::ostream* stream) {
    *stream << row.name;
}

class ZvfxHsvPicture : public ::testing::TestWithParam<HsvCase> {};

TEST_P(ZvfxHsvPicture, ChangesColoursAndKeepsAlpha) {
    const HsvCase& row = GetParam();
    const TempDir folder;
    const Picture picture = Picture::noise(31, 23, 11, false);
    ASSERT_TRUE(picture.save(folder.file("in.png")));
    const Picture expected =
        Picture::make(31, 23, [&](int x, int y) { return row.expected(picture.at(x, y)); });
    for (const char* gl : {"core", "compat"}) {
        const Picture out = process(folder, folder.file("in.png"), {"--hsv", row.factors, "--gl", gl});
        // Both stages round to 8 bits; the conversion there and back costs at most one step more.
        expectNear(out, expected, 1, 0.5, std::string("zvfx-hsv-") + row.name + "-" + gl);
    }
}

INSTANTIATE_TEST_SUITE_P(, ZvfxHsvPicture,
                         ::testing::Values(HsvCase{"Identity", "1,1,1", [](Pixel p) { return p; }},
                                           HsvCase{
                                               "NoSaturationLeavesTheValue", "1,0,1",
                                               [](Pixel p) {
                                                   const std::uint8_t value = std::max({p[0], p[1], p[2]});
                                                   return Pixel{value, value, value, p[3]};
                                               }},
                                           HsvCase{"HalfTheValue", "1,1,0.5",
                                                   [](Pixel p) {
                                                       const auto half = [](std::uint8_t c) {
                                                           return static_cast<std::uint8_t>((c + 1) / 2);
                                                       };
                                                       return Pixel{half(p[0]), half(p[1]), half(p[2]), p[3]};
                                                   }},
                                           HsvCase{"Black", "1,1,0",
                                                   [](Pixel p) {
                                                       return Pixel{0, 0, 0, p[3]};
                                                   }}),
                         [](const auto& row) { return row.param.name; });

}  // namespace zv::test
