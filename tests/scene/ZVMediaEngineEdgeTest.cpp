// Turns of a host's life that are easy to get wrong.
#include <gtest/gtest.h>

#include "scene/MediaPipelineTest.h"

namespace zv::test {

namespace {

class ZVMediaEngineEdgeTest : public MediaPipelineTest {};

}  // namespace

TEST_F(ZVMediaEngineEdgeTest, AnOutputThatOnlyTheEngineHoldsSurvivesASecondInit) {
    media->init(makeSprite(picture), kSize, nullptr, false);
    frame();
    RenderTexture* output = media->getLastRenderTexture();
    media->init(media->getInputSprite(), kSize, output, false);
    frame();
    EXPECT_EQ(media->getLastRenderTexture(), output);
    EXPECT_EQ(pictureOf(output->getTexture(0)), picture);
}

TEST_F(ZVMediaEngineEdgeTest, AClearedChainLeavesNoStalePictureOverTheLiveOne) {
    media->init(makeSprite(picture), kSize, nullptr, false);
    RenderTextureChain* chain = makeChain(true, true);
    media->setRenderChain(chain);
    frame();
    chain->clearAllRenderTexture();
    const Picture live = Picture::noise(kWidth, kHeight, 21);
    media->getInputSprite()->setTexture(makeSprite(live)->getTexture(0),
                                        media->getInputSprite()->getTexture(0)->getRect());
    frame();
    EXPECT_EQ(pictureOf(media->getLastRenderTexture()->getTexture(0)), live);
}

TEST_F(ZVMediaEngineEdgeTest, TheScreenKeepsTheInputWhenTheLastRenderTextureIsSwitchedOff) {
    media->init(makeSprite(picture), kSize, nullptr, false);
    media->setRenderToScreen(true);
    EXPECT_EQ(media->getCurScene()->getFirstChild(), media->getInputSprite());
    media->setLastEnable(false);
    EXPECT_EQ(media->getCurScene()->getFirstChild(), media->getInputSprite());
    media->relink();
    EXPECT_EQ(media->getCurScene()->getChildRenSize(), 1U);
    EXPECT_EQ(media->getInputSprite()->getParent(), media->getCurScene());
}

}  // namespace zv::test
