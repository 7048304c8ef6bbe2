// Every effect at every kind of size: a picture of one colour stays one, or at least is drawn all over.
#include <functional>

#include "algorithm/AlgEngine.h"
#include "algorithm/AlgKelNN.h"
#include "effects/BeautyTest.h"
#include "effects/ColorFilter.h"
#include "effects/Effect70SNode.h"
#include "effects/FaceBuffingNode.h"
#include "effects/FaceShapeNode.h"
#include "effects/GraffitiNode.h"
#include "effects/HsvNode.h"
#include "effects/JitterNode.h"
#include "effects/SkinWhitingNode.h"
#include "effects/SoulstuffNode.h"
#include "effects/YUVSprite.h"
#include "effects/Yuv420RenderTexture.h"
#include "effects/Yuv444RenderTexture.h"
#include "effects/YuvTest.h"
#include "support/LogCapture.h"
#include "support/SomeFace.h"

namespace zv::test {

namespace {

constexpr unsigned char kGrey = 130;

struct Effect {
    const char* name;
    bool uniform;  ///< whether one colour stays one colour
    std::function<void(BeautyShapeChain&, const Size16&)> add;
};

/// One face that fills the picture, and one that is half outside.
struct Faces : kel_algorithm::AlgKelNN::Detector {
    explicit Faces(const Size16& size) : picture{static_cast<float>(size.x), static_cast<float>(size.y)} {}
    bool detect(kel_algorithm::AlgFaceResults& results) override {
        if (results.landmarks.size() != 2) {
            results.landmarks.resize(2);
        }
        const float radius = std::min(picture.x, picture.y) / 2.0F + 9.0F;
        placeFace(results.landmarks[0], {picture.x / 2.0F, picture.y / 2.0F}, radius);
        placeFace(results.landmarks[1], picture, radius);
        return true;
    }
    Vec2f picture;
};

template <class Node>
void addLook(BeautyShapeChain& chain, const Size16& size) {
    chain.setEffect(Node::create(size, nullptr, PXFORMAT_RGBA8888));
}

const Effect kEffects[] = {
    {"smoothing", true,
     [](auto& chain, const Size16& size) {
         chain.setSkinBuffing(SkinBuffingNode::create(size, nullptr, PXFORMAT_RGBA8888));
     }},
    {"hsv and face stages", true,
     [](auto& chain, const Size16& size) {
         chain.setHsv(HsvNode::create(size, nullptr, PXFORMAT_RGB888));
         chain.setFaceBuffingNode(FaceBuffingNode::create(size, nullptr, PXFORMAT_RGBA8888));
         chain.setFaceShape(FaceShapeNode::create(size, nullptr, PXFORMAT_RGB888));
         chain.getFaceBuffingNode()->setFaceBuffing(1.0F);
         chain.getFaceShape()->updateFaceShape(FACE_SHAPE_EYES, 1.0F);
         chain.getFaceShape()->updateFaceShape(FACE_SHAPE_SLIM, -1.0F);
         chain.getFaceShape()->setClipEdge(0.0F);
         ZVMediaEngine::getCurrent()->getAlgEngine()->getKelNN()->setDetector(std::make_shared<Faces>(size));
     }},
    {"whitening and a table", true,
     [](auto& chain, const Size16& size) {
         chain.setSkinWhiting(SkinWhitingNode::create(size, nullptr, PXFORMAT_RGB888));
         chain.setFilter(ColorFilter::create(size, nullptr, ZV_TEST_RES_DIR "/zv_res/lookups/film-64.png"));
     }},
    {"70s", false, addLook<Effect70SNode>},
    {"graffiti", false, addLook<GraffitiNode>},
    {"jitter", true, addLook<JitterNode>},
    {"soul", true, addLook<SoulstuffNode>},
};

const Size16 kSizes[] = {{1, 1},  {2, 1},       {1, 2},     {3, 3},    {17, 13},
                         {64, 1}, {4096, 2160}, {16384, 1}, {1, 16384}};

bool isHuge(const Size16& size) {
    return size.x * size.y > 1000000;
}

std::string named(const Size16& size) {
    return std::to_string(size.x) + " x " + std::to_string(size.y);
}

/// How far the channels of a picture's pixels, or only those of its first one, are from a value.
int spread(const Picture& picture, int red, int green, int blue) {
    int most = 0;
    for (std::size_t i = 0; i < picture.rgba.size(); i += 4) {
        most = std::max({most, std::abs(picture.rgba[i] - red), std::abs(picture.rgba[i + 1] - green),
                         std::abs(picture.rgba[i + 2] - blue)});
    }
    return most;
}

class Sizes : public BeautyTest {
protected:
    static Picture grey(const Size16& size) { return Picture(size.x, size.y, {kGrey, kGrey, kGrey, 255}); }

