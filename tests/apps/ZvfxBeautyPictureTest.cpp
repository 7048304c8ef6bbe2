// The beauty options of zvfx, as a user sees them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "apps/RunProgram.h"
#include "effects/ColorTable.h"
#include "support/PictureCompare.h"

namespace zv::test {

namespace {

/// The same colours one behind the other, without tiles.
Picture identityHald(const TableLayout& layout) {
    const Picture table = identityTable(layout);
    return Picture::make(table.width, table.width, [&](int x, int y) {
        const int index = y * table.width + x, side = layout.side;
        return entry(table, layout, index % side, index / side % side, index / side / side);
    });
}

}  // namespace

TEST(ZvfxBeautyPicture, NeutralSettingsKeepThePicture) {
    const Picture picture = Picture::noise(61, 47, 3, false);
    const ZvfxFolder folder(picture);
    ASSERT_TRUE(identityTable(kLargeTable).save(folder.file("t512.png")));
    ASSERT_TRUE(identityTable(kSmallTable).save(folder.file("t64.png")));
    const Picture opaque = Picture::make(61, 47, [&](int x, int y) {
        const Pixel p = picture.at(x, y);
        return Pixel{p[0], p[1], p[2], 255};
    });
    // One step for the 8 bits between two stages.
    expectNear(folder.result({"--smooth", "0", "--sharpen", "2"}), picture, 1, 0.1, "zvfx-smooth-0");
    expectNear(folder.result({"--whiten", "0"}), picture, 1, 0.1, "zvfx-whiten-0");
    expectNear(folder.result({"--lut", folder.file("t512.png")}), opaque, 1, 0.5, "zvfx-lut-512");
    expectNear(folder.result({"--lut", folder.file("t64.png") + ",1"}), opaque, 1, 0.5, "zvfx-lut-64");
    expectNear(folder.result({"--lut", "film,0"}), opaque, 1, 0.1, "zvfx-lut-0");
}

TEST(ZvfxBeautyPicture, TablesThatCannotBeUsedAreToldApart) {
    const ZvfxFolder folder(Picture::noise(16, 16));
    ASSERT_TRUE(identityHald(kLargeTable).save(folder.file("hald8.png")));
    ASSERT_TRUE(identityHald(kSmallTable).save(folder.file("hald4.png")));
    ASSERT_TRUE(Picture::noise(511, 64).save(folder.file("odd.png")));
    struct Case {
        std::string lut;
        const char* message;
    };
    for (const Case& row :
         {Case{folder.file("hald8.png"), "is a HALD image"},
          Case{folder.file("hald4.png"), "is a HALD image"},
          Case{folder.file("odd.png"), "has 511 x 64 pixels"}, Case{folder.file("none.png"), "no such file"},
          Case{"nolook", "no look of that name"}}) {
        const ProgramResult ended = folder.run({"--lut", row.lut});
        EXPECT_EQ(ended.status, 1) << row.lut;
        EXPECT_NE(ended.error.find(row.message), std::string::npos) << ended.error;
    }
}

}  // namespace zv::test
