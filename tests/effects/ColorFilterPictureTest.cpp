#include "effects/ColorFilter.h"

#include <filesystem>

#include "core/FileUtil.h"
#include "effects/BeautyTest.h"
#include "effects/ColorTable.h"
#include "effects/SkinWhitingNode.h"
#include "support/LogCapture.h"
#include "support/NamedRow.h"
#include "support/TempDir.h"

namespace zv::test {

/// One table stage between an input of 65 values a channel and an RGBA output of the same size.
class TableStage : public BeautyTest {
protected:
    Picture show(RenderTexture* stage) {
        start(makeSprite(cube), size);
        chain->add(stage, true, false);
        frame();
        return output();
    }
    ColorFilter* makeFilter(const Picture& table) {
        EXPECT_TRUE(table.save(folder.file("table.png")));
        ColorFilter* filter = ColorFilter::create(size, media->getFrameBuffer(), folder.file("table.png"));
        filter->setIntensity(1.0F);
        return filter;
    }
    /// The largest distance, in 8-bit steps, from the exact mix of input and table.
    double farthest(const Picture& actual, const Picture& table, const TableLayout& layout, double amount) {
        double largest = 0.0;
        for (int y = 0; y < cube.height; ++y) {
            for (int x = 0; x < cube.width; ++x) {
                const std::array<double, 3> found = lookUp(table, layout, cube.at(x, y));
                for (std::size_t i = 0; i < 3; ++i) {
                    const double from = cube.at(x, y)[i];
                    const double exact = std::min(std::max(from + amount * (found[i] - from), 0.0), 255.0);
                    largest = std::max(largest, std::abs(actual.at(x, y)[i] - exact));
                }
            }
        }
        return largest;
    }

    /// Half a step is what rounding to 8 bits costs, and a hundredth more for single precision.
    static constexpr double kAllowed = 0.51;

    const TempDir folder;
    const Picture cube = colourCube(65);
    const Size16 size{65 * 65, 65};
};

class ColorFilterPicture : public TableStage, public testing::WithParamInterface<TableLayout> {};
using SkinWhitingPicture = TableStage;

namespace {

/// Every channel depends on all three, rising and falling.
Picture waves(const TableLayout& layout) {
    return makeTable(layout, [&](int red, int green, int blue) {
        const double last = layout.side - 1, r = red / last, g = green / last, b = blue / last;
        const auto wave = [](double phase) { return toStep(127.5 + 127.5 * std::sin(phase)); };
        return Pixel{wave(5 * r + 2 * g - 3 * b), wave(1 + 4 * g + 3 * b), wave(2 + 6 * b - 2 * r * g), 255};
    });
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Layouts, ColorFilterPicture, testing::Values(kSmallTable, kLargeTable),
                         [](const auto& row) { return row.param.name; });

TEST_P(ColorFilterPicture, AnIdentityTableGivesBackEveryColour) {
    EXPECT_EQ(show(makeFilter(identityTable(GetParam()))), cube);
}

TEST_P(ColorFilterPicture, FollowsTrilinearInterpolationOfAnyTable) {
    const Picture smooth = waves(GetParam());
    for (const double amount : {1.0, 0.5, 0.0, 1.5}) {
        ColorFilter* filter = makeFilter(smooth);
        filter->setIntensity(static_cast<float>(amount));
        EXPECT_LE(farthest(show(filter), smooth, GetParam(), amount), kAllowed) << amount;
    }
    const Picture noise = Picture::noise(smooth.width, smooth.height, 9);
    EXPECT_LE(farthest(show(makeFilter(noise)), noise, GetParam(), 1.0), kAllowed);
}

TEST_P(ColorFilterPicture, TheDirectionTellsWhichRowIsStoredFirst) {
    const Picture table = waves(GetParam());
    const Picture upright = show(makeFilter(table));
    ColorFilter* filter = makeFilter(table.flippedY());
    filter->setImageDirection(true);
    EXPECT_EQ(show(filter), upright);
    filter = makeFilter(table.flippedY());
    filter->setImageDirection(true);
    filter->setImageDirection(false);
    EXPECT_NE(show(filter), upright);
}

// Another texture is bound to unit 1 meanwhile: it must not be taken for the table.
TEST_P(ColorFilterPicture, WithoutATableThePictureStaysAsItIs) {
    ColorFilter* filter = ColorFilter::create(
        size, media->getFrameBuffer(), static_cast<ColorFilter::FilterType>(GetParam().side == 64 ? 1 : 0));
    filter->retain();
    filter->setIntensity(1.0F);
    Texture2D* other = makeTexture(Picture(64, 64, {255, 0, 0, 255}));
    other->active(1);
    EXPECT_EQ(show(filter), cube);
    const Picture table = waves(GetParam());
    ASSERT_TRUE(table.save(folder.file("late.png")));
    filter->setFilterImage(folder.file("late.png"));
    frame();
    EXPECT_EQ(output(), show(makeFilter(table)));
    filter->release();
}

// A filter keeps its layout, so a table of the other one gives colours of that table, whatever they are.
TEST_P(ColorFilterPicture, ATableOfTheOtherLayoutIsReadInsideItsBounds) {
    const TableLayout& other = GetParam().side == 64 ? kSmallTable : kLargeTable;
    ColorFilter* filter = makeFilter(identityTable(GetParam()));
    ASSERT_TRUE(Picture(other.width(), other.width(), {10, 20, 30, 255}).save(folder.file("other.png")));
    filter->setFilterImage(folder.file("other.png"));
    EXPECT_EQ(show(filter), Picture(cube.width, cube.height, {10, 20, 30, 255}));
}

TEST_F(SkinWhitingPicture, MixesInTheLookupImageByThreeTenths) {
    const Picture table = Picture::load(ZV_TEST_RES_DIR "/zv_res/lookups/kel_white.png");
    SkinWhitingNode* node = SkinWhitingNode::create(size, media->getFrameBuffer(), PXFORMAT_RGBA8888);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->getSkinWhitening(), 0.3F);
    EXPECT_LE(farthest(show(node), table, kLargeTable, 0.3), kAllowed);
    node->setSkinWhitening(0.0F);
    frame();
    EXPECT_EQ(output(), cube);
}

TEST_F(SkinWhitingPicture, AMissingLookupImageIsLoggedOnceAndThePictureStays) {
    const TempDir root;
    std::filesystem::create_directory(root.file("zv_res"));
    std::filesystem::copy(ZV_TEST_RES_DIR "/zv_res/shaders", root.file("zv_res/shaders"));
    FileUtil::getInstance()->setZvRoot(root.path());
    const LogCapture log;
    SkinWhitingNode* node = SkinWhitingNode::create(size, media->getFrameBuffer(), PXFORMAT_RGBA8888);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->getTexture(1), nullptr);
    node->setSkinWhitening(1.0F);
    EXPECT_EQ(show(node), cube);
    EXPECT_EQ(log.text(), "Zorvik: skin whitening has no effect: cannot load " + root.path() +
                              "/zv_res/lookups/kel_white.png\n");
}

}  // namespace zv::test