    static Texture2D* plane(const Size16& size, unsigned char value) {
        const unsigned char bytes[] = {value};
        auto* texture = new Texture2D;
        texture->autorelease();
        const unsigned int name = makePlane(1, 1, 1, bytes);
        EXPECT_TRUE(texture->init(name, size, PXFORMAT_R8, true));
        return texture;
    }
};

TEST_F(Sizes, EveryEffectDrawsEverySize) {
    for (const Size16& size : kSizes) {
        if (isHuge(size) && kind() != Kind::Core) {
            continue;
        }
        for (const Effect& effect : kEffects) {
            SCOPED_TRACE(named(size) + ", " + effect.name);
            const LogCapture logged;
            start(makeSprite(grey(size)), size);
            effect.add(*chain, size);
            for (int i = 0; i < (isHuge(size) ? 1 : 7); ++i) {
                frame();
            }
            const Picture out = output();
            ASSERT_EQ(out.width * out.height, size.x * size.y);
            if (effect.uniform) {
                const Pixel first = out.at(0, 0);
                EXPECT_LE(spread(out, first[0], first[1], first[2]), 1);
                EXPECT_NEAR(first[1], kGrey, 60);
            }
            for (std::size_t i = 3; i < out.rgba.size(); i += 4) {
                ASSERT_EQ(out.rgba[i], 255) << "a pixel that was not drawn: " << i / 4;
            }
            EXPECT_EQ(logged.text(), "");
        }
    }
}

TEST_F(Sizes, YuvGoesInAndComesOut) {
    for (const Size16& size : kSizes) {
        if (size.y > 2160) {
            continue;  // the packed target is half as high again, more than GL takes
        }
        SCOPED_TRACE(named(size));
        const Size16 half{static_cast<unsigned short>((size.x + 1) / 2),
                          static_cast<unsigned short>((size.y + 1) / 2)};
        for (const bool packed : {true, false}) {
            YUVSprite* sprite = YUVSprite::create(plane(size, 90), plane(half, 110), plane(half, 150));
            sprite->setColorConversion(COLOR_CONVERSION_601_VIDEO);
            RenderTexture* out = packed
                                     ? static_cast<RenderTexture*>(Yuv420RenderTexture::create(size, nullptr))
                                     : Yuv444RenderTexture::create(size, nullptr);
            media->init(sprite, size, out, false);
            frame();
            out->getOutData();
            const UniqueDataPtr<unsigned char> bytes = out->getOutData();
            const std::size_t last = std::size_t{size.x} * size.y * 3 - 1;
            EXPECT_NEAR(*bytes.get(0), 90, 2) << packed;
            EXPECT_NEAR(*bytes.get(packed ? size.x - 1u : last - 2), 90, 2) << packed;
            if (!packed) {
                EXPECT_NEAR(*bytes.get(last - 1), 110, 2);
                EXPECT_NEAR(*bytes.get(last), 150, 2);
            }
        }
    }
}

TEST_F(Sizes, EachFrameMayHaveAnother) {
    const Picture picture = Picture(8, 8, {200, 120, 40, 255});
    start(makeSprite(picture), {301, 203});
    chain->setSkinBuffing(SkinBuffingNode::create({301, 203}, nullptr, PXFORMAT_RGB888));
    chain->getSkinBuffing()->setSharpen(0.0F);
    chain->setHsv(HsvNode::create({301, 203}, nullptr, PXFORMAT_RGB888));
    for (int i = 0; i <= 40; ++i) {
        // Large, small, large again, and each side odd now and then.
        const int step = std::abs(20 - i);
        const Size16 size{static_cast<unsigned short>(1 + 15 * step),
                          static_cast<unsigned short>(3 + 10 * step)};
        media->resetSize(size);
        frame();
        const UniqueDataPtr<unsigned char> bytes = media->getLastRenderTexture()->getOutData();
        EXPECT_EQ(bytes.size(), std::uint64_t{size.x} * size.y * 4) << named(size);
        EXPECT_LE(spread(output(), 200, 120, 40), 1) << named(size);
    }
}

}  // namespace

}  // namespace zv::test
