#include "scene/ZVMediaEngine.h"

#include <GL/glew.h>

#include "MediaPipelineTest.h"
#include "algorithm/AlgEngine.h"
#include "algorithm/AlgGoods.h"
#include "gl/FrameBuffer.h"
#include "gl/RenderState.h"
#include "gl/RenderTargetTexture.h"
#include "support/AllocationCounter.h"
#include "support/GLCallRecorder.h"

namespace zv::test {

namespace {

struct OpenMediaEngine : ZVMediaEngine {
    using ZVMediaEngine::getFramesCounted;
    using ZVMediaEngine::setLastRenderTarget;
    using ZVMediaEngine::setSplitScreen;
    using ZVMediaEngine::ZVMediaEngine;
};

}  // namespace

using ZVMediaEngineTest = MediaPipelineTest;

TEST_F(ZVMediaEngineTest, StartsWithTheDocumentedDefaults) {
    EXPECT_EQ(ZVMediaEngine::getCurrent(), media);
    EXPECT_EQ(media->getInputSprite(), nullptr);
    EXPECT_EQ(media->getLastRenderTexture(), nullptr);
    EXPECT_EQ(media->getRenderChain(), nullptr);
    EXPECT_FALSE(media->isLastEnable() || media->isRenderToScreen() || media->isRenderChainValid());
    EXPECT_FALSE(media->isKeepHostState());
    EXPECT_TRUE(media->isFinishAfterRender());
    EXPECT_TRUE(media->getAllSticker().empty());
    EXPECT_EQ(media->getStickerByName("a"), nullptr);
    // Nothing to do yet, and nothing to trip over.
    media->removeAllSticker();
    media->removeStickerByName("a");
    media->removeRenderChain();
    media->setLastEnable(true);
    media->setRenderToScreen(true);
    media->addSticker(nullptr);
    media->relink();
    frame();
    EXPECT_FALSE(media->isLastEnable());
}

TEST_F(ZVMediaEngineTest, OutputDecidesFrameBufferAndLastRenderTexture) {
    RenderTexture* own = RenderTexture::create({8, 8}, nullptr, PXFORMAT_RGBA8888);
    ASSERT_TRUE(media->init(makeSprite(picture), kSize, own, false));
    EXPECT_EQ(media->getLastRenderTexture(), own);
    EXPECT_EQ(media->getFrameBuffer(), own->getFrameBuffer());

    Texture2D* texture = makeTexture(Picture(4, 4));
    ASSERT_TRUE(media->init(makeSprite(picture), kSize, texture, false));
    EXPECT_EQ(media->getLastRenderTexture()->getTexture(0), texture);
    EXPECT_EQ(media->getLastRenderTexture()->getSize(), kSize);
    EXPECT_NE(media->getFrameBuffer(), own->getFrameBuffer());
    EXPECT_EQ(media->getLastRenderTexture()->getFrameBuffer(), media->getFrameBuffer());

    ASSERT_TRUE(media->init(makeSprite(picture), kSize, nullptr, false));
    EXPECT_EQ(media->getLastRenderTexture()->getPxFormat(), PXFORMAT_RGB888);
    EXPECT_TRUE(media->isLastEnable());
    EXPECT_EQ(media->getWinSize(), kSize);
    EXPECT_EQ(media->getCurScene()->getViewPort(), ViewPort(0, 0, kWidth, kHeight));

    // Neither null nor another type of output makes a render texture when the screen shows the input.
    for (Ref* other : {static_cast<Ref*>(nullptr), static_cast<Ref*>(Node::create())}) {
        Sprite* input = makeSprite(picture);
        ASSERT_TRUE(media->init(input, kSize, other, true));
        EXPECT_EQ(media->getLastRenderTexture(), nullptr);
        EXPECT_NE(media->getFrameBuffer(), nullptr);
        EXPECT_TRUE(has(media->getCurScene(), input));
    }
}

TEST_F(ZVMediaEngineTest, WithoutAnInputTextureNothingIsDrawnAndNoAlgorithmRuns) {
    struct Business : kel_algorithm::AlgGoods {
        using AlgGoods::AlgGoods;
        int runs = 0;
        void run() override { ++runs; }
    };
    auto business = std::make_shared<Business>(media->getAlgEngine());
    business->registerAlgFunc(std::make_shared<kel_algorithm::AlgBizFunc>());
    media->getAlgEngine()->setBiz(4, business);
    EXPECT_EQ(media->getAlgEngine(), media->getAlgEngine());

    auto* input = autoreleased(new Sprite);
    input->init();
    media->init(input, kSize, nullptr, false);
    const auto drawsOfAFrame = [&]() -> std::size_t {
        if (!GLCallRecorder::available()) {
            frame();
            return 0;
        }
        const GLCallRecorder recorder;
        frame();
        return recorder.countDraws() + recorder.count("glFinish");
    };
    EXPECT_EQ(drawsOfAFrame(), 0U);
    auto* unnamed = autoreleased(new Texture2D);
    input->setTexture(unnamed, RectF(0, 0, 1, 1));
    EXPECT_EQ(drawsOfAFrame(), 0U) << "a texture without a GL name";
    EXPECT_EQ(business->runs, 0);
    input->setTexture(makeTexture(picture), RectF(0, 0, kWidth, kHeight));
    frame();
    EXPECT_EQ(business->runs, 1);
    EXPECT_EQ(output(), picture);
}

TEST_F(ZVMediaEngineTest, AlgorithmsRunBeforeDrawingWithTheHostsFrameBufferKnown) {
    struct Business : kel_algorithm::AlgGoods {
        Business(kel_algorithm::AlgEngine* owner, ZVMediaEngine& engine) : AlgGoods(owner), media(engine) {}
        ZVMediaEngine& media;
        unsigned int seen = 0;
        int runs = 0;
        void run() override {
            ++runs;
            seen = media.getRenderState()->getCurFBO();
            // An algorithm that draws leaves through the render state, and finds the host's buffer again.
            FrameBuffer* own = FrameBuffer::create();
            media.getRenderState()->pushFrameBuffer(own);
            media.getRenderState()->popFrameBuffer();
            GLint bound = 0;
            glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
            EXPECT_EQ(static_cast<unsigned int>(bound), seen);
        }
    };
    auto business = std::make_shared<Business>(media->getAlgEngine(), *media);
    business->registerAlgFunc(std::make_shared<kel_algorithm::AlgBizFunc>());
    media->getAlgEngine()->setBiz(1, business);
    media->init(makeSprite(picture), kSize, nullptr, false);
    frame();
    EXPECT_EQ(business->seen, screen);
    EXPECT_EQ(business->runs, 1);
}

TEST_F(ZVMediaEngineTest, ResizingReachesChainOutputAndViewPorts) {
    media->init(makeSprite(picture), kSize, nullptr, true);
    media->setRenderChain(makeChain(true, false));
    RenderTextureChain* chain = media->getRenderChain();
    frame();
    const Size16 size(24, 8);
    media->resetSize(size);
    const ViewPort whole(0, 0, size.x, size.y);
    EXPECT_EQ(media->getWinSize(), size);
    EXPECT_EQ(chain->getSize(), size);
    EXPECT_EQ(chain->getOutput()->getSize(), size);
    EXPECT_EQ(media->getCurScene()->getViewPort(), whole);

    RenderTexture* last = RenderTexture::create({2, 2}, nullptr, PXFORMAT_RGBA8888);
    media->setLastRenderTexture(last, true);
    media->getCurScene()->setViewPort({1, 1, 3, 3});
    media->resetSize(size);
    EXPECT_EQ(last->getSize(), Size16(2, 2)) << "the present size changes nothing";
    media->resetSize(kSize);
    EXPECT_EQ(last->getSize(), kSize);
    EXPECT_EQ(last->getScene()->getViewPort(), ViewPort(0, 0, kWidth, kHeight));
    EXPECT_EQ(media->getCurScene()->getViewPort(), ViewPort(1, 1, 3, 3)) << "the host's own view port";
    frame();
    EXPECT_EQ(output(), picture);
}

/// One of every way to put a picture out.
struct OutputCase {
    const char* name;
    bool texture, screen, chain, screenLater;
};

class MediaOutputTest : public MediaPipelineTest, public testing::WithParamInterface<OutputCase> {};

TEST_P(MediaOutputTest, EveryNodeIsUpdatedOnceAFrame) {
    const OutputCase& given = GetParam();
    auto* input = autoreleased(new CountingSprite);
    input->init(makeTexture(picture), false);
    media->init(input, kSize, given.texture ? makeTexture(Picture(kWidth, kHeight)) : nullptr, given.screen);
    if (given.chain) {
        media->setRenderChain(makeChain(true, true));
    }
    auto* sticker = autoreleased(new CountingNode);
    media->addSticker(sticker);
    media->setRenderToScreen(given.screen || given.screenLater);
    auto* inScene = autoreleased(new CountingNode);
    media->getCurScene()->addChild(inScene);
    frame();
    input->updates = sticker->updates = inScene->updates = 0;
    sticker->time = 0.0F;
    for (int i = 1; i <= 3; ++i) {
        frame(0.25F);
        EXPECT_EQ(sticker->updates, i);
        EXPECT_EQ(input->updates, i);
        EXPECT_EQ(inScene->updates, media->isRenderToScreen() ? i : 0);
    }
    EXPECT_EQ(sticker->time, 0.75F);
}

INSTANTIATE_TEST_SUITE_P(Outputs, MediaOutputTest,
                         testing::Values(OutputCase{"OwnTexture", false, false, false, false},
                                         OutputCase{"HostTexture", true, false, false, false},
                                         OutputCase{"HostTextureChain", true, false, true, false},
                                         OutputCase{"Screen", false, true, false, false},
                                         OutputCase{"ScreenChain", false, true, true, false},
                                         OutputCase{"Both", true, true, false, false},
                                         OutputCase{"BothChain", true, true, true, false},
                                         OutputCase{"ScreenLater", true, false, false, true},
                                         OutputCase{"ScreenLaterChain", true, false, true, true}),
                         [](const auto& row) { return row.param.name; });

TEST_F(ZVMediaEngineTest, ViewPortsLeftOverFromElsewhereDoNotReachTheFrame) {
    media->init(makeSprite(picture), kSize, nullptr, false);
    RenderState* state = media->getRenderState();
    state->pushViewPort(ViewPort(0, 0, kWidth, kHeight), false);
    glViewport(0, 0, 2, 2);
    frame();
    EXPECT_EQ(output(), picture);
    ZV_NEEDS_RECORDER();
    const GLCallRecorder recorder;
    state->pushViewPort(ViewPort(0, 0, kWidth, kHeight), false);
    state->popViewPort(1);
    EXPECT_EQ(recorder.count("glViewport"), 1U) << "the frame leaves no entry behind";
}

TEST_F(ZVMediaEngineTest, AutoUpdateUpdatesAndFinishIsTheHostsChoice) {
    media->init(makeSprite(picture), kSize, nullptr, false);
    auto* sticker = autoreleased(new CountingNode);
    media->addSticker(sticker);
    media->setAutoUpdate(true);
    media->render();
    media->renderToLast();
    EXPECT_EQ(sticker->updates, 2);
    media->setAutoUpdate(false);
    media->render();
    EXPECT_EQ(sticker->updates, 2);

    ZV_NEEDS_RECORDER();
    GLCallRecorder recorder;
    media->render();
    EXPECT_EQ(recorder.count("glFinish"), 1U);
    media->setFinishAfterRender(false);
    recorder.clear();
    media->render();
    EXPECT_EQ(recorder.count("glFinish"), 0U);
}

TEST_F(ZVMediaEngineTest, FramesAreCountedAndTheLastRenderTargetMayBeReplaced) {
    engine.reset();
    auto made = std::make_unique<OpenMediaEngine>(context());
    OpenMediaEngine* open = made.get();
    media = open;
    engine = std::move(made);
    open->setSplitScreen(true);
    open->setLastRenderTarget(nullptr);
    media->init(makeSprite(picture), kSize, nullptr, false);
    Texture2D* texture = makeTexture(Picture(kWidth, kHeight));
    open->setLastRenderTarget(RenderTargetTexture::create(texture));
    open->setLogFps(true);
    frame();
    frame();
    EXPECT_EQ(open->getFramesCounted(), 1) << "the first frame starts the window";
    EXPECT_EQ(media->getLastRenderTexture()->getTexture(0), texture);
    EXPECT_EQ(pictureOf(texture), picture);
}

TEST_F(ZVMediaEngineTest, DestructionDetachesWhatTheHostKeepsAndServesTheDying) {
    /// A consumer such as a face sticker: takes its subscription back when it goes.
    struct Consumer : Node {
        int* gone;
        explicit Consumer(int* counter) : gone(counter) {}
        ~Consumer() override {
            auto* whole = dynamic_cast<ZVMediaEngine*>(ZVEngine::getCurrent());
            EXPECT_NE(whole, nullptr) << "what waits for the next drain must go while the engine is whole";
            if (whole) {
                whole->getAlgEngine()->unregisterFunc(this);
            }
            ++*gone;
        }
    };
    int gone = 0;
    Sprite* input = makeSprite(picture);
    RenderTexture* last = RenderTexture::create(kSize, nullptr, PXFORMAT_RGBA8888);
    media->init(input, kSize, last, true);
    RenderTextureChain* chain = makeChain(true, true);
    media->setRenderChain(chain);
    for (int i = 0; i < 2; ++i) {
        auto* consumer = autoreleased(new Consumer(&gone));
        auto func = std::make_shared<kel_algorithm::AlgBizFunc>();
        func->owner = consumer;
        func->type = kel_algorithm::ALG_FUNC_FACE_MATS;
        media->getAlgEngine()->registerAlgFunc(func);
        media->addSticker(consumer);
        if (i == 0) {
            frame();
        }
    }
    media->setRenderToScreen(false);
    input->retain();
    chain->retain();
    last->retain();
    engine.reset();
    EXPECT_EQ(gone, 2);
    EXPECT_EQ(last->getParent(), nullptr);
    EXPECT_EQ(last->getScene()->getChildRenSize(), 0U);
    last->release();
    EXPECT_EQ(input->getParent(), nullptr);
    EXPECT_EQ(chain->getOutput()->getParent(), nullptr);
    EXPECT_EQ(chain->getRefCount(), 1U);
    chain->release();
    EXPECT_EQ(input->getRefCount(), 1U);
    input->release();
}

struct FrameCost {
    const char* name;
    bool chain;
    std::size_t draws;
    std::size_t calls;        ///< with vertex arrays
    std::size_t legacyCalls;  ///< without
};

class MediaFrameCostTest : public MediaPipelineTest, public testing::WithParamInterface<FrameCost> {};

TEST_P(MediaFrameCostTest, AFrameLikeTheOneBeforeMakesNothing) {
    ZV_NEEDS_RECORDER();
    media->init(makeSprite(picture), kSize, makeTexture(Picture(kWidth, kHeight)), false);
    if (GetParam().chain) {
        media->setRenderChain(makeChain(true, true));
    }
    frame();
    const GLCallRecorder recorder;
    const AllocationCounter allocations;
    frame();
    if (AllocationCounter::available()) {
        EXPECT_EQ(allocations.allocations(), 0U);
    }
    EXPECT_EQ(recorder.countObjectCalls(), 0U) << recorder.summary();
    for (const char* prefix : {"glCompile", "glLink", "glBufferData", "glTex", "glUniform"}) {
        EXPECT_EQ(recorder.countPrefix(prefix), 0U) << prefix;
    }
    EXPECT_EQ(recorder.countDraws(), GetParam().draws);
    EXPECT_EQ(recorder.total(), kind() == Kind::Legacy ? GetParam().legacyCalls : GetParam().calls)
        << recorder.summary();
}

INSTANTIATE_TEST_SUITE_P(Pipelines, MediaFrameCostTest,
                         testing::Values(FrameCost{"Plain", false, 1, 13, 18},
                                         FrameCost{"TwoStages", true, 3, 32, 47}),
                         [](const auto& row) { return row.param.name; });

}  // namespace zv::test
