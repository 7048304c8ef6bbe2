#include "YuvTest.h"
#include "effects/YUVSprite.h"
#include "effects/Yuv420RenderTexture.h"
#include "effects/Yuv444RenderTexture.h"
#include "effects/YuvRenderTexture.h"
#include "gl/FrameBuffer.h"
#include "gl/RenderState.h"
#include "scene/MediaPipelineTest.h"
#include "support/AllocationCounter.h"

namespace zv::test {

using YuvNodes = BeautyTest;
using Numbers = std::vector<long long>;

TEST_F(YuvNodes, FramesFlowThroughTheBeautyChainWithoutWaste) {
    unsigned char bytes[3][38 * 21];
    unsigned names[3];
    const Size16 sizes[3] = {{38, 21}, {19, 10}, {19, 10}};
    for (int i = 0; i < 3; ++i) {
        for (int at = 0; at < 38 * 21; ++at)
            bytes[i][at] = static_cast<unsigned char>((i ? 120 : 70) + 15 * i + at % sizes[i].x);
        names[i] = makePlane(sizes[i].x, sizes[i].y, 1, bytes[i]);
    }
    SkinBuffingNode* skin = startSkin(YUVSprite::create(names[0], names[1], names[2], sizes[0]), sizes[0]);
    skin->setSkinBuffing(0);
    skin->setSharpen(0);
    auto* node = Yuv420RenderTexture::create(sizes[0], nullptr);
    node->setColorConversion(COLOR_CONVERSION_601_FULL);
    media->setLastRenderTexture(node, true);
    UniqueDataPtr<unsigned char> out(std::size_t{4} * 10 * 32);
    const auto wholeFrame = [&] {
        frame();
        node->getOutData(out);
    };
    for (int i = 0; i < 3; ++i)
        wholeFrame();
    // A step each for the way to RGB, for the way back and for a filter that works in bytes.
    for (int i = 0; i < 38 * 21; ++i)
        ASSERT_NEAR(out.get(0)[i % 38 + i / 38 * 40], bytes[0][i], 3) << i;
    for (int i = 0; i < 2 * 190; ++i)
        ASSERT_NEAR(out.get(0)[40 * 21 + i], bytes[1 + i / 190][i % 190], 3) << i;

    GLCallRecorder recorder;
    const AllocationCounter allocated;
    wholeFrame();
    const std::size_t allocations = allocated.allocations();
    EXPECT_EQ(allocations, 0U);
    EXPECT_EQ(recorder.countObjectCalls() + recorder.countPrefix("glUniform") +
                  recorder.countPrefix("glGetU") + recorder.countPrefix("glTexImage"),
              0U)
        << recorder.summary();
    Numbers reads;
    for (const GLCall& call : recorder.callsOf("glReadPixels"))
        for (const std::size_t argument : {0U, 1U, 2U, 3U, 6U})
            reads.push_back(call.integer(argument));
    EXPECT_EQ(reads, (Numbers{0, 10, 10, 21, 0, 0, 0, 10, 10, 4 * 10 * 21})) << "chroma right behind luma";
    recorder.clear();
    for (const int value : {2, 0, 4, 3, 3})
        node->setColorConversion(static_cast<ColorConversion>(value));
    EXPECT_EQ(recorder.countPrefix("glUniform"), 2U) << "new for either program once";
    media->resetSize({76, 42});
    EXPECT_EQ(recorder.count("glUniform1f"), 4U) << "the size of a pixel, to either program";
    media->init(nullptr, kSize, nullptr, true);
    glDeleteTextures(3, names);
}

TEST_F(YuvNodes, ASpriteStartsAtFullRangeAndSendsOnlyWhatIsNew) {
    GLCallRecorder recorder;
    auto* sprite = YUVSprite::create(11, 12, {1280, 720});
    for (const int value : {3, 3, 0, 4})
        sprite->setColorConversion(static_cast<ColorConversion>(value));
    const std::vector<GLCall> sent = recorder.callsOf("glUniformMatrix3fv");
    ASSERT_EQ(sent.size(), 2U);
    EXPECT_EQ(sent[0].values, (std::vector<float>{1, 1, 1, 0, -0.343F, 1.765F, 1.4F, -0.711F, 0}));
    Texture2D* luma = sprite->getTexture(0);
    Texture2D* chroma = sprite->getTexture(1);
    EXPECT_TRUE(luma->getPxFormat() == PXFORMAT_GRAY8 && chroma->getPxFormat() == PXFORMAT_GRAY_ALPHA88);
    EXPECT_EQ(chroma->getSize(), (Size16{640, 360}));
    recorder.clear();
    sprite->updateTextureId(11, 12);
    sprite->updateTextureId(13, 14);
    EXPECT_EQ(recorder.total(), 0U) << "names that were lent are exchanged, not deleted";
    EXPECT_TRUE(luma->getName() == 13 && chroma->getName() == 14);

    auto* other = YUVSprite::create(21, 22, 23, {38, 21});
    Texture2D* planes[3] = {other->getTexture(0), other->getTexture(1), other->getTexture(2)};
    sprite->updateTexture(planes[0], nullptr, planes[2]);
    EXPECT_EQ(sprite->getTexture(0), luma);
    RefHolder<YUVSprite> held;
    held.set(sprite);
    recorder.clear();
    for (int i = 0; i < 2; ++i) {
        sprite->updateTexture(planes[0], planes[1], planes[2]);
        drainPool();  // the sprite alone keeps the planes now
    }
    EXPECT_EQ(sprite->getValidTextureCount(), 3);
    EXPECT_EQ(sprite->getContentSize(), (TVec<2, float>(38, 21)));
    ASSERT_EQ(recorder.count("glUniform2fv"), 1U);
    EXPECT_EQ(recorder.callsOf("glUniform2fv")[0].values, (std::vector<float>{1, 21.0F / 20}));
    EXPECT_TRUE(!YUVSprite::create(planes[0], nullptr) && !YUVSprite::create(nullptr, planes[0], planes[1]));
}

struct CountingInput : Counting<RenderTexture> {
    using RenderTexture::init;
};

TEST_F(YuvNodes, TwoTexturesTakeTurnsAndLeaveTheInputAsItWas) {
    const Picture picture = Picture::noise(8, 6), poison(8, 6, {1, 2, 3, 4});
    Texture2D* targets[4];
    for (Texture2D*& target : targets)
        target = makeTexture(poison);
    auto* source = createRef<CountingInput>([](CountingInput& t) {
        return t.init({8, 6}, nullptr, PXFORMAT_RGB888);
    });
    source->getScene()->addChild(makeSprite(picture));
    source->setBlendFunc(BlendFunc::ADDITIVE);
    const Program* program = source->getProgram();
    auto* node =
        YuvRenderTexture::create(source, targets[0]->getName(), targets[1]->getName(), {8, 6}, nullptr);
    const FrameBuffer* frameBuffer = node->getFrameBuffer();
    EXPECT_EQ(source->getFrameBuffer(), frameBuffer);
    RenderTexture* outer = RenderTexture::create({8, 6}, nullptr, PXFORMAT_RGBA8888);
    outer->getScene()->addChild(node);
    outer->update(1);
    EXPECT_EQ(source->updates, 1);
    RenderState::getCurrent()->begin();
    node->renderToTexture();
    const Picture luma = pictureOf(targets[0]);
    EXPECT_NEAR(luma.at(3, 2)[0], yuvOf(0, kStandards[0], picture, 3, 2), 0.51);
    EXPECT_TRUE(source->getProgram() == program && source->getBlendFunc() == BlendFunc::ADDITIVE);
    node->updateTextureId(targets[2]->getName(), targets[3]->getName());
    targets[0]->updateWithData(poison.rgba.data(), poison.rgba.size());
    node->renderToTexture();
    EXPECT_EQ(node->getTextureId(), std::pair(targets[2]->getName(), targets[3]->getName()));
    EXPECT_TRUE(pictureOf(targets[2]) == luma && pictureOf(targets[0]) == poison);
    source->setBlendFunc(BlendFunc::DISABLE);
    outer->renderToTexture();
    expectSame(pictureOf(outer->getTexture(0)), picture, "yuv-shows-its-input");
    node->resetSize({4, 4});
    EXPECT_EQ(source->getSize(), (Size16{4, 4}));
    node->updateTextureId(targets[0]->getName(), targets[1]->getName());
    EXPECT_EQ(node->getTexture(0)->getSize(), (Size16{4, 4}));
}

// On a target of the same size.
TEST_F(YuvNodes, DrawnAsNodesTheyShowWhatTheyHold) {
    RenderState::getCurrent()->begin();
    RenderTexture* external = Yuv420RenderTexture::create(kSize, nullptr, static_cast<int>(screen));
    for (RenderTexture* node :
         std::initializer_list<RenderTexture*>{Yuv420RenderTexture::create(kSize, nullptr),
                                               Yuv444RenderTexture::create(kSize, nullptr), external}) {
        node->getFrontScene()->addChild(makeSprite(Picture::noise(kWidth, kHeight)));
        node->renderToTexture();
        const Picture under(node->getTexture(0)->getSize().x, node->getTexture(0)->getSize().y, {9, 8, 7, 6});
        RenderTexture* outer = RenderTexture::create(sizeOf(under), nullptr, PXFORMAT_RGBA8888);
        outer->getScene()->addChild(makeSprite(under));
        outer->getScene()->addChild(node);
        outer->renderToTexture();
        expectSame(pictureOf(outer->getTexture(0)), node == external ? under : pictureOf(node->getTexture(0)),
                   "yuv-as-node");
    }
}

}  // namespace zv::test
