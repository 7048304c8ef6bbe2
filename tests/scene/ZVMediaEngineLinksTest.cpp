#include "MediaPipelineTest.h"

namespace zv::test {

using ZVMediaEngineLinksTest = MediaPipelineTest;

TEST_F(ZVMediaEngineLinksTest, ASecondInitReleasesTheFirstPipeline) {
    Sprite* first = makeSprite(picture);
    RenderTexture* output = RenderTexture::create(kSize, nullptr, PXFORMAT_RGBA8888);
    first->retain();
    output->retain();
    media->init(first, kSize, output, true);
    media->setRenderChain(makeChain(true, true));
    media->addSticker(Node::create());
    frame();
    EXPECT_GT(first->getRefCount(), 1U);

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
    media->init(nullptr, kSize, nullptr, false);
    EXPECT_EQ(media->getRenderChain()->getInputNode(), nullptr);
    first->release();
    output->release();
}

TEST_F(ZVMediaEngineLinksTest, ChainIsLinkedBetweenInputAndOutputAndGivenBack) {
    Sprite* input = makeSprite(picture);
    media->init(input, kSize, nullptr, false);
    EXPECT_TRUE(has(lastScene(), input));
    RenderTextureChain* chain = makeChain(true, true);
    media->setRenderChain(chain);
    media->setRenderChain(chain);
    EXPECT_EQ(chain->getRefCount(), 2U);
    EXPECT_TRUE(media->isRenderChainValid());
    EXPECT_EQ(input->getParent(), chain->getFirstEnableRenderTexture()->getFrontScene());
    EXPECT_TRUE(has(lastScene(), chain->getLastEnableRenderTexture()));
    EXPECT_EQ(lastScene()->getChildRenSize(), 1U);
    frame();
    EXPECT_EQ(output(), picture);

    chain->retain();
    RenderTexture* shown = chain->getOutput();
    media->removeRenderChain();
    EXPECT_EQ(media->getRenderChain(), nullptr);
    EXPECT_EQ(shown->getParent(), nullptr);
    EXPECT_TRUE(has(lastScene(), input));
    chain->reAutoSetup();
    EXPECT_EQ(shown->getParent(), nullptr) << "it has no link to the pipeline any more";
    EXPECT_EQ(lastScene()->getChildRenSize(), 1U);
    frame();
    EXPECT_EQ(output(), picture);
    media->setRenderChain(chain);
    frame();
    EXPECT_EQ(output(), picture) << "the same chain with the same input a second time";
    EXPECT_EQ(input->getParent(), chain->getFirstEnableRenderTexture()->getFrontScene());
    media->setRenderChain(makeChain(true, false));
    EXPECT_EQ(chain->getRefCount(), 1U);
    EXPECT_EQ(lastScene()->getChildRen(), std::vector<Node*>{media->getRenderChain()->getOutput()});
    media->setRenderChain(nullptr);
    EXPECT_EQ(lastScene()->getChildRen(), std::vector<Node*>{input});
    chain->release();
}

TEST_F(ZVMediaEngineLinksTest, ValidityOfTheChainIsPickedUpAtTheNextUpdate) {
    Sprite* input = makeSprite(picture);
    media->init(input, kSize, nullptr, false);
    RenderTextureChain* chain = makeChain(false, false);
    RenderTexture* first = makeMember(3);
    first->setName("only");
    chain->add(first, false, false);
    media->setRenderChain(chain);
    EXPECT_FALSE(media->isRenderChainValid());
    EXPECT_TRUE(has(lastScene(), input));

    for (int round = 0; round < 3; ++round) {
        chain->setRenderTextureEnable("only", true, false);
        EXPECT_TRUE(media->isRenderChainValid());
        EXPECT_TRUE(has(lastScene(), input)) << "not before the update";
        frame();
        EXPECT_TRUE(has(first->getFrontScene(), input)) << round;
        EXPECT_TRUE(has(lastScene(), first));
        EXPECT_EQ(lastScene()->getChildRenSize(), 1U);
        chain->setRenderTextureEnable("only", false, false);
        frame();
        EXPECT_TRUE(has(lastScene(), input));
        EXPECT_EQ(lastScene()->getChildRenSize(), 1U) << "the output of an invalid chain is taken away";
        EXPECT_EQ(first->getParent(), nullptr);
        EXPECT_EQ(first->getFrontScene()->getChildRenSize(), 0U);
    }

    // Enabled again in the same frame in which it replaces a valid one.
    media->setRenderChain(makeChain(true, true));
    frame();
    chain = makeChain(false, false);
    RenderTexture* late = makeMember(3);
    chain->add(late, false, false);
    media->setRenderChain(chain);
    chain->setRenderTextureEnable(late, true, false);
    frame();
    EXPECT_TRUE(has(late->getFrontScene(), input));
    EXPECT_EQ(lastScene()->getChildRen(), std::vector<Node*>{late});
}

TEST_F(ZVMediaEngineLinksTest, StickersHangAboveEverythingWhereThePictureIsMade) {
    media->init(makeSprite(picture), kSize, nullptr, true);
    Node* a = Node::create();
    Node* b = Node::create();
    a->setName("a");
    b->setName("b");
    media->addSticker(a);
    media->addSticker(b);
    EXPECT_EQ(stickerRoot()->getLocalZOrder(), 99999);
    EXPECT_EQ(stickerRoot()->getParent(), media->getCurScene());
    EXPECT_EQ(media->getStickerByName("b"), b);
    EXPECT_EQ(media->getStickerByName("c"), nullptr);

    // The rule in every state: the last render texture, else the screen's scene, else nowhere.
    media->setRenderToScreen(false);
    EXPECT_EQ(stickerRoot()->getParent(), nullptr);
    RenderTexture* last = RenderTexture::create(kSize, nullptr, PXFORMAT_RGBA8888);
    media->setLastRenderTexture(last, true);
    EXPECT_EQ(stickerRoot()->getParent(), last->getScene());
    media->setLastEnable(false);
    EXPECT_EQ(stickerRoot()->getParent(), nullptr);
    media->setRenderToScreen(true);
    EXPECT_EQ(stickerRoot()->getParent(), media->getCurScene());
    media->setLastEnable(true);
    EXPECT_EQ(stickerRoot()->getParent(), last->getScene());
    EXPECT_EQ(last->getScene()->getChildRen().size(), 2U) << "the input and the stickers, once each";

    media->removeStickerByName("a");
    EXPECT_EQ(media->getAllSticker(), std::vector<Node*>{b});
    media->removeAllSticker();
    EXPECT_TRUE(media->getAllSticker().empty());
}

TEST_F(ZVMediaEngineLinksTest, RenderToScreenAddsOneNodeOnce) {
    Sprite* input = makeSprite(picture);
    media->init(input, kSize, nullptr, false);
    media->setRenderChain(makeChain(true, true));
    RenderTextureChain* chain = media->getRenderChain();
    Scene* scene = media->getCurScene();
    const auto toggle = [&] {
        for (int i = 0; i < 3; ++i) {
            media->setRenderToScreen(true);
            media->setRenderToScreen(false);
        }
        media->setRenderToScreen(true);
        frame();
    };
    toggle();
    EXPECT_EQ(scene->getChildRen(), std::vector<Node*>{chain->getOutput()});
    EXPECT_TRUE(has(lastScene(), chain->getOutput())) << "it keeps its place in the pipeline";
    EXPECT_EQ(chain->getOutput()->getParent(), lastScene());
    EXPECT_EQ(output(), picture);

    // What the screen shows follows the pipeline.
    chain->setRenderTextureEnable(chain->getLastEnableRenderTexture(), false, false);
    chain->relinkAll();
    frame();
    EXPECT_TRUE(has(lastScene(), chain->getOutput()));
    EXPECT_EQ(scene->getChildRen(), std::vector<Node*>{chain->getFirstEnableRenderTexture()});
    EXPECT_EQ(output(), picture);
    chain->setRenderTextureEnable(chain->getOutput(), false, false);
    frame();
    EXPECT_EQ(scene->getChildRen(), std::vector<Node*>{input});
    media->removeRenderChain();
    frame();
    EXPECT_EQ(scene->getChildRen(), std::vector<Node*>{input});
    EXPECT_EQ(input->getParent(), lastScene());
    EXPECT_TRUE(has(lastScene(), input));
    EXPECT_EQ(lastScene()->getChildRenSize(), 1U);
    EXPECT_EQ(output(), picture);

    // Another scene of the host's takes the parent from what it listed; links are put right all the same.
    media->setCurScene(Scene::create());
    scene = media->getCurScene();
    media->relink();
    EXPECT_EQ(lastScene()->getChildRen(), std::vector<Node*>{input});

    // A disabled last render texture is the node itself; enabled, it replaces the input shown beside it.
    media->setRenderToScreen(false);
    media->setLastEnable(false);
    toggle();
    EXPECT_TRUE(has(scene, media->getLastRenderTexture()));
    media->setLastEnable(true);
    EXPECT_EQ(scene->getChildRen(), std::vector<Node*>{media->getLastRenderTexture()});
    toggle();
    EXPECT_EQ(scene->getChildRen(), std::vector<Node*>{media->getLastRenderTexture()});

    // What was shown beside the pipeline goes with it.
    media->init(makeSprite(picture), kSize, nullptr, false);
    toggle();
    Sprite* beside = media->getInputSprite();
    beside->retain();
    media->init(nullptr, kSize, nullptr, false);
    frame();
    EXPECT_EQ(beside->getRefCount(), 1U);
    beside->release();

    // The screen alone: nothing to add but the input that is there.
    media->init(makeSprite(picture), kSize, nullptr, true);
    media->setRenderToScreen(false);
    toggle();
    EXPECT_EQ(media->getCurScene()->getChildRen(), std::vector<Node*>{media->getInputSprite()});
}

TEST_F(ZVMediaEngineLinksTest, LastRenderTextureMayChangeAndGo) {
    Sprite* input = makeSprite(picture);
    media->init(input, kSize, nullptr, true);
    Scene* scene = media->getCurScene();
    RenderTexture* a = RenderTexture::create(kSize, nullptr, PXFORMAT_RGBA8888);
    RenderTexture* b = RenderTexture::create(kSize, nullptr, PXFORMAT_RGBA8888);
    a->retain();
    media->setLastRenderTexture(a, true);
    media->setLastRenderTexture(a, false);
    EXPECT_TRUE(media->isLastEnable()) << "the same one again changes nothing";
    EXPECT_TRUE(has(scene, a) && has(a->getScene(), input));
    media->setLastRenderTexture(b, true);
    EXPECT_EQ(a->getParent(), nullptr);
    EXPECT_EQ(scene->getChildRen(), std::vector<Node*>{b});
    EXPECT_TRUE(has(b->getScene(), input));
    media->setRenderChain(makeChain(true, false));
    media->setLastRenderTexture(nullptr, true);
    EXPECT_EQ(scene->getChildRen(), std::vector<Node*>{media->getRenderChain()->getOutput()});
    media->setLastRenderTexture(a, false);
    EXPECT_EQ(scene->getChildRen(), std::vector<Node*>{media->getRenderChain()->getOutput()});
    EXPECT_FALSE(media->isLastEnable());
    frame();
    media->setLastEnable(true);
    EXPECT_EQ(scene->getChildRen(), std::vector<Node*>{a});
    EXPECT_TRUE(has(a->getScene(), media->getRenderChain()->getOutput()));
    // An invalid chain must not keep the scene of a render texture that goes.
    RenderTextureChain* chain = media->getRenderChain();
    RenderTexture* only = chain->getOutput();
    chain->setRenderTextureEnable(only, false, false);
    media->setLastRenderTexture(nullptr, false);
    a->release();
    chain->setRenderTextureEnable(only, true, false);
    frame();
    EXPECT_EQ(scene->getChildRen(), std::vector<Node*>{only});
}

}  // namespace zv::test
