#include "MediaPipelineTest.h"

namespace zv::test {

using Nodes = std::vector<Node*>;

class ZVMediaEngineLinksTest : public MediaPipelineTest {
protected:
    Sprite* init(Ref* output, bool toScreen) {
        Sprite* input = makeSprite(picture);
        media->init(input, kSize, output, toScreen);
        return input;
    }
    static RenderTexture* makeLast() { return RenderTexture::create(kSize, nullptr, PXFORMAT_RGBA8888); }
    Nodes inLast() { return lastScene()->getChildRen(); }
    Nodes onScreen() { return media->getCurScene()->getChildRen(); }
    /// Shows on the screen after having done so and taken it back.
    void toggleScreen() {
        for (const bool on : {true, false, true}) {
            media->setRenderToScreen(on);
        }
        frame();
    }
};

TEST_F(ZVMediaEngineLinksTest, ASecondInitReleasesTheFirstPipeline) {
    RenderTexture* output = makeLast();
    output->retain();
    Sprite* first = init(output, true);
    first->retain();
    media->setRenderChain(makeChain(true, true));
    media->addSticker(Node::create());
    frame();
    Sprite* second = makeSprite(Picture::noise(kWidth, kHeight, 9));
    media->init(second, kSize, output, true);
    frame();
    frame();
    EXPECT_EQ(first->getRefCount(), 1U);
    EXPECT_EQ(first->getParent(), nullptr);
    EXPECT_EQ(media->getRenderChain()->getInputNode(), second);
    EXPECT_TRUE(has(media->getCurScene(), output));
    EXPECT_TRUE(has(lastScene(), stickerRoot()));
    EXPECT_EQ(pictureOf(output->getTexture(0)), Picture::noise(kWidth, kHeight, 9));
    // The same input again stays alive although only the engine holds it.
    media->init(second, kSize, nullptr, false);
    EXPECT_EQ(media->getInputSprite(), second);
    frame();
    RenderTexture* own = media->getLastRenderTexture();
    media->init(second, kSize, own, false);
    frame();
    EXPECT_EQ(media->getLastRenderTexture(), own) << "so does an output";
    EXPECT_EQ(pictureOf(own->getTexture(0)), Picture::noise(kWidth, kHeight, 9));
    media->init(nullptr, kSize, nullptr, false);
    EXPECT_EQ(media->getRenderChain()->getInputNode(), nullptr);
    first->release();
    output->release();
}

TEST_F(ZVMediaEngineLinksTest, ChainIsLinkedBetweenInputAndOutputAndGivenBack) {
    Sprite* input = init(nullptr, false);
    RenderTextureChain* chain = makeChain(true, true);
    chain->retain();
    RenderTexture* shown = chain->getOutput();
    // Set, taken away, and the same one set again with the same input.
    for (int i = 0; i < 2; ++i) {
        media->setRenderChain(chain);
        media->setRenderChain(chain);
        EXPECT_EQ(input->getParent(), chain->getFirstEnableRenderTexture()->getFrontScene());
        EXPECT_EQ(inLast(), Nodes{shown});
        frame();
        EXPECT_EQ(output(), picture);
        EXPECT_EQ(chain->getRefCount(), 2U);
        media->removeRenderChain();
        chain->reAutoSetup();
        EXPECT_EQ(shown->getParent(), nullptr) << "it has no link to the pipeline any more";
        EXPECT_EQ(inLast(), Nodes{input});
        frame();
        EXPECT_EQ(output(), picture);
    }
    media->setRenderChain(chain);
    media->setRenderChain(makeChain(true, false));
    EXPECT_EQ(chain->getRefCount(), 1U);
    EXPECT_EQ(inLast(), Nodes{media->getRenderChain()->getOutput()});
    media->setRenderChain(nullptr);
    EXPECT_EQ(inLast(), Nodes{input});
    chain->release();

    // A cleared chain leaves no picture of its own over the live one.
    RenderTextureChain* cleared = makeChain(true, true);
    media->setRenderChain(cleared);
    frame();
    cleared->clearAllRenderTexture();
    const Picture live = Picture::noise(kWidth, kHeight, 21);
    input->setTexture(makeTexture(live), 0, nullptr);
    frame();
    EXPECT_EQ(output(), live);
}

TEST_F(ZVMediaEngineLinksTest, ValidityOfTheChainIsPickedUpAtTheNextUpdate) {
    Sprite* input = init(nullptr, false);
    RenderTextureChain* chain = makeChain(false, false);
    RenderTexture* only = makeMember(3);
    chain->add(only, false, false);
    // In the last round it replaces a valid chain in the frame in which it is enabled.
    for (int round = 0; round < 3; ++round) {
        if (round == 2) {
            chain->retain();
            media->setRenderChain(makeChain(true, true));
            frame();
        }
        media->setRenderChain(chain);
        EXPECT_FALSE(media->isRenderChainValid());
        EXPECT_EQ(inLast(), Nodes{input});
        chain->setRenderTextureEnable(only, true, false);
        EXPECT_TRUE(media->isRenderChainValid());
        EXPECT_EQ(inLast(), Nodes{input}) << "not before the update";
        frame();
        EXPECT_TRUE(has(only->getFrontScene(), input)) << round;
        EXPECT_EQ(inLast(), Nodes{only});
        chain->setRenderTextureEnable(only, false, false);
        frame();
        EXPECT_EQ(inLast(), Nodes{input}) << "the output of an invalid chain is taken away";
        EXPECT_EQ(only->getParent(), nullptr);
        EXPECT_EQ(only->getFrontScene()->getChildRenSize(), 0U);
    }
    chain->release();
}

TEST_F(ZVMediaEngineLinksTest, StickersHangAboveEverythingWhereThePictureIsMade) {
    init(nullptr, true);
    for (const char* name : {"a", "b"}) {
        Node* sticker = Node::create();
        sticker->setName(name);
        media->addSticker(sticker);
        EXPECT_EQ(media->getStickerByName(name), sticker);
    }
    EXPECT_EQ(stickerRoot()->getLocalZOrder(), 99999);
    // The rule in every state: the last render texture, else the screen's scene, else nowhere.
    EXPECT_EQ(stickerRoot()->getParent(), media->getCurScene());
    media->setRenderToScreen(false);
    EXPECT_EQ(stickerRoot()->getParent(), nullptr);
    RenderTexture* last = makeLast();
    media->setLastRenderTexture(last, true);
    EXPECT_EQ(stickerRoot()->getParent(), last->getScene());
    media->setLastEnable(false);
    EXPECT_EQ(stickerRoot()->getParent(), nullptr);
    media->setRenderToScreen(true);
    EXPECT_EQ(stickerRoot()->getParent(), media->getCurScene());
    media->setLastEnable(true);
    EXPECT_EQ(stickerRoot()->getParent(), last->getScene());
    EXPECT_EQ(inLast().size(), 2U) << "the input and the stickers, once each";
    media->removeStickerByName("a");
    EXPECT_EQ(media->getAllSticker(), Nodes{media->getStickerByName("b")});
    media->removeAllSticker();
    EXPECT_TRUE(media->getAllSticker().empty());
}

TEST_F(ZVMediaEngineLinksTest, WhatTheScreenShowsBesideThePipelineFollowsIt) {
    Sprite* input = init(nullptr, false);
    RenderTextureChain* chain = makeChain(true, true);
    media->setRenderChain(chain);
    toggleScreen();
    EXPECT_EQ(onScreen(), Nodes{chain->getOutput()});
    EXPECT_EQ(inLast(), Nodes{chain->getOutput()}) << "it keeps its place in the pipeline";
    EXPECT_EQ(chain->getOutput()->getParent(), lastScene());
    EXPECT_EQ(output(), picture);
    chain->setRenderTextureEnable(chain->getLastEnableRenderTexture(), false, false);
    chain->relinkAll();
    frame();
    EXPECT_EQ(onScreen(), Nodes{chain->getFirstEnableRenderTexture()});
    EXPECT_EQ(inLast(), onScreen());
    chain->setRenderTextureEnable(chain->getOutput(), false, false);
    frame();
    EXPECT_EQ(onScreen(), Nodes{input});
    media->removeRenderChain();
    frame();
    EXPECT_EQ(onScreen(), Nodes{input});
    EXPECT_EQ(inLast(), onScreen());
    EXPECT_EQ(input->getParent(), lastScene());
    EXPECT_EQ(output(), picture);
    // Another scene of the host's takes the parent from what it listed; links are put right all the same.
    media->setCurScene(Scene::create());
    media->relink();
    EXPECT_EQ(inLast(), Nodes{input});

    // A disabled last render texture is the node itself; enabled, it replaces the input shown beside it.
    media->setRenderToScreen(false);
    media->setLastEnable(false);
    toggleScreen();
    EXPECT_TRUE(has(media->getCurScene(), media->getLastRenderTexture()));
    media->setLastEnable(true);
    EXPECT_EQ(onScreen(), Nodes{media->getLastRenderTexture()});

    // What was shown beside the pipeline goes with it.
    Sprite* beside = init(nullptr, false);
    toggleScreen();
    beside->retain();
    media->init(nullptr, kSize, nullptr, false);
    frame();
    EXPECT_EQ(beside->getRefCount(), 1U);
    beside->release();

    // The screen alone: nothing to add but the input that is there.
    input = init(nullptr, true);
    media->setRenderToScreen(false);
    toggleScreen();
    EXPECT_EQ(onScreen(), Nodes{input});

    // The screen keeps the input when the last render texture is switched off.
    input = init(nullptr, false);
    media->setRenderToScreen(true);
    media->setLastEnable(false);
    EXPECT_EQ(onScreen(), Nodes{input});
    media->relink();
    EXPECT_EQ(onScreen(), Nodes{input});
    EXPECT_EQ(input->getParent(), media->getCurScene());
}

TEST_F(ZVMediaEngineLinksTest, LastRenderTextureMayChangeAndGo) {
    Sprite* input = init(nullptr, true);
    RenderTexture* a = makeLast();
    RenderTexture* b = makeLast();
    a->retain();
    media->setLastRenderTexture(a, true);
    media->setLastRenderTexture(a, false);
    EXPECT_TRUE(media->isLastEnable()) << "the same one again changes nothing";
    EXPECT_TRUE(has(a->getScene(), input));
    media->setLastRenderTexture(b, true);
    EXPECT_EQ(a->getParent(), nullptr);
    EXPECT_EQ(onScreen(), Nodes{b});
    EXPECT_TRUE(has(b->getScene(), input));
    RenderTextureChain* chain = makeChain(true, false);
    RenderTexture* only = chain->getOutput();
    media->setRenderChain(chain);
    media->setLastRenderTexture(nullptr, true);
    EXPECT_EQ(onScreen(), Nodes{only});
    media->setLastRenderTexture(a, false);
    EXPECT_EQ(onScreen(), Nodes{only});
    media->setLastEnable(true);
    EXPECT_EQ(onScreen(), Nodes{a});
    EXPECT_TRUE(has(a->getScene(), only));
    // An invalid chain must not keep the scene of a render texture that goes.
    chain->setRenderTextureEnable(only, false, false);
    media->setLastRenderTexture(nullptr, false);
    a->release();
    chain->setRenderTextureEnable(only, true, false);
    frame();
    EXPECT_EQ(onScreen(), Nodes{only});
}

}  // namespace zv::test
