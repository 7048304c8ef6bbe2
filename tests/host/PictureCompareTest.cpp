#include "support/PictureCompare.h"

#include <gtest/gtest-spi.h>

namespace zv::test {

const Pixel kPlain{10, 20, 30, 255};

TEST(PictureCompareTest, EveryDifferenceIsNoticedAndToldAndBothTolerancesHold) {
    struct Row {
        Picture actual;
        const char* message;
        double maxStep = 0, meanStep = 0;
    };
    const auto withPixel = [](Pixel pixel) {
        Picture picture(3, 2, kPlain);
        picture.set(2, 1, pixel);
        return picture;
    };
    const Picture twoApart = withPixel({12, 20, 30, 255});
    const Row rows[] = {{withPixel({10, 21, 30, 255}), "largest step 1"},
                        {withPixel({10, 20, 0, 255}), "largest step 30"},
                        {withPixel({10, 20, 30, 254}), "at (2, 1) 10 20 30 254"},
                        {twoApart, "largest step 2 (1 allowed)", 1, 0.25},
                        {twoApart, "(0.0625 allowed)", 2, 0.0625},
                        {Picture(2, 2, kPlain), "2 x 2 instead of 3 x 2"},
                        {Picture(3, 3, kPlain), "3 x 3 instead of 3 x 2"},
                        {Picture(), "nothing to compare"}};
    static const Row* row;
    for (const Row& each : rows) {
        row = &each;
        EXPECT_NONFATAL_FAILURE(
            expectNear(row->actual, Picture(3, 2, kPlain), row->maxStep, row->meanStep, "noticed"),
            each.message);
    }
    EXPECT_TRUE(expectNear(twoApart, Picture(3, 2, kPlain), 2, 2.0 / 24, "within")) << "they are inclusive";
}

}  // namespace zv::test
