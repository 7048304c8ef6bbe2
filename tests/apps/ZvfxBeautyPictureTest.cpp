// The beauty options of zvfx, as a user sees them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "apps/RunProgram.h"
#include "support/Picture.h"
#include "support/PictureCompare.h"
#include "support/TempDir.h"

namespace zv::test {

namespace {

/// What a picture of n levels a channel holds at `index` when nothing is changed.
Pixel levels(int red, int green, int blue, int n) {
    const auto value = [=](int level) {
        return static_cast<std::uint8_t>((level * 255 + (n - 1) / 2) / (n - 1));
    };
    return {value(red), value(green), value(blue), 255};
}

Picture identityTable(int n) {
    const int tiles = n == 64 ? 8 : 4;
    return Picture::make(n * tiles, n * tiles,
                         [=](int x, int y) { return levels(x % n, y % n, x / n + tiles * (y / n), n); });
}

Picture identityHald(int n) {
    const int side = n == 64 ? 512 : 64;
    return Picture::make(side, side, [=](int x, int y) {
        const int index = y * side + x;
        return levels(index % n, index / n % n, index / n / n, n);
    });
}

ProgramResult run(const TempDir& folder, const std::vector<std::string>& options) {
    std::vector<std::string> arguments = {folder.file("in.png"), "-o", folder.file("out.png"), "--quiet"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return runZvfx(arguments);
}

Picture result(const TempDir& folder, const std::vector<std::string>& options) {
    const ProgramResult ended = run(folder, options);
    EXPECT_EQ(ended.status, 0) << ended.error;
    return Picture::load(folder.file("out.png"));
}

}  // namespace

TEST(ZvfxBeautyPicture, NeutralSettingsKeepThePicture) {
    const TempDir folder;
    const Picture picture = Picture::noise(61, 47, 3, false);
    ASSERT_TRUE(picture.save(folder.file("in.png")));
    ASSERT_TRUE(identityTable(64).save(folder.file("t512.png")));
    ASSERT_TRUE(identityTable(16).save(folder.file("t64.png")));
    const Picture opaque = Picture::make(61, 47, [&](int x, int y) {
        const Pixel p = picture.at(x, y);
        return Pixel{p[0], p[1], p[2], 255};
    });
    // One step for the 8 bits between two stages.
    expectNear(result(folder, {"--smooth", "0", "--sharpen", "2"}), picture, 1, 0.1, "zvfx-smooth-0");
    expectNear(result(folder, {"--whiten", "0"}), picture, 1, 0.1, "zvfx-whiten-0");
    expectNear(result(folder, {"--lut", folder.file("t512.png")}), opaque, 1, 0.5, "zvfx-lut-512");
    expectNear(result(folder, {"--lut", folder.file("t64.png") + ",1"}), opaque, 1, 0.5, "zvfx-lut-64");
    expectNear(result(folder, {"--lut", "film,0"}), opaque, 1, 0.1, "zvfx-lut-0");
}

TEST(ZvfxBeautyPicture, TablesThatCannotBeUsedAreToldApart) {
    const TempDir folder;
    ASSERT_TRUE(Picture::noise(16, 16).save(folder.file("in.png")));
    ASSERT_TRUE(identityHald(64).save(folder.file("hald8.png")));
    ASSERT_TRUE(identityHald(16).save(folder.file("hald4.png")));
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
        const ProgramResult ended = run(folder, {"--lut", row.lut});
        EXPECT_EQ(ended.status, 1) << row.lut;
        EXPECT_NE(ended.error.find(row.message), std::string::npos) << ended.error;
    }
}

}  // namespace zv::test
