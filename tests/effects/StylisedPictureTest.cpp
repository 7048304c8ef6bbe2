#include <cmath>

#include "StylisedTest.h"
#include "effects/GraffitiStrokes.h"

namespace zv::test {

namespace {

using Colour = std::array<double, 4>;

/// u and v are 0 to 1 with v down.
Colour sample(const Picture& picture, double u, double v) {
    return picture.between(u * picture.width - 0.5, v * picture.height - 0.5);
}

template <class Place>
Picture drawn(const Picture& picture, Place&& colourAt) {
    return Picture::make(picture.width, picture.height, [&](int x, int y) {
        const Colour colour = colourAt((x + 0.5) / picture.width, (y + 0.5) / picture.height);
        Pixel pixel = picture.at(x, y);
        for (std::size_t i = 0; i < 3; ++i)
            pixel[i] = static_cast<std::uint8_t>(std::lround(colour[i]));
        return pixel;
    });
}

/// Smooth fields with hard edges between them, without symmetry, of every brightness.
Picture waves(int width, int height) {
    return Picture::make(width, height, [&](int x, int y) {
        const double u = (x + 0.5) / width, v = (y + 0.5) / height;
        const bool dark = (static_cast<int>(u * 8) + static_cast<int>(v * 5)) % 2 == 1;
        const auto level = [&](double t) {
            return static_cast<std::uint8_t>(std::lround((127.5 + 127 * t) * (dark ? 0.5 : 1.0)));
        };
        return Pixel{level(std::sin(7 * u + 3 * v)), level(std::cos(5 * v - 2 * u)),
                     level(std::sin(9 * u * v)), 255};
    });
}

double meanOf(const Picture& picture) {
    double sum = 0;
    for (std::size_t i = 0; i < picture.rgba.size(); i += 4)
        sum += picture.rgba[i] + picture.rgba[i + 1] + picture.rgba[i + 2];
    return sum / (0.75 * static_cast<double>(picture.rgba.size()));
}

}  // namespace

using StylisedPicture = StylisedTest;

// Filtering hardware places samples to 1/256 of a texel; with rounding that is one step, two at the most.
TEST_F(StylisedPicture, JitterZoomsAboutTheCentreAndSoulStuffLaysALargerCopyOver) {
    const Picture picture = waves(101, 64);
    startLook(kLooks[2], picture);
    for (int i = 0; i < 32; ++i) {
        constexpr double zooms[] = {1, 1.1, 1.15, 1.2, 1.2};
        const double zoom = i % 15 < 5 ? zooms[i % 15] : 1.0;
        const Picture expected = drawn(picture, [&](double u, double v) {
            return sample(picture, 0.5 + (u - 0.5) / zoom, 0.5 + (v - 0.5) / zoom);
        });
        expectNear(next(), expected, zoom == 1.0 ? 0 : 2, 0.3, "jitter-" + std::to_string(i));
    }
    startLook(kLooks[3], picture);
    for (int counter = 1; counter <= 17; ++counter) {
        const bool rests = counter % 17 < 6;
        const double grown = rests ? 1 : (counter - 5) / 12.0, alpha = 0.4 - 0.4 * grown;
        const auto fade = [](double place) {
            const double t = std::clamp(std::min(place, 1 - place) / 0.08, 0.0, 1.0);
            return t * t * (3 - 2 * t);
        };
        const Picture expected = drawn(picture, [&](double u, double v) {
            const double x = 0.5 + (u - 0.5) / (1 + 0.7 * grown), y = 0.5 + (v - 0.5) / (1 + 0.7 * grown);
            Colour colour = sample(picture, u, v);
            const Colour copy = sample(picture, x, y);
            for (std::size_t i = 0; i < 3; ++i)
                colour[i] += alpha * fade(x) * fade(y) * (copy[i] - colour[i]);
            return colour;
        });
        expectNear(next(), expected, rests ? 0 : 2, 0.3, "soul-" + std::to_string(counter));
    }
}

// On a plain bright picture there is no ink: paint is the only colour on the paper, so each pixel tells
// whether a stroke covers its centre. Kept apart is what lies within a thousandth of a pixel of an edge.
TEST_F(StylisedPicture, GraffitiPaintsTheStrokesOfTheStepUprightAndShaken) {
    const auto row = [](std::size_t i) {
        const GraffitiStroke& s = kGraffitiStrokes[i];
        return std::array<float, 4>{s.x0, s.y0, s.x1, s.y1};
    };
    EXPECT_EQ(row(0), (std::array<float, 4>{0.2486F, 0.0359F, 0.6306F, 0.0508F}));
    EXPECT_EQ(row(1), (std::array<float, 4>{0.2597F, 0.0508F, 0.6250F, 0.0578F}));
    EXPECT_EQ(row(28), (std::array<float, 4>{0.1222F, 0.2383F, 0.9500F, 0.2500F}));
    EXPECT_EQ(row(145), (std::array<float, 4>{0.0667F, 0.8664F, 0.8528F, 0.9555F}));
    constexpr std::size_t starts[] = {0, 28, 55, 74, 92, 112, 129, 145, 146};
    constexpr int kWide = 320, kHigh = 180;
    startLook(kLooks[1], Picture(kWide, kHigh, {166, 166, 166, 255}));
    for (int i = 0; i < 140; ++i) {
        const Picture actual = next();
        const int step = i / 10;
        if (step % 2 == 0 && i % 10 > 2)
            continue;
        const auto group = static_cast<std::size_t>(step < 8 ? step : 14 - step);
        constexpr double shakes[] = {0.0, 0.015, -0.015};
        const double shake = step % 2 == 0 ? 0.0 : shakes[i % 10 % 3];
        int wrong = 0;
        for (int place = 0; place < kWide * kHigh; ++place) {
            const double x = place % kWide + 0.5, y = kHigh - (place / kWide + 0.5);
            bool inside = false, edge = false;
            for (std::size_t s = starts[group]; s < starts[group + 1]; ++s) {
                const GraffitiStroke& stroke = kGraffitiStrokes[s];
                const double far = std::min({x - (stroke.x0 + shake) * kWide, (stroke.x1 + shake) * kWide - x,
                                             y - stroke.y0 * double{kHigh}, stroke.y1 * double{kHigh} - y});
                inside = inside || far > 0;
                edge = edge || std::abs(far) < 1e-3;
            }
            const Pixel pixel = actual.at(place % kWide, place / kWide);
            const auto [least, most] = std::minmax({pixel[0], pixel[1], pixel[2]});
            wrong += !edge && (most - least > 70) != inside;
        }
        EXPECT_EQ(wrong, 0) << "frame " << i;
    }
}

// An outline is as bold whichever way it runs; colour reaches further to the right of a disc than to its
// left.
TEST_F(StylisedPicture, GraffitiOutlinesADiscEvenlyAndThe70sBleedItsColourToTheRight) {
    const auto disc = [](Pixel inside, Pixel ground) {
        return Picture::make(
            640, 360, [=](int x, int y) { return std::hypot(x - 319.5, y - 149.5) < 90 ? inside : ground; });
    };
    startLook(kLooks[1], disc({255, 255, 255, 255}, {150, 150, 150, 255}));
    const Picture drawing = next();
    std::array<int, 16> ink{};
    for (int y = 50; y < 250; ++y) {
        for (int x = 220; x < 420; ++x) {
            const double turn = std::atan2(y - 149.5, x - 319.5) / 6.2831853 + 0.5;
            ink[static_cast<std::size_t>(turn * 16) % 16] += drawing.at(x, y)[0] < 128;
        }
    }
    const auto [least, most] = std::minmax_element(ink.begin(), ink.end());
    EXPECT_GT(*least, 60) << "at least two pixels wide";
    EXPECT_LE(*most, 1.2 * *least);

    startLook(kLooks[0], disc({230, 40, 40, 255}, {128, 128, 128, 255}));
    const Picture faded = next();
    const auto colourOf = [&](int x) {  // mean red over blue of 3 x 24 pixels: grain and lines even out
        const Picture block = faded.cropped(x - 1, 138, 3, 24);
        double sum = 0;
        for (std::size_t i = 0; i < block.rgba.size(); i += 4)
            sum += block.rgba[i] - block.rgba[i + 2];
        return sum / (0.25 * static_cast<double>(block.rgba.size()));
    };
    const double ground = colourOf(60), full = colourOf(320) - ground;
    EXPECT_LT(colourOf(320 - 90 - 7) - ground, 0.05 * full);
    EXPECT_GT(colourOf(320 + 90 + 5) - ground, 0.15 * full);
}

class StylisedLookPicture : public StylisedTest, public testing::WithParamInterface<StylisedLook> {};

// The same bytes a cycle later and from another node, no flicker, no jump where the cycle starts again, and
// the same look at twice the size.
TEST_P(StylisedLookPicture, RepeatsWithItsCycleHoldsItsBrightnessAndFollowsThePicturesSize) {
    const StylisedLook& look = GetParam();
    const Picture picture = waves(640, 360);
    std::vector<Picture> first;
    startLook(look, picture);
    for (int i = 0; i < look.cycle; ++i)
        first.push_back(next());
    double darkest = 255, brightest = 0, largestJump = 0;
    for (std::size_t i = 0; i < first.size(); ++i) {
        const double mean = meanOf(first[i]);
        darkest = std::min(darkest, mean);
        brightest = std::max(brightest, mean);
        if (i > 0)
            largestJump = std::max(largestJump, comparePictures(first[i], first[i - 1]).meanStep);
    }
    EXPECT_LT(brightest - darkest, look.make == kLooks[0].make ? 0.5 : 7.0);
    EXPECT_LE(comparePictures(first.front(), first.back()).meanStep, 1.02 * largestJump);
    for (const int i : {0, 1, 5, 7, look.cycle - 1}) {
        while (steps <= look.cycle + i)
            frame();
        EXPECT_EQ(output(), first[static_cast<std::size_t>(i)]) << "frame " << i << " of the second cycle";
    }
    startLook(look, picture);
    for (std::size_t i = 0; i < 12; ++i)
        EXPECT_EQ(next(), first[i]) << "frame " << i << " of another node";
    startLook(look, waves(1280, 720));
    for (std::size_t i = 0; i < 12; ++i) {
        const Picture large = next();
        // Grain and hatching fall on other pixels: what they cover of a block is the same up to 3 %.
        double worst = 0;
        for (int block = 0; block < 16 * 9; ++block) {
            const int x = block % 16, y = block / 16;
            const double apart = meanOf(first[i].cropped(x * 40, y * 40, 40, 40)) -
                                 meanOf(large.cropped(x * 80, y * 80, 80, 80));
            worst = std::max(worst, std::abs(apart));
        }
        EXPECT_LE(worst, 8.0) << "frame " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Looks, StylisedLookPicture, testing::ValuesIn(kLooks),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace zv::test
