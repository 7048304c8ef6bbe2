#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <utility>

#include "BeautyTest.h"
#include "ColorTable.h"
#include "effects/HsvNode.h"
#include "gl/Program.h"
#include "gl/RenderState.h"

namespace zv::test {

struct Factors {
    const char* name;
    double hue, saturation, value;
};

namespace {

double cut(double x) {
    return std::min(std::max(x, 0.0), 1.0);
}

/// The hexcone model in its textbook form, sector by sector (Smith 1978), in double precision, in 8-bit steps
/// but not rounded.
std::array<double, 3> reference(const Pixel& pixel, const Factors& factors) {
    const double r = pixel[0] / 255.0, g = pixel[1] / 255.0, b = pixel[2] / 255.0;
    const double largest = std::max({r, g, b});
    const double chroma = largest - std::min({r, g, b});
    double turn = 0.0;
    if (chroma > 0.0) {
        turn = largest == r   ? (g - b) / chroma
               : largest == g ? 2.0 + (b - r) / chroma
                              : 4.0 + (r - g) / chroma;
        turn /= 6.0;
        turn -= std::floor(turn);
    }
    turn *= factors.hue;
    turn -= std::floor(turn);
    const double s = largest > 0.0 ? cut(chroma / largest * factors.saturation) : 0.0;
    const double v = cut(largest * factors.value);
    const int sector = static_cast<int>(std::floor(turn * 6.0));
    const double part = turn * 6.0 - sector;
    const double p = v * (1.0 - s), q = v * (1.0 - s * part), t = v * (1.0 - s * (1.0 - part));
    const double rows[6][3] = {{v, t, p}, {q, v, p}, {p, v, t}, {p, q, v}, {t, p, v}, {v, p, q}};
    const auto& row = rows[sector % 6];
    return {row[0] * 255.0, row[1] * 255.0, row[2] * 255.0};
}

}  // namespace

class HsvNodePicture : public BeautyTest, public testing::WithParamInterface<Factors> {};

// Half a step is what rounding to 8 bits costs, and a hundredth more for single precision. So factors of 1
// change nothing.
TEST_P(HsvNodePicture, FollowsTheFormulaOverTheWholeColourCube) {
    const Factors& factors = GetParam();
    Picture picture = colourCube(65);
    for (std::size_t i = 3; i < picture.rgba.size(); i += 4)
        picture.rgba[i] = static_cast<std::uint8_t>(i / 4);
    start(makeSprite(picture), sizeOf(picture));
    HsvNode* node = HsvNode::create(sizeOf(picture), media->getFrameBuffer(), PXFORMAT_RGBA8888);
    chain->setHsv(node);
    node->setHue(static_cast<float>(factors.hue));
    node->setSaturation(static_cast<float>(factors.saturation));
    node->setValue(static_cast<float>(factors.value));
    frame();
    EXPECT_EQ(pictureOf(node->getTexture(0)), picture) << "its own target holds the input as it is";
    const Picture actual = output();
    double farthest = 0.0;
    int coloured = 0, alphas = 0;
    for (int place = 0; place < picture.width * picture.height; ++place) {
        const int x = place % picture.width, y = place / picture.width;
        const Pixel before = picture.at(x, y), after = actual.at(x, y);
        const std::array<double, 3> exact = reference(before, factors);
        for (std::size_t i = 0; i < 3; ++i)
            farthest = std::max(farthest, std::abs(after[i] - exact[i]));
        const bool wasGrey = before[0] == before[1] && before[1] == before[2];
        coloured += wasGrey && (after[0] != after[1] || after[1] != after[2]);
        alphas += before[3] != after[3];
    }
    EXPECT_LE(farthest, 0.51);
    EXPECT_EQ(coloured, 0) << "a grey took on a hue";
    EXPECT_EQ(alphas, 0) << "alpha is the input's";
}

class PointwisePicture : public MediaTest {
protected:
    void SetUp() override {
        MediaTest::SetUp();
        RenderState::getCurrent()->begin();
    }
    static Program* makeProgram(const char* fragmentFile) {
        return Program::createWithFile("ZvShaderTexturePosition.vert", fragmentFile);
    }
};

// A point operation that leaves colours alone against a program that is not known to be one.
TEST_F(PointwisePicture, IsFilteredUnlessItIsDrawnPixelForPixel) {
    const Picture picture = Picture::noise(9, 6);
    HsvNode* node = HsvNode::create(sizeOf(picture), nullptr, PXFORMAT_RGBA8888);
    RenderTexture* plain = RenderTexture::create(sizeOf(picture), nullptr, PXFORMAT_RGBA8888);
    RenderTexture* outer = RenderTexture::create(sizeOf(picture), nullptr, PXFORMAT_RGBA8888);
    for (RenderTexture* each : {static_cast<RenderTexture*>(node), plain}) {
        each->getScene()->addChild(makeSprite(picture));
        each->renderToTexture();
    }
    plain->setProgram(makeProgram("ZvShaderTexturePosition.frag"));
    const auto drawn = [&](RenderTexture* child) {
        outer->getScene()->addChild(child);
        outer->renderToTexture();
        outer->getScene()->removeChild(child);
        return pictureOf(outer->getTexture(0));
    };
    struct Way {
        Size16 size;
        std::function<void(RenderTexture&)> change;
    };
    const auto none = [](RenderTexture&) {};
    const Way ways[] = {{{9, 6}, none},
                        {{14, 11}, none},
                        {{9, 6}, none},
                        {{5, 3}, none},
                        {{9, 6}, [](RenderTexture& t) { t.setFlipX(true); }},
                        {{9, 6}, [](RenderTexture& t) { t.setTextureRotationType(Sprite::ROTATION_180); }},
                        {{9, 6}, [](RenderTexture& t) { t.setTextureRotationType(Sprite::ROTATION_90); }},
                        {{9, 6}, [](RenderTexture& t) { t.setTextureRotationType(Sprite::ROTATION_0); }},
                        {{9, 6},
                         [](RenderTexture& t) {
                             t.setRect({2, 1, 8, 5});
                         }},
                        {{9, 6}, [](RenderTexture& t) {
                             t.setRect({0, 0, 9, 6});
                             t.setProgram(makeProgram("ZvMeanBlurFilter.frag"));
                             t.getProgram()->setUniformValue("texelWidthOffset", 0.04F);
                         }}};
    for (std::size_t i = 0; i < std::size(ways); ++i) {
        outer->resetSize(ways[i].size);
        outer->fitViewPort();
        ways[i].change(*node);
        ways[i].change(*plain);
        expectNear(drawn(node), drawn(plain), 1, 0.5, "pointwise-" + std::to_string(i));
    }
}

TEST_F(PointwisePicture, BorrowsASamplerAndChangesNoTexture) {
    HsvNode* node = HsvNode::create({9, 6}, nullptr, PXFORMAT_RGBA8888);
    RenderTexture* outer = RenderTexture::create({9, 6}, nullptr, PXFORMAT_RGBA8888);
    outer->getScene()->addChild(node);
    outer->renderToTexture();
    const GLCallRecorder recorder;
    auto bound = [&, before = std::size_t{0}](const char* why) mutable {
        outer->renderToTexture();
        const std::size_t sum = recorder.count("glBindSampler");
        EXPECT_TRUE(sum == 0U || recorder.callsOf("glBindSampler").back().integer(1) == 0) << why;
        return sum - std::exchange(before, sum);
    };
    const std::size_t once = kind() == Kind::Legacy ? 0U : 2U;
    EXPECT_EQ(bound("drawn as before"), once);
    outer->getScene()->setViewPort({0, 0, 4, 3});
    EXPECT_EQ(bound("drawn smaller"), 0U);
    outer->fitViewPort();
    Texture2D* hosts = makeTexture(Picture(9, 6));
    node->updateTargetTextureId(hosts->getName(), GL_TEXTURE_2D, PXFORMAT_RGBA8888, false);
    EXPECT_EQ(bound("a texture that is lent"), 0U);
    EXPECT_EQ(recorder.count("glGenSamplers") + recorder.count("glTexParameteri"), 4U) << "of hosts' texture";
}

INSTANTIATE_TEST_SUITE_P(Factors, HsvNodePicture,
                         testing::Values(Factors{"Identity", 1, 1, 1}, Factors{"HalfHue", 0.5, 1, 1},
                                         Factors{"HueWraps", 2.75, 1, 1}, Factors{"NegativeHue", -1, 1, 1},
                                         Factors{"NoHue", 0, 1, 1}, Factors{"Grey", 1, 0, 1},
                                         Factors{"Pale", 1, 0.4375, 1}, Factors{"Saturated", 1, 3, 1},
                                         Factors{"SaturationBelowNone", 1, -2, 1},
                                         Factors{"Dark", 1, 1, 0.3125}, Factors{"Bright", 1, 1, 2.5},
                                         Factors{"Black", 1, 1, 0}, Factors{"ValueBelowNone", 1, 1, -1},
                                         Factors{"AllThree", 1.625, 0.75, 1.25},
                                         Factors{"Huge", 1, 1e30, 1e30}),
                         [](const auto& row) { return row.param.name; });

}  // namespace zv::test
