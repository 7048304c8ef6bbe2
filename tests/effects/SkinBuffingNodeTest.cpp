#include "BeautyTest.h"
#include "gl/FrameBuffer.h"
#include "gl/RenderState.h"

namespace zv::test {

using SkinBuffingNodeTest = BeautyTest;

TEST_F(SkinBuffingNodeTest, PassesAreHalfSizeAndTheOwnTargetIsWholeAfterAResize) {
    const auto expectSizes = [](SkinBuffingNode* skin, const Size16& half, const Size16& own) {
        std::vector<RenderTexture*> all = nestedIn(skin);
        ASSERT_EQ(all.size(), 4U);
        all.push_back(skin);
        for (RenderTexture* pass : all) {
            const Size16 size = pass == skin ? own : half;
            EXPECT_EQ(pass->getSize(), size);
            EXPECT_EQ(pass->getTexture(0)->getSize(), size);
            EXPECT_EQ(pass->getScene()->getViewPort(), ViewPort(0, 0, size.x, size.y));
        }
    };
    const Size16 rows[][2] = {
        {{721, 481}, {360, 240}}, {{1, 1}, {1, 1}}, {{2, 5}, {1, 2}}, {{1280, 720}, {640, 360}}};
    for (const auto& [size, half] : rows) {
        SCOPED_TRACE(::testing::Message() << size.x << " x " << size.y);
        SkinBuffingNode* skin = SkinBuffingNode::create(size, media->getFrameBuffer(), PXFORMAT_RGB888);
        expectSizes(skin, half, half);
        skin->resetSize({64, 48});
        expectSizes(skin, {32, 24}, {64, 48});
        skin->resetSize(size);
        expectSizes(skin, half, size);
    }
}

TEST_F(SkinBuffingNodeTest, StepsTexelsAndStrengthsReachTheirPrograms) {
    SkinBuffingNode* skin = startSkin(Picture::noise(721, 481));
    const auto passes = nestedIn(skin);  // second blur, its input, mean filter, first blur
    const auto expectSent = [&](float vertical, float strength, float sharpen, const Size16& size) {
        frame();
        for (Sprite* sprite : {static_cast<Sprite*>(passes[0]), static_cast<Sprite*>(passes[3]),
                               static_cast<Sprite*>(passes[1]), input}) {
            const bool across = sprite == passes[0] || sprite == passes[3];
            EXPECT_NEAR(valueInGL(*sprite->getProgram(), "texelWidthOffset"), across ? 1 / 240.0 : 0, 1e-7);
            EXPECT_NEAR(valueInGL(*sprite->getProgram(), "texelHeightOffset"), across ? 0 : vertical, 1e-7);
        }
        EXPECT_EQ(valueInGL(*skin->getProgram(), "blurAlpha"), strength);
        EXPECT_EQ(valueInGL(*skin->getProgram(), "u_sharpen"), sharpen);
        EXPECT_FLOAT_EQ(valueInGL(*skin->getProgram(), "widthOffset"), 1.0F / size.x);
        EXPECT_FLOAT_EQ(valueInGL(*skin->getProgram(), "heightOffset"), 1.0F / size.y);
    };
    expectSent(0.00625F, 0.6F, 1.0F, {721, 481});
    media->resetSize({1280, 720});
    skin->setSkinBuffing(7.5F);
    skin->setSharpen(-2.0F);
    expectSent(0.0074074F, 7.5F, -2.0F, {1280, 720});  // values go out as given
    EXPECT_EQ(skin->getSkinBuffing(), 7.5F);
    EXPECT_EQ(skin->getSharpen(), -2.0F);
}

TEST_F(SkinBuffingNodeTest, FollowsTheInputsTextureCoordinatesAndEnd) {
    const Picture first = Picture::noise(64, 48), second = Picture::noise(64, 48, 7);
    SkinBuffingNode* skin = startSkin(first);
    skin->setSkinBuffing(0.0F);
    const auto expectShown = [&](const Picture& picture) {
        frame();
        expectNear(output(), picture, 1, 0.01, "skin-input");
    };
    expectShown(first);
    input->setTexture(makeTexture(second), 0, nullptr);
    expectShown(second);
    input->setFlipY(true);
    expectShown(second.flippedY());
    skin->setInputNode(nullptr);
    frame();
    EXPECT_EQ(input->getProgram(), plain);
    auto* other = makeSprite(first);
    skin->setInputNode(other);
    expectShown(first);
    skin->getFrontScene()->removeChild(other);
    drainPool();
    EXPECT_EQ(skin->getInputNode(), nullptr) << "a destroyed input is forgotten";
    skin->updateInputTexCoords();
    frame();
}

using MeanBlurEffectTest = BeautyTest;

TEST_F(MeanBlurEffectTest, TakesASpriteAsChildAndARenderTextureAsInnerTarget) {
    MeanBlurEffect* blur = MeanBlurEffect::create({32, 24}, nullptr);
    Sprite* sprite = makeSprite(Picture(8, 8));
    sprite->retain();
    Program* own = sprite->getProgram();
    Node* elsewhere = Node::create();
    elsewhere->addChild(sprite);
    blur->setInput(sprite);
    blur->setInput(sprite);
    EXPECT_EQ(elsewhere->getChildRenSize(), 0U);
    EXPECT_EQ(blur->getScene()->getAllChild(), std::vector<Node*>{sprite});
    RenderTexture* target = RenderTexture::create({32, 24}, nullptr, PXFORMAT_RGB888);
    blur->setInput(target);
    EXPECT_EQ(sprite->getProgram(), own);
    EXPECT_EQ(blur->getFrontRenderTexture(), target);
    EXPECT_EQ(blur->getScene()->getAllChild(), std::vector<Node*>{target});
    MeanBlurEffect::create(target, {16, 12}, nullptr)->setInput(nullptr);
    EXPECT_EQ(blur->getInput(), nullptr) << "an input feeds one blur";
    EXPECT_EQ(target->getProgram(), own);

    Program* hosts = Program::createWithFile("ZvShaderTexturePosition.vert", "ZvShaderTexturePosition.frag");
    blur->setInput(sprite);
    sprite->setProgram(hosts);
    blur->setInput(nullptr);
    EXPECT_EQ(sprite->getProgram(), hosts) << "what it was given meanwhile stays";
    blur->setInput(sprite);
    drainPool();
    EXPECT_EQ(sprite->getProgram(), hosts) << "and comes back with the end of the effect";
    sprite->release();
}

// A box of 3 steps to each side, a step being 2 pixels here both ways: a dot spreads to the same extent in x
// and y and keeps its light up to rounding.
TEST_F(MeanBlurEffectTest, SpreadsEquallyInBothDirections) {
    Picture black(480, 240, {0, 0, 0, 255});
    for (int i = 0; i < 9; ++i)
        black.set(239 + i % 3, 119 + i / 3, {255, 255, 255, 255});
    MeanBlurEffect* blur = MeanBlurEffect::create(makeSprite(black), sizeOf(black), nullptr);
    RenderTexture* target = RenderTexture::create(sizeOf(black), nullptr, PXFORMAT_RGB888);
    target->getScene()->addChild(blur);
    media->getRenderState()->begin();
    blur->renderToTexture();
    target->renderToTexture();
    const Picture dot = pictureOf(target->getTexture(0));
    int light = 0;
    for (int y = -8; y <= 8; ++y) {
        for (int x = -8; x <= 8; ++x) {
            const int here = dot.at(240 + x, 120 + y)[0];
            light += here;
            EXPECT_NEAR(here, dot.at(240 + y, 120 + x)[0], 1) << x << ", " << y;
            EXPECT_EQ(here > 0, std::abs(x) <= 6 && std::abs(y) <= 6) << x << ", " << y;
        }
    }
    EXPECT_NEAR(light, 9 * 255, 9 * 255 * 0.1);
}

}  // namespace zv::test
