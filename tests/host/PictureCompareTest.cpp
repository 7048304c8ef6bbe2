#include "support/PictureCompare.h"

#include <GL/glew.h>
#include <gtest/gtest-spi.h>

#include <filesystem>

#include "support/GLTest.h"
#include "support/TempDir.h"

namespace zv::test {

TEST(PictureCompare, MeasuresTheLargestStepItsPlaceAndTheMean) {
    const Picture expected(4, 2, {10, 20, 30, 255});
    Picture actual = expected;
    actual.set(3, 1, {10, 17, 30, 255});
    actual.set(0, 0, {11, 20, 30, 255});
    const PictureDifference difference = comparePictures(actual, expected);
    EXPECT_TRUE(difference.sameSize);
    EXPECT_EQ(difference.maxStep, 3);
    EXPECT_EQ(difference.x, 3);
    EXPECT_EQ(difference.y, 1);
    EXPECT_DOUBLE_EQ(difference.meanStep, 4.0 / 32);
}

// One row a way in which two pictures can differ; each must fail a comparison that has no tolerance.
struct DifferenceCase {
    const char* name;
    Picture actual;
    const char* message;
};

void PrintTo(const DifferenceCase& difference, std::ostream* stream) {
    *stream << difference.name;
}

class PictureDifferenceTest : public ::testing::TestWithParam<DifferenceCase> {};

TEST_P(PictureDifferenceTest, IsNoticed) {
    static Picture expected, actual;
    expected = Picture(3, 2, {10, 20, 30, 255});
    actual = GetParam().actual;
    EXPECT_NONFATAL_FAILURE(expectNear(actual, expected, 0, 0, "noticed"), GetParam().message);
}

Picture withPixel(Pixel pixel) {
    Picture picture(3, 2, {10, 20, 30, 255});
    picture.set(2, 1, pixel);
    return picture;
}

INSTANTIATE_TEST_SUITE_P(
    , PictureDifferenceTest,
    ::testing::Values(DifferenceCase{"ColourAbove", withPixel({10, 21, 30, 255}), "largest step 1"},
                      DifferenceCase{"ColourBelow", withPixel({10, 20, 0, 255}), "largest step 30"},
                      DifferenceCase{"Alpha", withPixel({10, 20, 30, 254}), "at (2, 1) 10 20 30 254"},
                      DifferenceCase{"Width", Picture(2, 2, {10, 20, 30, 255}), "2 x 2 instead of 3 x 2"},
                      DifferenceCase{"Height", Picture(3, 3, {10, 20, 30, 255}), "3 x 3 instead of 3 x 2"},
                      DifferenceCase{"Nothing", Picture(), "nothing to compare"}),
    [](const auto& row) { return row.param.name; });

TEST(PictureCompare, TolerancesAreInclusiveAndBothHold) {
    const Picture expected(2, 1, {100, 100, 100, 255});
    Picture actual = expected;
    actual.set(1, 0, {102, 100, 100, 255});
    EXPECT_TRUE(expectNear(actual, expected, 2, 0.25, "within"));
    static Picture wanted, got;
    wanted = expected;
    got = actual;
    EXPECT_NONFATAL_FAILURE(expectNear(got, wanted, 1, 0.25, "step"), "largest step 2 (1 allowed)");
    EXPECT_NONFATAL_FAILURE(expectNear(got, wanted, 2, 0.125, "mean"), "mean 0.25 (0.125 allowed)");
}

TEST(PictureCompare, AFailureLeavesThreePicturesToLookAt) {
    static Picture expected, actual;
    expected = Picture::noise(5, 4, 1);
    actual = expected;
    actual.set(
        1, 2,
        {static_cast<std::uint8_t>(actual.at(1, 2)[0] ^ 0x40), actual.at(1, 2)[1], actual.at(1, 2)[2], 255});
    EXPECT_NONFATAL_FAILURE(expectSame(actual, expected, "evidence/of it"), "evidence_of_it-difference.png");
    const std::string base = std::string(ZV_TEST_OUT_DIR) + "/evidence_of_it";
    EXPECT_EQ(Picture::load(base + "-actual.png"), actual);
    EXPECT_EQ(Picture::load(base + "-expected.png"), expected);
    const Picture difference = Picture::load(base + "-difference.png");
    EXPECT_EQ(difference.at(1, 2), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(difference.at(0, 0), (Pixel{0, 0, 0, 255}));
}

TEST(PictureTest, PngKeepsEveryPixelAlphaIncluded) {
    const TempDir folder;
    const Picture picture = Picture::noise(7, 3, 5, false);
    ASSERT_TRUE(picture.save(folder.file("a.png")));
    EXPECT_EQ(Picture::load(folder.file("a.png")), picture);
    EXPECT_EQ(picture.flippedY().at(2, 0), picture.at(2, 2));
    EXPECT_EQ(picture.cropped(2, 1, 3, 2).at(1, 1), picture.at(3, 2));
    EXPECT_EQ(picture.rgb().size(), 7u * 3u * 3u);
    static std::string missing;
    missing = folder.file("missing.png");
    EXPECT_NONFATAL_FAILURE(Picture::load(missing), "cannot read");
}

using PictureReadBack = GLTest;

TEST_F(PictureReadBack, ReadsATexturesRowsInOrderAndKeepsTheBoundFrameBuffer) {
    const Picture picture = Picture::noise(5, 3, 9, false);
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 5, 3, 0, GL_RGBA, GL_UNSIGNED_BYTE, picture.rgba.data());
    EXPECT_TRUE(expectSame(Picture::readTexture(texture, 5, 3), picture, "read back"));
    GLint bound = -1;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
    EXPECT_EQ(bound, 0);
    glDeleteTextures(1, &texture);
}

TEST(TempDirTest, IsEmptyAtFirstAndGoneAtTheEnd) {
    std::string path;
    {
        const TempDir folder;
        path = folder.path();
        EXPECT_TRUE(folder.entries().empty());
        const std::string file = folder.write("sub/b.bin", std::string_view("a\0b", 3));
        EXPECT_EQ(readFile(file), std::string("a\0b", 3));
        EXPECT_EQ(folder.entries(), std::vector<std::string>{"sub"});
        const TempDir other;
        EXPECT_NE(other.path(), path);
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

}  // namespace zv::test
