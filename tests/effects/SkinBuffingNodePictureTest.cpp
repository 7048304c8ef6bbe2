// What smoothing does to skin, edges, everything else and colour, in figures. The rectangles are places in
// the portrait; at other sizes the portrait lies scaled in the middle of the frame, and they with it.
#include <array>
#include <cmath>
#include <functional>
#include <numeric>
#include <random>
#include <sstream>
#include <tuple>

#include "BeautyTest.h"
#include "gl/RenderState.h"

namespace zv::test {

namespace {

using Plane = std::vector<double>;

struct Area {
    int x0, y0, x1, y1;  ///< in the portrait of 512 x 512
};
constexpr Area kSkin[] = {{196, 118, 214, 140}, {238, 118, 256, 140}, {205, 75, 240, 88}};
constexpr Area kTexture[] = {{120, 330, 200, 400}, {165, 40, 200, 70}, {60, 300, 100, 340}};

/// The square in the middle of the frame, which holds the portrait.
Picture middle(const Picture& frame) {
    const int side = std::min(frame.width, frame.height);
    return frame.cropped((frame.width - side) / 2, (frame.height - side) / 2, side, side);
}

Plane lumaOf(const Picture& picture) {
    Plane luma;
    for (std::size_t i = 0; i < picture.rgba.size(); i += 4)
        luma.push_back(0.299 * picture.rgba[i] + 0.587 * picture.rgba[i + 1] + 0.114 * picture.rgba[i + 2]);
    return luma;
}

/// One direction of a Gaussian blur of a square, turned by a quarter: twice is both directions.
Plane blurredAndTurned(const Plane& plane, int side, double sigma) {
    const int radius = static_cast<int>(std::ceil(3.0 * sigma));
    Plane weights, result(plane.size());
    for (int i = -radius; i <= radius; ++i)
        weights.push_back(std::exp(-0.5 * i * i / (sigma * sigma)));
    const double total = std::accumulate(weights.begin(), weights.end(), 0.0);
    for (int place = 0; place < side * side; ++place) {
        double sum = 0.0;
        for (int i = -radius; i <= radius; ++i) {
            const int from = place / side * side + std::clamp(place % side + i, 0, side - 1);
            sum += weights[static_cast<std::size_t>(i + radius)] * plane[static_cast<std::size_t>(from)];
        }
        result[static_cast<std::size_t>(place % side * side + place / side)] = sum / total;
    }
    return result;
}

/// What is left beside a Gaussian blur of sigma 6, and in each area its standard deviation.
std::array<double, 3> detailOf(const Picture& square, const Area (&areas)[3]) {
    const double scale = square.width / 512.0;
    Plane detail = lumaOf(square);
    const Plane mean =
        blurredAndTurned(blurredAndTurned(detail, square.width, 6 * scale), square.width, 6 * scale);
    std::transform(detail.begin(), detail.end(), mean.begin(), detail.begin(), std::minus<>());
    const auto scaled = [&](int place) { return static_cast<int>(std::lround(place * scale)); };
    std::array<double, 3> result{};
    for (std::size_t area = 0; area < 3; ++area) {
        double sum = 0.0, squares = 0.0, count = 0.0;
        for (int y = scaled(areas[area].y0); y < scaled(areas[area].y1); ++y) {
            for (int x = scaled(areas[area].x0); x < scaled(areas[area].x1); ++x, ++count) {
                const double value = detail[static_cast<std::size_t>(y * square.width + x)];
                sum += value;
                squares += value * value;
            }
        }
        result[area] = std::sqrt(squares / count - sum / count * (sum / count));
    }
    return result;
}

/// Mean over three areas of how much of the detail is left.
double detailLeft(const Picture& before, const Picture& after, const Area (&areas)[3]) {
    const auto was = detailOf(before, areas), is = detailOf(after, areas);
    return (is[0] / was[0] + is[1] / was[1] + is[2] / was[2]) / 3.0;
}

/// Sobel magnitudes.
Plane edgesOf(const Picture& square) {
    const int side = square.width;
    const Plane luma = lumaOf(square);
    Plane edges;
    for (int y = 1; y < side - 1; ++y) {
        for (int x = 1; x < side - 1; ++x) {
            const auto at = [&](int dx, int dy) {
                return luma[static_cast<std::size_t>((y + dy) * side + x + dx)];
            };
            const double falling = at(1, 1) - at(-1, -1), rising = at(1, -1) - at(-1, 1);
            edges.push_back(std::hypot(falling + rising + 2 * (at(1, 0) - at(-1, 0)),
                                       falling - rising + 2 * (at(0, 1) - at(0, -1))));
        }
    }
    return edges;
}

/// The strongest 5 % of the edges, summed after and before.
double edgesKept(const Picture& before, const Picture& after) {
    const Plane was = edgesOf(before), is = edgesOf(after);
    Plane sorted = was;
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
    const int side = before.width / 16;
    double most = 0.0;
    for (int block = 0; block < 256 * 3; ++block) {
        double sum = 0.0;
        for (int i = 0; i < side * side; ++i) {
            const int x = block / 3 % 16 * side + i % side, y = block / 48 * side + i / side;
            const auto channel = static_cast<std::size_t>(block % 3);
            sum += after.at(x, y)[channel] - before.at(x, y)[channel];
        }
        most = std::max(most, std::abs(sum) / (side * side));
    }
    return most;
}

/// Gaussian noise of 8 steps.
Picture noisy(Picture picture) {
    std::mt19937 random(1);
    std::normal_distribution<double> noise(0.0, 8.0);
    for (std::size_t i = 0; i < picture.rgba.size(); ++i) {
        if (i % 4 != 3) {
            picture.rgba[i] = static_cast<std::uint8_t>(
                std::lround(std::clamp(picture.rgba[i] + noise(random), 0.0, 255.0)));
        }
    }
    return picture;
}

}  // namespace

using Frame = std::tuple<unsigned short, bool>;  ///< height, noise

class SkinBuffingNodePicture : public BeautyTest, public testing::WithParamInterface<Frame> {
protected:
    /// The portrait in the middle of a black frame.
    Picture portraitIn(const Size16& size) {
        const Picture portrait = Picture::load(ZV_TEST_DATA_DIR "/portrait.png");
        const unsigned short side = std::min(size.x, size.y);
        if (side == 512)
            return portrait;
        RenderTexture* scaled = RenderTexture::create({side, side}, nullptr, PXFORMAT_RGBA8888);
        scaled->getScene()->addChild(makeSprite(portrait));
        media->getRenderState()->begin();
        scaled->renderToTexture();
        const Picture square = pictureOf(scaled->getTexture(0));
        return Picture::make(size.x, size.y, [&](int x, int y) {
            const int left = (size.x - side) / 2;
            return x >= left && x < left + side ? square.at(x - left, y) : Pixel{0, 0, 0, 255};
        });
    }
};

TEST_P(SkinBuffingNodePicture, SmoothsSkinAndKeepsEdgesTextureAndColour) {
    const auto [height, noise] = GetParam();
    const auto width = static_cast<unsigned short>(height == 512 ? 512 : height * 16 / 9);
    const Picture portrait = portraitIn({width, height});
    const Picture before = noise ? noisy(portrait) : portrait, was = middle(before);
    SkinBuffingNode* node = startSkin(before);
    for (const bool full : {false, true}) {
        node->setSkinBuffing(full ? 1.0F : 0.6F);
        frame();
        const Picture is = middle(output());
        const double skin = detailLeft(was, is, kSkin), texture = detailLeft(was, is, kTexture);
        const double edges = edgesKept(was, is), block = blockMove(was, is);
        std::ostringstream figures;
        figures << skin << " " << edges << " " << texture << " " << block;
        RecordProperty(full ? "full" : "default", figures.str());
        EXPECT_LE(skin, full ? 0.60 : 0.78);
        EXPECT_GE(skin, 0.45) << "skin, not wax";
        EXPECT_GE(edges, full ? 0.95 : 0.98);
        EXPECT_GE(texture, full ? 0.93 : 0.96);
        EXPECT_LE(block, full ? 3.5 : 2.0);
    }
}

INSTANTIATE_TEST_SUITE_P(Portrait, SkinBuffingNodePicture,
                         testing::Values(Frame{512, false}, Frame{512, true}, Frame{720, false},
                                         Frame{1080, false}),
                         [](const auto& row) {
                             return std::to_string(std::get<0>(row.param)) +
                                    (std::get<1>(row.param) ? "Noise" : "");
                         });

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
