#include "support/PictureCompare.h"

#include <gtest/gtest-spi.h>

namespace zv::test {

const Pixel kPlain{10, 20, 30, 255};

TEST(PictureCompareTest, EveryDifferenceIsNoticedAndTold) {
    struct Row {
        Picture actual;
        const char* message;
    };
    const auto withPixel = [](Pixel pixel) {
        Picture picture(3, 2, kPlain);
        picture.set(2, 1, pixel);
        return picture;
    };
    const Row rows[] = {{withPixel({10, 21, 30, 255}), "largest step 1"},
                        {withPixel({10, 20, 0, 255}), "largest step 30"},
                        {withPixel({10, 20, 30, 254}), "at (2, 1) 10 20 30 254"},
                        {Picture(2, 2, kPlain), "2 x 2 instead of 3 x 2"},
                        {Picture(3, 3, kPlain), "3 x 3 instead of 3 x 2"},
                        {Picture(), "nothing to compare"}};
    static Picture actual;
    for (const Row& row : rows) {
        actual = row.actual;
        EXPECT_NONFATAL_FAILURE(expectNear(actual, Picture(3, 2, kPlain), 0, 0, "noticed"), row.message);
    }
}

TEST(PictureCompareTest, TolerancesAreInclusiveAndBothHold) {
    static Picture wanted, got;
    wanted = got = Picture(2, 1, kPlain);
    got.set(1, 0, {12, 20, 30, 255});
    EXPECT_TRUE(expectNear(got, wanted, 2, 0.25, "within"));
    EXPECT_NONFATAL_FAILURE(expectNear(got, wanted, 1, 0.25, "step"), "largest step 2 (1 allowed)");
    EXPECT_NONFATAL_FAILURE(expectNear(got, wanted, 2, 0.125, "mean"), "mean 0.25 (0.125 allowed)");
}

TEST(PictureCompareTest, AFailureLeavesThreePicturesToLookAt) {
    static Picture expected, actual;
    expected = actual = Picture::noise(5, 4, 1, false);
    actual.set(1, 2, kPlain);
    EXPECT_NONFATAL_FAILURE(expectSame(actual, expected, "evidence/of it"), "evidence_of_it-difference.png");
    const std::string base = std::string(ZV_TEST_OUT_DIR) + "/evidence_of_it";
    EXPECT_EQ(Picture::load(base + "-actual.png"), actual);
    EXPECT_EQ(Picture::load(base + "-expected.png"), expected);
    const Picture difference = Picture::load(base + "-difference.png");
    EXPECT_NE(difference.at(1, 2), (Pixel{0, 0, 0, 255}));
    EXPECT_EQ(difference.at(0, 0), (Pixel{0, 0, 0, 255}));
}

}  // namespace zv::test
