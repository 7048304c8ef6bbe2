#include "YuvTest.h"
#include "effects/Yuv420RenderTexture.h"
#include "effects/Yuv444RenderTexture.h"
#include "effects/YuvRenderTexture.h"

namespace zv::test {

struct YuvCase {
    Standard standard;
    int width, height;
};

/// Half a step is what rounding to a byte costs, and a hundredth more for single precision.
constexpr double kRounding = 0.51;
constexpr Pixel kPoison{1, 2, 3, 4};

/// A picture that goes through a whole media engine, sprite, chain and output.
class YuvOutputPicture : public MediaTest, public testing::WithParamInterface<YuvCase> {
protected:
    const Standard standard = GetParam().standard;
    const int width = GetParam().width, height = GetParam().height;
    const int halfWidth = std::max(width / 2, 1), halfHeight = std::max(height / 2, 1);
    Picture picture = Picture::noise(width, height);
    const Picture upwards = picture.flippedY();
    const Size16 size = sizeOf(picture);

    template <class Output>
    void runThrough(Output* output) {
        output->setColorConversion(standard.conversion);
        media->init(makeSprite(picture), size, output, false);
        RenderTextureChain* chain = RenderTextureChain::create(size, media->getFrameBuffer());
        chain->add(RenderTexture::create(size, media->getFrameBuffer(), PXFORMAT_RGBA8888), true, false);
        media->setRenderChain(chain);
        frame();
    }
    void check(const char* what, const YuvError& error) {
        error.print(what, standard.name, width, height);
        EXPECT_LE(error.largest, kRounding);
    }
    /// Plane by plane; answers the end of the planes.
    const unsigned char* checkPacked(const unsigned char* bytes) {
        YuvError error;
        const int stride = (width + 3) / 4 * 4, plane = halfWidth * halfHeight;
        for (int i = 0; i < stride * height; ++i, ++bytes)
            error.add(*bytes, yuvOf(0, standard, picture, i % stride, i / stride));
        for (int i = 0; i < 2 * plane; ++i, ++bytes)
            error.add(*bytes, yuvOf(i < plane ? 1 : 2, standard, picture, i % halfWidth * 2,
                                    i % plane / halfWidth * 2, 2));
        check("I420", error);
        return bytes;
    }
};

TEST_P(YuvOutputPicture, PackedFramesAreI420InTheOwnTargetAndInTheCallers) {
    const int outWidth = (width + 3) / 4, outHeight = (3 * height + 1) / 2;
    RefHolder<Texture2D> target;
    target.set(makeTexture(Picture(outWidth + 1, outHeight + 1, kPoison)));
    GLuint name = 0;
    glGenFramebuffers(1, &name);
    glBindFramebuffer(GL_FRAMEBUFFER, name);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, target.get()->getName(), 0);
    glBindFramebuffer(GL_FRAMEBUFFER, screen);
    for (const int frameBuffer : {-1, static_cast<int>(name)}) {
        auto* node = Yuv420RenderTexture::create({8, 8}, nullptr, frameBuffer);
        EXPECT_NE(node->getTexture(0), nullptr);  // a target of another size
        node->resetSize(size);
        runThrough(node);
        EXPECT_TRUE(node->getOutSize().x == outWidth && node->getOutSize().y == outHeight);
        EXPECT_EQ(node->getTexture(0)->getSize(), node->getOutSize());
        node->getOutData();
        const UniqueDataPtr<unsigned char> data = node->getOutData();
        ASSERT_EQ(data.size(), std::size_t{4} * node->getOutSize().x * node->getOutSize().y);
        const unsigned char* rest = checkPacked(data.get(0));
        const unsigned char* end = data.get(0) + data.size();
        EXPECT_EQ(std::count(rest, end, 0), end - rest);
    }
    const Picture drawn = Picture::readTexture(target.get()->getName(), outWidth + 1, outHeight + 1);
    EXPECT_TRUE(drawn.at(outWidth, 0) == kPoison && drawn.at(0, height + halfHeight) == kPoison);
    EXPECT_NEAR(drawn.at(0, halfHeight)[0], yuvOf(0, standard, picture, 0, 0), kRounding)
        << "luma lies above";
    media->init(nullptr, size, nullptr, true);
    drainPool();
    EXPECT_TRUE(glIsFramebuffer(name)) << "it stays the caller's";
    glDeleteFramebuffers(1, &name);
}

TEST_P(YuvOutputPicture, TwoTexturesHoldLumaAndAQuarterOfChroma) {
    RefHolder<Texture2D> targets[2];
    for (RefHolder<Texture2D>& target : targets)
        target.set(makeTexture(Picture(width, height, kPoison)));
    // With an input of its own, which the engine fills, or without: then it takes what the engine puts there.
    Sprite* inner = width % 2 != 0 ? RenderTexture::create(size, nullptr, PXFORMAT_RGB888) : nullptr;
    runThrough(YuvRenderTexture::create(inner, targets[0].get()->getName(), targets[1].get()->getName(), size,
                                        nullptr));
    const Picture luma = pictureOf(targets[0].get()).flippedY(),
                  chroma = pictureOf(targets[1].get()).flippedY();
    const std::size_t second = ConfigGL::getInstance()->getVersionGL() >= 300 ? 1 : 3;
    YuvError error;
    for (int i = 0; i < width * height; ++i) {
        const int x = i % width, y = i / width;
        error.add(luma.at(x, y)[0], yuvOf(0, standard, upwards, x, y));
        if (x < halfWidth && y < halfHeight) {
            error.add(chroma.at(x, y)[0], yuvOf(1, standard, upwards, 2 * x, 2 * y, 2));
            error.add(chroma.at(x, y)[second], yuvOf(2, standard, upwards, 2 * x, 2 * y, 2));
        } else {
            ASSERT_EQ(chroma.at(x, y), kPoison) << "beyond the quarter at " << x << ", " << y;
        }
    }
    check("Y+UV", error);
}

TEST_P(YuvOutputPicture, EveryPixelIsConvertedAtFullSize) {
    auto* node = Yuv444RenderTexture::create({8, 8}, nullptr);
    node->resetSize(size);
    runThrough(node);
    node->getOutData();
    const UniqueDataPtr<unsigned char> data = node->getOutData();
    ASSERT_EQ(data.size(), std::size_t{3} * size.x * size.y);
    YuvError error;
    for (int i = 0; i < 3 * width * height; ++i)
        error.add(data.get(0)[i], yuvOf(i % 3, standard, upwards, i / 3 % width, i / 3 / width));
    check("444", error);
}

std::vector<YuvCase> yuvCases() {
    std::vector<YuvCase> rows;
    for (const Standard& standard : kStandards)
        for (const auto& [width, height] : {std::pair{64, 48}, {66, 35}, {321, 181}, {7, 5}})
            rows.push_back({standard, width, height});
    for (const auto& [width, height] :
         {std::pair{1, 1}, {1, 4}, {5, 1}, {3, 2}, {2, 3}, {1282, 721}, {64, 1}, {16384, 1}})
        rows.push_back({kStandards[1], width, height});
    return rows;
}

INSTANTIATE_TEST_SUITE_P(Sizes, YuvOutputPicture, testing::ValuesIn(yuvCases()), [](const auto& row) {
    return row.param.standard.name + ("Of" + std::to_string(row.param.width)) + "x" +
           std::to_string(row.param.height);
});

}  // namespace zv::test
