// What smoothing does to skin, edges, everything else and colour, in figures. The rectangles are places in
// the portrait; at other sizes the portrait lies scaled in the middle of the frame, and they with it.
#include <cmath>
#include <numeric>
#include <random>
#include <sstream>

#include "BeautyTest.h"
#include "gl/RenderState.h"
#include "support/NamedRow.h"

namespace zv::test {

namespace {

struct Area {
    int x0, y0, x1, y1;  ///< in the portrait of 512 x 512
};
constexpr Area kSkin[] = {{196, 118, 214, 140}, {238, 118, 256, 140}, {205, 75, 240, 88}};
constexpr Area kTexture[] = {{120, 330, 200, 400}, {165, 40, 200, 70}, {60, 300, 100, 340}};

/// A square of numbers, its border repeated.
struct Plane {
    template <class At>
    Plane(int width, At&& value) : side(width) {
        for (int place = 0; place < side * side; ++place)
            values.push_back(value(place % side, place / side));
    }
    double at(int x, int y) const {
        const int place = std::clamp(y, 0, side - 1) * side + std::clamp(x, 0, side - 1);
        return values[static_cast<std::size_t>(place)];
    }
    int side;
    std::vector<double> values;
};

/// A channel of the square in the middle of the frame, which holds the portrait; 3: luma.
Plane channelOf(const Picture& frame, std::size_t channel) {
    const int side = std::min(frame.width, frame.height);
    return {side, [&](int x, int y) {
                const Pixel p = frame.at((frame.width - side) / 2 + x, (frame.height - side) / 2 + y);
                return channel < 3 ? p[channel] : 0.299 * p[0] + 0.587 * p[1] + 0.114 * p[2];
            }};
}

/// What is left beside a Gaussian blur of sigma 6 at 512.
Plane detailOf(const Plane& luma) {
    const double sigma = 6.0 * luma.side / 512.0;
    const int radius = static_cast<int>(std::ceil(3.0 * sigma));
    std::vector<double> weights;
    for (int i = -radius; i <= radius; ++i)
        weights.push_back(std::exp(-0.5 * i * i / (sigma * sigma)));
    const double total = std::accumulate(weights.begin(), weights.end(), 0.0);
    const auto blurredAndTurned = [&](const Plane& plane) {
        return Plane(plane.side, [&](int x, int y) {
            double sum = 0.0;
            for (int i = -radius; i <= radius; ++i)
                sum += weights[static_cast<std::size_t>(i + radius)] * plane.at(y + i, x);
            return sum / total;
        });
    };
    const Plane mean = blurredAndTurned(blurredAndTurned(luma));
    return {luma.side, [&](int x, int y) { return luma.at(x, y) - mean.at(x, y); }};
}

/// How much of the detail is left, by standard deviation; mean of three areas.
double detailLeft(const Plane& before, const Plane& after, const Area (&areas)[3]) {
    const double scale = before.side / 512.0;
    const auto scaled = [&](int place) { return static_cast<int>(std::lround(place * scale)); };
    const auto deviation = [&](const Plane& detail, const Area& area) {
        double sum = 0.0, squares = 0.0, count = 0.0;
        for (int y = scaled(area.y0); y < scaled(area.y1); ++y) {
            for (int x = scaled(area.x0); x < scaled(area.x1); ++x, ++count) {
                sum += detail.at(x, y);
                squares += detail.at(x, y) * detail.at(x, y);
            }
        }
        return std::sqrt(squares / count - sum / count * (sum / count));
    };
    double left = 0.0;
    for (const Area& area : areas)
        left += deviation(after, area) / deviation(before, area) / 3.0;
    return left;
}

/// The strongest 5 % of the Sobel magnitudes, summed after over summed before.
double edgesKept(const Plane& before, const Plane& after) {
    const auto edgesOf = [](const Plane& luma) {
        return Plane(luma.side, [&](int x, int y) {
            const auto at = [&](int dx, int dy) { return luma.at(x + dx, y + dy); };
            const double falling = at(1, 1) - at(-1, -1), rising = at(1, -1) - at(-1, 1);
            return std::hypot(falling + rising + 2 * (at(1, 0) - at(-1, 0)),
                              falling - rising + 2 * (at(0, 1) - at(0, -1)));
        });
    };
    const std::vector<double> was = edgesOf(before).values, is = edgesOf(after).values;
    std::vector<double> sorted = was;
    const auto bound = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() * 95 / 100);
    std::nth_element(sorted.begin(), bound, sorted.end());
    double sums[2] = {};
    for (std::size_t i = 0; i < was.size(); ++i) {
        sums[0] += was[i] >= *bound ? was[i] : 0.0;
        sums[1] += was[i] >= *bound ? is[i] : 0.0;
    }
    return sums[1] / sums[0];
}

/// How far the mean colour of a block moves at most; 16 blocks a side.
double blockMove(const Picture& before, const Picture& after) {
    double most = 0.0;
    for (std::size_t channel = 0; channel < 3; ++channel) {
        const Plane was = channelOf(before, channel), is = channelOf(after, channel);
        const int side = was.side / 16;
        double sums[256] = {};
        for (int y = 0; y < 16 * side; ++y)
            for (int x = 0; x < 16 * side; ++x)
                sums[y / side * 16 + x / side] += is.at(x, y) - was.at(x, y);
        for (const double sum : sums)
            most = std::max(most, std::abs(sum) / (side * side));
    }
    return most;
}

/// The length of the difference of two pictures.
double distance(const Picture& a, const Picture& b) {
    return std::sqrt(std::inner_product(a.rgba.begin(), a.rgba.end(), b.rgba.begin(), 0.0, std::plus<>(),
                                        [](int x, int y) { return (x - y) * (x - y); }));
}

/// Puts dark marks on the skin: spots 3 to 5 pixels wide, or hairs of 2.
Picture marked(Picture frame, bool hairs) {
    const int side = std::min(frame.width, frame.height), left = (frame.width - side) / 2;
    const double scale = side / 512.0;
    constexpr double kPlaces[][3] = {
        {219, 116, 2.5}, {216, 164, 2}, {195, 116, 1.5}, {204, 155, 2.5}, {250, 120, 1.5}};
    for (const auto& [middleX, middleY, radius] : kPlaces) {
        for (int place = 0; place < side * side; ++place) {
            const double x = (place % side + 0.5) / scale - middleX,
                         y = (place / side + 0.5) / scale - middleY;
            const double away = hairs ? std::abs(0.6 * x + 0.8 * y) - 1.0 : std::hypot(x, y) - radius;
            const double cover = std::hypot(x, y) > 9.0 ? 0.0 : std::clamp(0.5 - away * scale, 0.0, 1.0);
            Pixel pixel = frame.at(left + place % side, place / side);
            for (std::size_t i = 0; i < 3; ++i)
                pixel[i] = static_cast<std::uint8_t>(std::lround(pixel[i] * (1.0 - 0.45 * cover)));
            frame.set(left + place % side, place / side, pixel);
        }
    }
    return frame;
}

}  // namespace

