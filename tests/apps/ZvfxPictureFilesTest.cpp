// What goes into zvfx and comes out of it, pixel by pixel: kinds of files, sizes, effects.
#include <gtest/gtest.h>
#define STBI_WRITE_NO_STDIO
#include <stb_image_write.h>

#include <algorithm>
#include <cstdlib>

#include "apps/RunProgram.h"
#include "gl/PictureFiles.h"
#include "support/PictureCompare.h"

namespace zv::test {

namespace {

/// Whether a PNG file keeps alpha: its colour type is 6, and 2 without.
bool pngHasAlpha(const std::string& path) {
    return readFile(path).at(25) == 6;
}

/// A BMP file of 24 bits a pixel, rows padded to four bytes.
Bytes bmp(const Picture& picture, bool topDown) {
    Bytes rows;
    for (int i = 0; i < picture.height; ++i) {
        for (int x = 0; x < picture.width; ++x) {
            const Pixel pixel = picture.at(x, topDown ? i : picture.height - 1 - i);
            rows.insert(rows.end(), {pixel[2], pixel[1], pixel[0]});
        }
        rows.resize((rows.size() + 3) / 4 * 4);
    }
    return bmpFile({picture.width, topDown ? -picture.height : picture.height, rows});
}

}  // namespace

struct SameCase {
    const char* name;
    int width;
    int height;
    bool alpha;
    std::vector<std::string> options;
};

class ZvfxSamePixelsPicture : public ::testing::TestWithParam<SameCase> {};

TEST_P(ZvfxSamePixelsPicture, ComeOutAsTheyWentIn) {
    const SameCase& row = GetParam();
    const Picture picture = Picture::noise(row.width, row.height, 7, !row.alpha);
    const ZvfxFolder folder(picture);
    if (!row.alpha) {
        folder.write("in.png", pngFile({static_cast<std::uint32_t>(row.width),
                                        static_cast<std::uint32_t>(row.height), 8, 2, picture.rgb()}));
    }
    expectSame(folder.result(row.options), picture, std::string("zvfx-same-") + row.name);
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

TEST(ZvfxFilesPicture, BitmapsStandUprightWhicheverRowComesFirst) {
    for (const bool topDown : {false, true}) {
        const ZvfxFolder folder;
        const Picture picture = Picture::noise(5, 3, 3);
        folder.write("in.BMP", bmp(picture, topDown));
        expectSame(folder.result({}, "in.BMP"), picture, topDown ? "zvfx-bmp-top-down" : "zvfx-bmp");
    }
}

TEST(ZvfxFilesPicture, OtherKindsOfPngAreExpandedAlphaIsFoundAnd16BitsAreRounded) {
    const struct {
        const char* name;
        PngContent content;
        std::vector<Pixel> expected;
    } rows[] = {{"grey", {2, 1, 8, 0, {0, 200}}, {{0, 0, 0, 255}, {200, 200, 200, 255}}},
                {"grey-alpha", {2, 1, 8, 4, {0, 10, 254, 255}}, {{0, 0, 0, 10}, {254, 254, 254, 255}}},
                {"palette",
                 {3, 1, 8, 3, {2, 1, 0}, {255, 0, 0, 0, 128, 64, 1, 2, 3}, {255, 255, 90}},
                 {{1, 2, 3, 90}, {0, 128, 64, 255}, {255, 0, 0, 255}}},
                // 128 / 257 lies below one half and 129 / 257 above it; cutting the low byte off would give
                // 0, 0, 0 and 254.
                {"16-bit",
                 {2, 1, 16, 2, {0, 128, 0, 129, 0, 255, 0xFE, 0x80, 0xFF, 0x7F, 0xFF, 0xFF}},
                 {{0, 1, 1, 255}, {254, 255, 255, 255}}}};
    for (const auto& row : rows) {
        const ZvfxFolder folder;
        folder.write("in.png", pngFile(row.content));
        const auto width = static_cast<int>(row.content.width);
        const Picture expected =
            Picture::make(width, 1, [&](int x, int) { return row.expected[static_cast<std::size_t>(x)]; });
        expectSame(folder.result({}), expected, std::string("zvfx-") + row.name);
        EXPECT_EQ(pngHasAlpha(folder.file("out.png")), row.expected[0][3] < 255) << row.name;
    }
}

TEST(ZvfxFilesPicture, JpegIsDecodedUpright) {
    const ZvfxFolder folder;
    const Picture picture = Picture::make(16, 16, [](int, int y) {
        return y < 8 ? Pixel{255, 0, 0, 255} : Pixel{0, 0, 255, 255};
    });
    std::string jpeg;
    const auto append = [](void* to, void* data, int size) {
        static_cast<std::string*>(to)->append(static_cast<const char*>(data), static_cast<std::size_t>(size));
    };
    ASSERT_NE(stbi_write_jpg_to_func(append, &jpeg, 16, 16, 3, picture.rgb().data(), 95), 0);
    // A JPEG stores rounded YCbCr: a pure colour comes back within a few steps.
    folder.write("in.jpg", jpeg);
    expectNear(folder.result({}, "in.jpg"), picture, 4, 2, "zvfx-jpeg");
}

TEST(ZvfxFilesPicture, SizeScalesTheWholePicture) {
    const auto quarter = [](int x, int y, int middleX, int middleY) {
        return Pixel{static_cast<std::uint8_t>(x < middleX ? 40 : 200),
                     static_cast<std::uint8_t>(y < middleY ? 60 : 180), 90, 255};
    };
    const Picture picture = Picture::make(20, 10, [&](int x, int y) { return quarter(x, y, 10, 5); });
    const ZvfxFolder folder(picture);
    for (const char* size : {"61x31", "8x4"}) {
        const Picture out = folder.result({"--size", size});
        ASSERT_EQ(std::to_string(out.width) + "x" + std::to_string(out.height), size);
        for (const int x : {0, out.width - 1}) {
            for (const int y : {0, out.height - 1}) {
                EXPECT_EQ(out.at(x, y), quarter(x, y, out.width / 2, out.height / 2))
                    << size << " " << x << " " << y;
            }
        }
    }
}

TEST(ZvfxFilesPicture, HsvTakesItsFactorsInThisOrderAndKeepsAlpha) {
    const Picture picture = Picture::noise(31, 23, 11, false);
    const ZvfxFolder folder(picture);
    const Picture expected = Picture::make(31, 23, [&](int x, int y) {
        const Pixel p = picture.at(x, y);
        const auto half = static_cast<std::uint8_t>((std::max({p[0], p[1], p[2]}) + 1) / 2);
        return Pixel{half, half, half, p[3]};
    });
    for (const char* gl : {"core", "compat"}) {
        const Picture out = folder.result({"--hsv", "1,0,0.5", "--gl", gl});
        // Both stages round to 8 bits; the conversion there and back costs at most one step more.
        expectNear(out, expected, 1, 0.5, std::string("zvfx-hsv-") + gl);
    }
}

}  // namespace zv::test
