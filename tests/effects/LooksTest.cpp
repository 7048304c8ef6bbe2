// The lookup images that are shipped, on grey and on skin; no GL.
#include <gtest/gtest.h>

#include "effects/ColorTable.h"

namespace zv::test {

struct Look {
    const char* name;
    bool neutral;  ///< greys stay grey
};

class LooksTest : public testing::TestWithParam<Look> {
protected:
    static Picture load(const std::string& file) {
        return Picture::load(ZV_TEST_RES_DIR "/zv_res/lookups/" + file + ".png");
    }
    /// The look in both sizes; whitening has one.
    static std::vector<std::pair<TableLayout, Picture>> tables() {
        const std::string name = GetParam().name;
        if (name == "kel_white") {
            return {{kLargeTable, load(name)}};
        }
        return {{kLargeTable, load(name + "-512")}, {kSmallTable, load(name + "-64")}};
    }
};

INSTANTIATE_TEST_SUITE_P(Shipped, LooksTest,
                         testing::Values(Look{"kel_white", true}, Look{"natural", true}, Look{"warm", false},
                                         Look{"cool", false}, Look{"film", false}, Look{"faded", false},
                                         Look{"vivid", true}, Look{"mono", true}, Look{"night", false}),
                         [](const auto& row) { return row.param.name; });

TEST_P(LooksTest, AGreyRampNeitherBandsNorFolds) {
    for (const auto& [layout, table] : tables()) {
        Pixel before{};
        for (int grey = 0; grey < 256; ++grey) {
            const auto step = static_cast<std::uint8_t>(grey);
            const std::array<double, 3> found = lookUp(table, layout, {step, step, step, 255});
            const Pixel now{toStep(found[0]), toStep(found[1]), toStep(found[2]), 255};
            for (std::size_t i = 0; i < 3; ++i) {
                const int rise = now[i] - before[i];
                EXPECT_TRUE(grey == 0 || (rise >= 0 && rise <= 2)) << layout.name << " at " << grey;
                EXPECT_LE(GetParam().neutral ? std::abs(now[i] - now[1]) : 0, 1)
                    << layout.name << " " << grey;
            }
            before = now;
        }
    }
}

// The input's patches lie at 23 to 33 degrees of hue and saturations of 0.28 to 0.38. 8 to 38 degrees is from
// rosy to golden, neither violet nor green; below a saturation of 0.15 skin looks grey.
TEST_P(LooksTest, SkinKeepsItsHueAndColour) {
    const Picture portrait = Picture::load(ZV_TEST_DATA_DIR "/portrait.png");
    const int corners[][2] = {{196, 118}, {238, 118}, {205, 75}, {220, 175}};
    for (const auto& corner : corners) {
        const Picture patch = portrait.cropped(corner[0], corner[1], 18, 12);
        std::array<double, 3> large{};
        for (const auto& [layout, table] : tables()) {
            std::array<double, 3> skin{};
            for (int i = 0; i < 18 * 12 * 3; ++i) {
                const auto c = static_cast<std::size_t>(i % 3);
                skin[c] += lookUp(table, layout, patch.at(i / 3 % 18, i / 54))[c] / (18 * 12);
            }
            const double chroma = skin[0] - skin[2];
            const bool mono = GetParam().name == std::string("mono");
            EXPECT_TRUE(mono ? std::abs(chroma) <= 1.0 : chroma >= 0.15 * skin[0]) << chroma;
            const double hue = 60.0 * (skin[1] - skin[2]) / chroma;
            EXPECT_TRUE(mono || (hue >= 8.0 && hue <= 38.0)) << hue;
            large = layout.side == 64 ? skin : large;
            for (std::size_t i = 0; i < 3; ++i) {
                EXPECT_NEAR(skin[i], large[i], 2.0) << "both sizes are the same look";
            }
        }
    }
}

TEST(KelWhite, BrightensSkinOfAnyToneMoreThanLipsHairAndShadows) {
    const Picture table = Picture::load(ZV_TEST_RES_DIR "/zv_res/lookups/kel_white.png");
    const auto lift = [&](const Pixel& colour) { return lookUp(table, kLargeTable, colour)[1] - colour[1]; };
    EXPECT_EQ(lift({0, 0, 0, 255}), 0.0);
    EXPECT_EQ(lift({255, 255, 255, 255}), 0.0);
    EXPECT_LE(lift({24, 22, 20, 255}), 3.0);
    const double skin = lift({206, 169, 142, 255});
    EXPECT_GE(skin, 25.0);
    EXPECT_GE(lift({110, 75, 58, 255}), 25.0) << "dark skin";
    for (const Pixel& beside : {Pixel{170, 60, 70, 255}, {176, 60, 20, 255}, {60, 42, 20, 255}}) {
        EXPECT_LE(lift(beside), skin * 0.6) << int{beside[0]};
    }
}

}  // namespace zv::test
