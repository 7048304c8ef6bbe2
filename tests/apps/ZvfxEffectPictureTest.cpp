// What zvfx draws over the picture: animated looks and the marks of a face track.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "apps/RunProgram.h"
#include "support/PictureCompare.h"

namespace zv::test {

namespace {

bool hasColours(const Picture& picture) {
    for (std::size_t i = 0; i < picture.rgba.size(); i += 4) {
        const auto [least, most] = std::minmax({picture.rgba[i], picture.rgba[i + 1], picture.rgba[i + 2]});
        if (most - least > 2) {
            return true;
        }
    }
    return false;
}

}  // namespace

struct EffectCase {
    const char* name;
    int frame;
    int other;  ///< a frame that looks different
    int cycle;  ///< after how many frames the same picture comes again; each effect has its own
};

class ZvfxEffectPicture : public ::testing::TestWithParam<EffectCase> {};

TEST_P(ZvfxEffectPicture, ComesRoundWithItsCycle) {
    const EffectCase& row = GetParam();
    const ZvfxFolder folder(Picture::noise(64, 48, 3, false));
    const auto at = [&](int frame) {
        return folder.result({"--effect", row.name, "--frames", std::to_string(frame)});
    };
    const Picture shown = at(row.frame);
    EXPECT_NE(shown, at(row.other));
    expectSame(at(row.frame + row.cycle), shown, std::string("zvfx-effect-") + row.name);
}

INSTANTIATE_TEST_SUITE_P(, ZvfxEffectPicture,
                         ::testing::Values(EffectCase{"70s", 3, 4, 100}, EffectCase{"graffiti", 75, 5, 140},
                                           EffectCase{"jitter", 2, 1, 15}, EffectCase{"soul", 7, 10, 17}),
                         [](const auto& row) { return "Effect" + std::string(row.param.name); });

TEST(ZvfxOverPicture, AnEffectLiesOverAllOthers) {
    const ZvfxFolder folder(Picture::noise(64, 48));
    // The paint of a stroke keeps its colour: it is not put through the table that takes colours away.
    EXPECT_TRUE(hasColours(folder.result({"--effect", "graffiti", "--frames", "75", "--lut", "mono"})));
    EXPECT_FALSE(hasColours(folder.result({"--lut", "mono"})));
}

/// A matrix as text: a unit of `unit` pixels, its origin a little beside the centre of a pixel, y up.
std::string bone(int unit, int x, int y) {
    const std::string u = std::to_string(unit);
    return "[" + u + ",0,0,0, 0," + u + ",0,0, 0,0," + u + ",0, " + std::to_string(x) + ".6," +
           std::to_string(y) + ".6,0,1]";
}

TEST(ZvfxOverPicture, DebugFacesMarksEveryBoneAndTheAxesOfEachHead) {
    const Picture grey(160, 120, {120, 120, 120, 255});
    const ZvfxFolder folder(grey);
    // Head, eyes, nose, mouth, chin and forehead of one face; of the other one only the head is known.
    const int places[7][2] = {{50, 70}, {40, 70}, {60, 70}, {50, 58}, {50, 48}, {50, 34}, {50, 92}};
    std::string bones;
    for (const auto& place : places) {
        bones += (bones.empty() ? "" : ",") + bone(30, place[0], place[1]);
    }
    const std::string track = folder.write(
        "track.jsonl", R"({"size": [160, 120], "faces": [[)" + bones + "], [" + bone(40, 120, 30) + "]]}\n");
    expectSame(folder.result({"--faces", track}), grey, "zvfx-faces-without-marks");
    const Picture out = folder.result({"--faces", track, "--debug-faces"});
    const auto at = [&](int x, int y) { return out.at(x, 119 - y); };
    const Pixel yellow{255, 225, 60, 255}, red{255, 70, 70, 255}, green{80, 230, 90, 255};
    for (const auto& place : places) {
        EXPECT_EQ(at(place[0], place[1]), yellow) << place[0] << " " << place[1];
    }
    EXPECT_EQ(at(120, 30), yellow);
    EXPECT_EQ(at(135, 30), red) << "x to the right, half a unit long";
    EXPECT_EQ(at(120, 45), green) << "y up";
    EXPECT_EQ(at(145, 30), grey.at(0, 0)) << "no longer";
    // The outline of the complete face crosses the row of its middle at both sides, and there is no other.
    const auto blue = [](const Pixel& p) { return p[2] > 200 && p[0] < 130; };
    int left = 0, right = 0, other = 0;
    for (int x = 0; x < out.width; ++x) {
        (x < 40 ? left : x < 100 ? right : other) += blue(at(x, 63)) ? 1 : 0;
    }
    EXPECT_TRUE(left >= 1 && left <= 3 && right >= 1 && right <= 3 && other == 0) << left << " " << right;
}

}  // namespace zv::test