struct Shot {
    const char* name;
    unsigned short width, height;
    double light[3];  ///< what the colours are multiplied by
    double noise;     ///< its standard deviation in steps
};

class SkinBuffingNodePicture : public BeautyTest, public testing::WithParamInterface<Shot> {
protected:
    /// The portrait in the middle of a black frame, in that light.
    Picture taken(const Shot& row) {
        const unsigned short side = std::min(row.width, row.height);
        RenderTexture* scaled = RenderTexture::create({side, side}, nullptr, PXFORMAT_RGBA8888);
        scaled->getScene()->addChild(makeSprite(Picture::load(ZV_TEST_DATA_DIR "/portrait.png")));
        media->getRenderState()->begin();
        scaled->renderToTexture();
        const Picture square = pictureOf(scaled->getTexture(0));
        std::mt19937 random(1);
        std::normal_distribution<double> noise(0.0, std::max(row.noise, 1e-9));
        return Picture::make(row.width, row.height, [&](int x, int y) {
            const int inside = x - (row.width - side) / 2;
            Pixel pixel = inside >= 0 && inside < side ? square.at(inside, y) : Pixel{0, 0, 0, 255};
            for (std::size_t i = 0; i < 3; ++i)
                pixel[i] = static_cast<std::uint8_t>(
                    std::lround(std::clamp(pixel[i] * row.light[i] + noise(random), 0.0, 255.0)));
            return pixel;
        });
    }
};

TEST_P(SkinBuffingNodePicture, SmoothsSkinAndKeepsEdgesTextureAndColour) {
    const Picture before = taken(GetParam());
    const Picture spotted = marked(before, false), haired = marked(before, true);
    const Plane was = channelOf(before, 3), wasDetail = detailOf(was);
    SkinBuffingNode* node = startSkin(before);
    for (const bool full : {false, true}) {
        node->setSkinBuffing(full ? 1.0F : 0.6F);
        const Picture after = frameOf(before);
        const Plane is = channelOf(after, 3), isDetail = detailOf(is);
        const double skin = detailLeft(wasDetail, isDetail, kSkin);
        const double texture = detailLeft(wasDetail, isDetail, kTexture);
        const double edges = edgesKept(was, is), block = blockMove(before, after);
        const double spots = distance(frameOf(spotted), after) / distance(spotted, before);
        const double hairs = distance(frameOf(haired), after) / distance(haired, before);
        std::ostringstream figures;
        figures << skin << " " << edges << " " << texture << " " << block << " " << spots << " " << hairs;
        RecordProperty(full ? "full" : "default", figures.str());
        EXPECT_LE(skin, full ? 0.60 : 0.78);
        EXPECT_GE(skin, 0.45) << "skin, not wax";
        EXPECT_GE(edges, full ? 0.95 : 0.98);
        EXPECT_GE(texture, full ? 0.93 : 0.96);
        EXPECT_LE(block, full ? 3.5 : 2.0);
        EXPECT_LE(spots, full ? 0.20 : 0.25);
        EXPECT_GE(hairs, full ? 0.40 : 0.65);
    }
}

