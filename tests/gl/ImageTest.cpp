#include "gl/Image.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include "core/FileUtil.h"
#include "gl/PictureFiles.h"
#include "support/Picture.h"
#include "support/TempDir.h"

namespace zv::test {

namespace {

Bytes bytesOf(const Image& image) {
    return Bytes(image.getData().get(0), image.getData().get(0) + image.getData().size());
}

/// What a call printed to standard output.
template <class Call>
std::string printedBy(Call&& call) {
    std::fflush(stdout);
    ::testing::internal::CaptureStdout();
    call();
    std::fflush(stdout);
    return ::testing::internal::GetCapturedStdout();
}

struct PngCase {
    const char* name;
    PngContent content;
    PxFormat format;
    Bytes decoded;
};

std::vector<PngCase> pngCases() {
    const Bytes colours = {10, 20, 30, 200, 210, 220}, six = {1, 2, 3, 4, 5, 6};
    return {{"Rgb", {1, 2, 8, 2, six}, PXFORMAT_RGB888, six},
            {"Rgba", {1, 2, 8, 6, {1, 2, 3, 4, 5, 6, 7, 0}}, PXFORMAT_RGBA8888, {1, 2, 3, 4, 5, 6, 7, 0}},
            {"Palette1Bit", {2, 1, 1, 3, {0x80}, colours}, PXFORMAT_RGB888, {200, 210, 220, 10, 20, 30}},
            {"PaletteWithTransparency",
             {2, 1, 8, 3, {0, 1}, colours, {77}},
             PXFORMAT_RGBA8888,
             {10, 20, 30, 77, 200, 210, 220, 255}},
            {"Rgb16Bit", {1, 1, 16, 2, {1, 0xFF, 2, 0, 3, 0x80}}, PXFORMAT_RGB888, {1, 2, 3}},
            {"Grey2Bit", {4, 1, 2, 0, {0x1B}}, PXFORMAT_GRAY8, {0, 85, 170, 255}},
            {"GreyAndMask", {2, 1, 8, 0, {9, 10}, {}, {}, 10}, PXFORMAT_GRAY_ALPHA88, {9, 255, 10, 0}},
            {"GreyAlpha", {1, 1, 8, 4, {50, 60}}, PXFORMAT_GRAY_ALPHA88, {50, 60}},
            {"Interlaced", {3, 2, 8, 0, six, {}, {}, -1, true}, PXFORMAT_GRAY8, six}};
}

class PngImageTest : public ::testing::TestWithParam<PngCase> {};

TEST_P(PngImageTest, DecodesTo8BitRowsTopFirst) {
    const TempDir dir;
    const PngContent& content = GetParam().content;
    Image image;
    ASSERT_TRUE(image.initWithFile(dir.write("picture.png", pngFile(content))));
    EXPECT_EQ(image.getPixelFormat(), GetParam().format);
    EXPECT_TRUE(image.getSize().x == content.width && image.getSize().y == content.height);
    EXPECT_EQ(bytesOf(image), GetParam().decoded);
}

INSTANTIATE_TEST_SUITE_P(Kinds, PngImageTest, ::testing::ValuesIn(pngCases()),
                         [](const auto& row) { return row.param.name; });

TEST(Image, DamagedPngAnswersFalseAndPrintsNothing) {
    const TempDir dir;
    const Bytes pixels = Picture::noise(64, 64).rgb();
    const Bytes whole = pngFile({64, 64, 8, 2, pixels});
    Bytes wrongSum = whole;
    wrongSum[wrongSum.size() / 2] ^= 0x10;
    std::vector<Bytes> damaged = {wrongSum, {'G', 'I', 'F', '8', '9', 'a', 1, 0, 1}};
    for (const std::size_t length : {std::size_t{0}, std::size_t{7}, std::size_t{8}, std::size_t{20},
                                     whole.size() / 2, whole.size() - 6})
        damaged.emplace_back(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
    Image image;
    ::testing::internal::CaptureStderr();
    const std::string printed = printedBy([&] {
        for (const Bytes& bytes : damaged)
            EXPECT_FALSE(image.initWithFile(dir.write("damaged.png", bytes))) << bytes.size() << " bytes";
        EXPECT_FALSE(image.initWithFile(dir.file("missing.png")));
    });
    EXPECT_EQ(printed + ::testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(image.initWithFile(dir.write("whole.png", whole))) << "the object is usable afterwards";
    EXPECT_EQ(bytesOf(image), pixels);
}

TEST(Image, OverlargePngAnswersFalse) {
    const TempDir dir;
    Image image;
    const Bytes row(65536 / 8);
    EXPECT_FALSE(image.initWithFile(dir.write("wide.png", pngFile({65536, 1, 1, 0, row}))));
    EXPECT_FALSE(image.initWithFile(dir.write("high.png", pngFile({1, 65536, 8, 0, Bytes(65536)}))));
    EXPECT_TRUE(image.initWithFile(dir.write("widest.png", pngFile({65535, 1, 1, 0, row}))));
    const std::uint64_t before = image.getImageSize();
    // 36 MB of bits in the file, 289 MB decoded: valid, and above what a picture may hold.
    EXPECT_FALSE(image.initWithFile(
        dir.write("heavy.png", pngFile({17000, 17000, 1, 0, Bytes(std::size_t{17000} / 8 * 17000)}))));
    EXPECT_EQ(image.getImageSize(), before) << "nothing is allocated for a refused picture";
}

TEST(Image, NameAloneChoosesTheDecoder) {
    const TempDir dir;
    const Bytes png = pngFile({1, 1, 8, 2, {1, 2, 3}});
    Image image;
    for (const char* name : {"a.png", "a.PNG", "a.jpg", "a.JPG"})
        EXPECT_TRUE(image.initWithFile(dir.write(name, png))) << name;
    EXPECT_FALSE(image.initWithFile(dir.write("real.jpg", Bytes{0xFF, 0xD8, 0xFF, 0xE0, 0, 16, 'J', 'F'})));
    EXPECT_TRUE(image.isValid());
    for (const char* name : {"a.Png", "a.jpeg", "a.BMP", "apng"}) {
        EXPECT_FALSE(image.initWithFile(dir.write(name, png))) << name;
        EXPECT_FALSE(image.isValid()) << "an unknown name empties the data";
    }
    EXPECT_THROW(image.initWithFile("abc"), std::out_of_range);
}

TEST(Image, FilesBelowARelativeResourceRootAreReadThroughTheVirtualSlot) {
    struct Spy : Image {
        bool initWithPng(const std::string& fullPath) override { return Image::initWithPng(seen = fullPath); }
        std::string seen;
    } image;
    const TempDir dir;
    dir.write("res/zv_res/a.JPG", pngFile({1, 1, 8, 2, {1, 2, 3}}));
    dir.write("res/zv_res/a.bmp", bmpFile({1, 1, {1, 2, 3}}));
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(dir.path());
    FileUtil::getInstance()->setZvRoot("res");
    EXPECT_TRUE(image.initWithFile("zv_res/a.JPG") && image.initWithFile("zv_res/a.bmp"));
    EXPECT_EQ(image.seen, "res/zv_res/a.JPG");
    FileUtil::getInstance()->setZvRoot(ZV_TEST_RES_DIR);
    std::filesystem::current_path(before);
}

TEST(Image, BmpKeepsItsRowsAndTurnsBlueGreenRedAround) {
    const TempDir dir;
    Image image;
    // No image size: width x height x 3 bytes are taken and no more.
    ASSERT_TRUE(image.initWithFile(dir.write("tight.bmp", bmpFile({1, 2, {1, 2, 3, 4, 5, 6, 99, 99}}))));
    EXPECT_EQ(bytesOf(image), (Bytes{3, 2, 1, 6, 5, 4}));
    EXPECT_TRUE(image.getSize() == Size16(1, 2) && image.getPixelFormat() == PXFORMAT_RGB888);
    // With one: padded rows stay padded, and the padding does not shift the colours of the next row.
    const Bytes padded = {1, 2, 3, 4, 5, 6, 77, 77, 11, 12, 13, 14, 15, 16, 88, 88};
    ASSERT_TRUE(image.initWithFile(dir.write("padded.bmp", bmpFile({2, 2, padded, 16}))));
    EXPECT_EQ(bytesOf(image), (Bytes{3, 2, 1, 6, 5, 4, 77, 77, 13, 12, 11, 16, 15, 14, 88, 88}));
}

TEST(Image, UnusableBmpAnswersFalse) {
    Bytes wrongMagic = bmpFile({1, 1, {1, 2, 3}}), header = bmpFile({1, 1, {}});
    wrongMagic[1] = 'N';
    header.pop_back();
    const Bytes wide(std::size_t{65536} * 3);
    const std::pair<const char*, Bytes> cases[] = {
        {"32 bits a pixel", bmpFile({1, 1, {1, 2, 3, 4}, 0, 32})},
        {"compressed", bmpFile({1, 1, {1, 2, 3}, 0, 24, 1})},
        {"wrong magic", wrongMagic},
        {"short header", header},
        {"empty", {}},
        {"cut short", bmpFile({2, 2, Bytes(11)})},
        {"cut short of its image size", bmpFile({2, 2, Bytes(15), 16})},
        {"image size below need", bmpFile({2, 2, Bytes(12), 11})},
        {"image size of 4 GiB", bmpFile({2, 2, Bytes(12), 0xFFFFFFFF})},
        {"16385 x 16385", bmpFile({16385, 16385, Bytes(12)})},
        {"too wide", bmpFile({65536, 1, wide})},
        {"too wide by a sign", bmpFile({-1, 1, wide})},
        {"top row first", bmpFile({1, -1, Bytes(3)})},
        {"no width", bmpFile({0, 1, Bytes(3)})},
        {"no height", bmpFile({1, 0, Bytes(3)})},
    };
    const TempDir dir;
    int index = 0;
    for (const auto& [name, file] : cases) {
        Image image;
        bool answer = true;
        const std::string path = dir.write("bad.bmp", file);
        // The first five are no such file at all, and are told so.
        EXPECT_EQ(printedBy([&] { answer = image.initWithFile(path); }),
                  index++ < 5 ? "Not a correct BMP file\n" : "")
            << name;
        EXPECT_FALSE(answer || image.isValid()) << name;
    }
}

TEST(Image, MissingBmpPrintsAndWaitsForOneCharacter) {
    const TempDir dir;
    const std::string missing = dir.file("missing.bmp");
    ASSERT_NE(std::freopen(dir.write("keys", "xy").c_str(), "rb", stdin), nullptr);
    Image image;
    EXPECT_EQ(printedBy([&] { EXPECT_FALSE(image.initWithFile(missing)); }),
              missing + " could not be opened. !\n");
    EXPECT_EQ(std::getchar(), 'y') << "exactly one character was taken";
}

}  // namespace

}  // namespace zv::test
