#include "effects/ZVEffect.h"

#include <GL/glew.h>

#include "BeautyTest.h"
#include "gl/RenderState.h"

namespace zv::test {

using ZVEffectTest = BeautyTest;

TEST_F(ZVEffectTest, AForeignTextureIsShownThroughItsMatrixAndNeverDeleted) {
    const Picture picture = Picture::noise(16, 12, 3, false);
    Texture2D* owner = makeTexture(picture.flippedY());
    owner->retain();
    Sprite* sprite = ZVEffect::createOESSprite(owner->getName(), {16, 12});
    ASSERT_NE(sprite, nullptr);
    sprite->retain();
    start(sprite, {16, 12});
    frame();
    EXPECT_EQ(output(), picture) << "the matrix is the identity until it is set";
    Mat4 turned = Mat4::IDENTITY;
    turned.m[5] = -1.0F;
    turned.m[13] = 1.0F;
    media->getRenderState()->useProgram(sprite->getProgram());
    sprite->getProgram()->setUniform("u_textureMatrix", turned);
    frame();
    EXPECT_EQ(output(), picture.flippedY());

    media->init(nullptr, {16, 12}, nullptr, false);
    frame();
    sprite->release();
    EXPECT_EQ(glIsTexture(owner->getName()), GL_TRUE);
    owner->release();
    EXPECT_EQ(ZVEffect::createOESSprite(0, {4, 4})->getTexture(0)->getName(), 0U);
}

TEST_F(ZVEffectTest, TheFlippedTargetHoldsThePictureTheOtherWayRound) {
    const Picture picture = Picture::noise(16, 12);
    MutilRenderTexture* flipped = ZVEffect::createFlipYRenderTexture({16, 12}, nullptr);
    EXPECT_EQ(flipped->getPxFormat(), PXFORMAT_RGB888);
    flipped->getFrontScene()->addChild(makeSprite(picture));
    media->getRenderState()->begin();
    flipped->renderToTexture();
    EXPECT_EQ(pictureOf(flipped->getFrontRenderTexture()->getTexture(0)), picture);
    EXPECT_EQ(pictureOf(flipped->getTexture(0)), picture.flippedY());
}

}  // namespace zv::test
