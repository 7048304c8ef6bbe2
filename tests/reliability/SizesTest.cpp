// Every effect at every kind of size: a picture of one colour stays one, or at least is drawn all over.
#include <functional>

#include "algorithm/AlgEngine.h"
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

/// Finds one face that fills the picture, and one that is half outside.
std::shared_ptr<ToldDetector> faces(const Size16& size) {
    auto detector = std::make_shared<ToldDetector>();
    const Vec2f corner(size.x, size.y);
    const float radius = std::min(corner.x, corner.y) / 2.0F + 9.0F;
    detector->told.landmarks.resize(2);
    placeFace(detector->told.landmarks[0], {corner.x / 2.0F, corner.y / 2.0F}, radius);
    placeFace(detector->told.landmarks[1], corner, radius);
    return detector;
}

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
         ZVMediaEngine::getCurrent()->getAlgEngine()->getKelNN()->setDetector(faces(size));
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