INSTANTIATE_TEST_SUITE_P(Portrait, SkinBuffingNodePicture,
                         testing::Values(Shot{"Plain", 512, 512, {1, 1, 1}, 0},
                                         Shot{"Noise", 512, 512, {1, 1, 1}, 8},
                                         Shot{"Dim", 512, 512, {0.35, 0.35, 0.35}, 0},
                                         Shot{"DarkSkin", 512, 512, {0.44, 0.36, 0.32}, 0},
                                         Shot{"Frame720", 1280, 720, {1, 1, 1}, 0},
                                         Shot{"Frame1080", 1920, 1080, {1, 1, 1}, 0}),
                         [](const auto& row) { return row.param.name; });

TEST_F(SkinBuffingNodePicture, StrengthIsCutToItsRangeAndNothingLeavesThePicture) {
    const Picture portrait = Picture::load(ZV_TEST_DATA_DIR "/portrait.png").cropped(128, 40, 240, 150);
    const Picture random = Picture::noise(240, 150, 5, false);
    SkinBuffingNode* skin = startSkin(portrait);
    const auto shown = [&](const Picture& picture, float strength, float sharpen) {
        skin->setSkinBuffing(strength);
        skin->setSharpen(sharpen);
        return frameOf(picture);
    };
    for (const float strength : {0.0F, -1.0F})
        for (const float sharpen : {0.0F, 1.0F, 50.0F, -3.0F})
            expectNear(shown(portrait, strength, sharpen), portrait, 1, 0.01, "skin-strength-0");
    expectNear(shown(random, 0.0F, 2.0F), random, 1, 0.01, "skin-strength-0-alpha");
    expectSame(shown(portrait, 40.0F, 1.0F), shown(portrait, 1.0F, 1.0F), "skin-strength-40");
    expectSame(shown(portrait, 1.0F, 90.0F), shown(portrait, 1.0F, 2.0F), "skin-sharpen-90");
    // No skin there: only the sharpening acts, at most 4.5 steps; alpha is the input's.
    const Picture sharpened = shown(random, 3.0F, 2.0F);
    expectNear(sharpened, random, 5, 4.0, "skin-random");
    EXPECT_NE(sharpened, random);
    // Sharpening looks one texel far, to every side.
    Picture dot(240, 150, {60, 60, 60, 255});
    dot.set(120, 75, {200, 200, 200, 255});
    const Picture seen = shown(dot, 1.0F, 2.0F);
    for (int place = 0; place < 240 * 150; ++place) {
        const int x = place % 240, y = place / 240, across = std::abs(x - 120), down = std::abs(y - 75);
        if (across * down != 1) {  // a corner may change or not
            ASSERT_EQ(seen.at(x, y) != dot.at(x, y), across + down <= 1) << x << ", " << y;
        }
    }
}

// Side by side, all pairs of colours that pictures of people have; a halo would go beyond both sides.
TEST_F(SkinBuffingNodePicture, AHardEdgeGetsNoHalo) {
    const Pixel colours[] = {{255, 255, 255, 255}, {0, 0, 0, 255},       {128, 128, 128, 255},
                             {206, 168, 142, 255}, {230, 190, 170, 255}, {120, 85, 65, 255},
                             {90, 60, 45, 255},    {40, 25, 15, 255},    {200, 145, 138, 255},
                             {207, 80, 39, 255},   {60, 90, 160, 255},   {80, 130, 60, 255},
                             {245, 222, 179, 255}};
    SkinBuffingNode* skin = startSkin(Picture(240, 32));
    for (const Pixel& a : colours) {
        for (const Pixel& b : colours) {
            for (const float strength : {0.6F, 1.0F, 3.0F}) {
                skin->setSkinBuffing(strength);
                const Picture after =
                    frameOf(Picture::make(240, 32, [&](int x, int) { return x < 120 ? a : b; }));
                int beyond = 0;
                for (int i = 0; i < 240 * 3; ++i) {
                    const auto c = static_cast<std::size_t>(i % 3);
                    const int level = after.at(i / 3, 16)[c];
                    beyond = std::max({beyond, level - std::max(a[c], b[c]), std::min(a[c], b[c]) - level});
                }
                ASSERT_LE(beyond, 6) << testing::PrintToString(a) << " beside " << testing::PrintToString(b);
            }
        }
    }
}

}  // namespace zv::test
