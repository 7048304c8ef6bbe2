#include "YuvTest.h"
#include "effects/YUVSprite.h"

namespace zv::test {

struct PlaneCase {
    const char* name;
    int conversion;
    int width, height;              ///< of luma
    int chromaWidth, chromaHeight;  ///< of each chroma plane
};

/// The columns for Y, U and V, by conversion.
constexpr double kToRgb[3][3][3] = {{{1.164, 1.164, 1.164}, {0.0, -0.392, 2.017}, {1.596, -0.813, 0.0}},
                                    {{1.0, 1.0, 1.0}, {0.0, -0.343, 1.765}, {1.4, -0.711, 0.0}},
                                    {{1.164, 1.164, 1.164}, {0.0, -0.213, 2.112}, {1.793, -0.533, 0.0}}};

class YUVSpritePicture : public MediaTest, public testing::WithParamInterface<PlaneCase> {
protected:
    const PlaneCase row = GetParam();
    const bool isHalf = row.chromaWidth < row.width || row.chromaHeight < row.height;

    /// The value of a plane where a pixel lies: a sample that serves two pixels lies in the middle of them.
    std::array<double, 4> chromaAt(int x, int y) const {
        return isHalf ? chroma.between((x + 0.5) / 2 - 0.5, (y + 0.5) / 2 - 0.5) : chroma.between(x, y);
    }
    double exact(std::size_t channel, int x, int y) const {
        const auto& matrix = kToRgb[row.conversion - 1];
        const std::array<double, 4> uv = chromaAt(x, y);
        const double value = matrix[0][channel] * (luma.at(x, y)[0] - (row.conversion == 2 ? 0 : 16)) +
                             matrix[1][channel] * (uv[0] - 128) + matrix[2][channel] * (uv[1] - 128);
        return std::min(std::max(value, 0.0), 255.0);
    }
    static Texture2D* planeOf(const Picture& picture, std::size_t first, std::size_t count) {
        std::vector<unsigned char> bytes;
        for (std::size_t i = first; i < picture.rgba.size(); i += 4)
            bytes.insert(bytes.end(), &picture.rgba[i], &picture.rgba[i] + count);
        const unsigned name = makePlane(picture.width, picture.height, static_cast<int>(count), bytes.data());
        return createRef<Texture2D>(
            [&](Texture2D& t) { return t.init(name, sizeOf(picture), PXFORMAT_R8, true); });
    }

    const Picture luma = Picture::noise(row.width, row.height, 7);
    /// Edges of all colours, some in the middle of a pair of pixels.
    const Picture chroma = Picture::make(row.chromaWidth, row.chromaHeight, [](int x, int y) {
        const auto level = [](bool on, int by) { return static_cast<std::uint8_t>(128 + (on ? by : -by)); };
        return Pixel{level(x % 5 < 2, 90), level((x + 2 * y) % 7 < 3, 25 + y % 60), 0, 255};
    });
};

TEST_P(YUVSpritePicture, TwoAndThreePlanesShowTheColoursWhereTheyLie) {
    // Rounding, and where chroma is interpolated up to a step of a filter that works in bytes, times the
    // largest weight of U and V together.
    const double tolerance = isHalf ? 0.51 + 2.12 : 0.51;
    Texture2D* y = planeOf(luma, 0, 1);
    RefHolder<YUVSprite> sprites[2];  // a frame drops what nobody retains
    sprites[0].set(YUVSprite::create(y, planeOf(chroma, 0, 2)));
    sprites[1].set(YUVSprite::create(y, planeOf(chroma, 0, 1), planeOf(chroma, 1, 1)));
    for (const RefHolder<YUVSprite>& sprite : sprites) {
        sprite.get()->setColorConversion(static_cast<ColorConversion>(row.conversion));
        media->init(sprite.get(), sizeOf(luma), nullptr, false);
        frame();
        const Picture actual = output();
        YuvError error;
        for (int i = 0; i < 3 * row.width * row.height; ++i) {
            const int x = i / 3 % row.width, line = i / 3 / row.width;
            const auto channel = static_cast<std::size_t>(i % 3);
            error.add(actual.at(x, line)[channel], exact(channel, x, line));
        }
        error.print("RGB", row.name, row.width, row.height);
        EXPECT_LE(error.largest, tolerance);
        sprite.get()->setFlipY(true);
        frame();
        expectNear(output().flippedY(), actual, tolerance, 0.3, std::string("yuv-flipped-") + row.name);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Planes, YUVSpritePicture,
    testing::Values(PlaneCase{"Video601", 1, 64, 48, 32, 24}, PlaneCase{"Full601", 2, 64, 48, 32, 24},
                    PlaneCase{"Video709", 3, 64, 48, 32, 24}, PlaneCase{"OddRoundedDown", 3, 37, 21, 18, 10},
                    PlaneCase{"OddRoundedUp", 3, 37, 21, 19, 11}, PlaneCase{"OnePixel", 2, 1, 1, 1, 1},
                    PlaneCase{"OneRow", 1, 16384, 1, 8192, 1}, PlaneCase{"TwoPixels", 1, 1, 2, 1, 1},
                    PlaneCase{"Large", 1, 4096, 2160, 2048, 1080}, PlaneCase{"Whole601", 1, 37, 21, 37, 21},
                    PlaneCase{"WholeFull", 2, 37, 21, 37, 21}, PlaneCase{"Whole709", 3, 64, 48, 64, 48}),
    [](const auto& row) { return row.param.name; });

}  // namespace zv::test
