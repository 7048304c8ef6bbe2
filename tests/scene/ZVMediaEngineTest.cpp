#include "scene/ZVMediaEngine.h"

#include <GL/glew.h>

#include "MediaPipelineTest.h"
#include "algorithm/AlgEngine.h"
#include "algorithm/AlgGoods.h"
#include "gl/FrameBuffer.h"
#include "gl/RenderState.h"
#include "support/AllocationCounter.h"
#include "support/GLCallRecorder.h"

namespace zv::test {

namespace {

/// Counts its runs and notes the host's frame buffer.
struct Business : kel_algorithm::AlgGoods {
    using AlgGoods::AlgGoods;
    unsigned int seen = 0;
    int runs = 0;
    void run() override {
        ++runs;
        seen = RenderState::getCurrent()->getCurFBO();
        // An algorithm that draws leaves through the render state, and finds the host's buffer again.
        RenderState::getCurrent()->pushFrameBuffer(FrameBuffer::create());
        RenderState::getCurrent()->popFrameBuffer();
        GLint bound = 0;
        glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
        EXPECT_EQ(static_cast<unsigned int>(bound), seen);
    }
};

/// A consumer such as a face sticker: takes its subscription back when it goes.
struct Consumer : Node {
    int& gone;
    explicit Consumer(int& counter) : gone(counter) {}
    ~Consumer() override {
        auto* whole = dynamic_cast<ZVMediaEngine*>(ZVEngine::getCurrent());
        EXPECT_NE(whole, nullptr) << "what waits for the next drain must go while the engine is whole";
        if (whole != nullptr) {
            whole->getAlgEngine()->unregisterFunc(this);
            ++gone;
        }
    }
};

}  // namespace

using ZVMediaEngineTest = MediaPipelineTest;
using MediaFrameCostTest = MediaPipelineTest;

TEST_F(ZVMediaEngineTest, WithoutAnInputThereIsNothingToTripOver) {
    EXPECT_EQ(ZVMediaEngine::getCurrent(), media);
    EXPECT_FALSE(media->isRenderChainValid() || media->isKeepHostState());
    EXPECT_EQ(media->getStickerByName("a"), nullptr);
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
    media->init(makeSprite(picture), kSize, own, false);
    EXPECT_EQ(media->getLastRenderTexture(), own);
    EXPECT_EQ(media->getFrameBuffer(), own->getFrameBuffer());
    media->init(makeSprite(picture), kSize, makeTexture(Picture(4, 4)), false);
    EXPECT_EQ(media->getLastRenderTexture()->getSize(), kSize);
    EXPECT_NE(media->getFrameBuffer(), own->getFrameBuffer());
    EXPECT_EQ(media->getLastRenderTexture()->getFrameBuffer(), media->getFrameBuffer());
    media->init(makeSprite(picture), kSize, nullptr, false);
    EXPECT_EQ(media->getLastRenderTexture()->getPxFormat(), PXFORMAT_RGB888);
    EXPECT_EQ(media->getCurScene()->getViewPort(), ViewPort(0, 0, kWidth, kHeight));
    // Neither null nor another type of output makes a render texture when the screen shows the input.
    for (Ref* other : {static_cast<Ref*>(nullptr), static_cast<Ref*>(Node::create())}) {
        ASSERT_TRUE(media->init(makeSprite(picture), kSize, other, true));
        EXPECT_EQ(media->getLastRenderTexture(), nullptr);
        EXPECT_NE(media->getFrameBuffer(), nullptr);
        EXPECT_TRUE(has(media->getCurScene(), media->getInputSprite()));
    }
}

TEST_F(ZVMediaEngineTest, OnlyWithAnInputTextureAlgorithmsRunAndThenSomethingIsDrawn) {
    auto business = std::make_shared<Business>(media->getAlgEngine());
    business->registerAlgFunc(std::make_shared<kel_algorithm::AlgBizFunc>());
    media->getAlgEngine()->setBiz(4, business);
    auto* input = autoreleased(new Sprite);
    input->init();
    media->init(input, kSize, nullptr, false);
    const GLCallRecorder recorder;
    frame();
    media->setRenderToScreen(true);
    frame();
    // A texture without a GL name counts as none.
    input->setTexture(autoreleased(new Texture2D), RectF(0, 0, 1, 1));
    frame();
    EXPECT_EQ(recorder.countDraws() + recorder.count("glFinish"), 0U);
    EXPECT_EQ(business->runs, 0);
    input->setTexture(makeTexture(picture), RectF(0, 0, kWidth, kHeight));
    frame();
    EXPECT_EQ(business->runs, 1);
    EXPECT_EQ(business->seen, screen);
    EXPECT_EQ(output(), picture);
}

TEST_F(ZVMediaEngineTest, ResizingReachesChainOutputAndViewPorts) {
    media->init(makeSprite(picture), kSize, nullptr, true);
    RenderTextureChain* chain = makeChain(true, false);
    media->setRenderChain(chain);
    const Size16 size(24, 8);
    media->resetSize(size);
    EXPECT_EQ(media->getWinSize(), size);
    EXPECT_EQ(chain->getOutput()->getSize(), size);
    EXPECT_EQ(media->getCurScene()->getViewPort(), ViewPort(0, 0, size.x, size.y));

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

TEST_F(ZVMediaEngineTest, LeftOverViewPortsDoNotReachTheFrameAndUpdateAndFinishAreTheHostsChoice) {
    media->init(makeSprite(picture), kSize, nullptr, false);
    auto* sticker = autoreleased(new Counting<Node>);
    media->addSticker(sticker);
    RenderState* state = media->getRenderState();
    state->pushViewPort(ViewPort(0, 0, kWidth, kHeight), false);
    glViewport(0, 0, 2, 2);
    media->setAutoUpdate(true);
    media->render();
    EXPECT_EQ(output(), picture);
    media->renderToLast();
    EXPECT_EQ(sticker->updates, 2);
    media->setAutoUpdate(false);
    GLCallRecorder recorder;
    media->render();
    media->setFinishAfterRender(false);
    media->render();
    EXPECT_EQ(recorder.count("glFinish"), 1U) << "the default is to finish";
    EXPECT_EQ(sticker->updates, 2);
    recorder.clear();
    state->pushViewPort(ViewPort(0, 0, kWidth, kHeight), false);
    state->popViewPort(1);
    EXPECT_EQ(recorder.count("glViewport"), 1U) << "the frame leaves no entry behind";
}

TEST_F(ZVMediaEngineTest, DestructionDetachesWhatTheHostKeepsAndServesTheDying) {
    int gone = 0;
    Sprite* input = makeSprite(picture);
    RenderTexture* last = RenderTexture::create(kSize, nullptr, PXFORMAT_RGBA8888);
    media->init(input, kSize, last, true);
    RenderTextureChain* chain = makeChain(true, true);
    media->setRenderChain(chain);
    input->retain();
    chain->retain();
    last->retain();
    // The first is held by the engine alone; the second waits for a drain, too.
    for (int i = 0; i < 2; ++i) {
        auto* consumer = autoreleased(new Consumer(gone));
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
    engine.reset();
    EXPECT_EQ(gone, 2);
    EXPECT_EQ(last->getParent(), nullptr);
    EXPECT_EQ(last->getScene()->getChildRenSize(), 0U);
    EXPECT_EQ(chain->getOutput()->getParent(), nullptr);
    last->release();
    EXPECT_EQ(chain->getRefCount(), 1U);
    chain->release();
    EXPECT_EQ(input->getParent(), nullptr);
    EXPECT_EQ(input->getRefCount(), 1U);
    input->release();
}

TEST_F(MediaFrameCostTest, AFrameLikeTheOneBeforeMakesNothing) {
    for (const bool chain : {false, true}) {
        media->init(makeSprite(picture), kSize, makeTexture(Picture(kWidth, kHeight)), false);
        media->setRenderChain(chain ? makeChain(true, true) : nullptr);
        frame();
        const GLCallRecorder recorder;
        const AllocationCounter allocations;
        frame();
        EXPECT_EQ(allocations.allocations(), 0U);
        EXPECT_EQ(recorder.countObjectCalls(), 0U) << recorder.summary();
        for (const char* prefix : {"glCompile", "glLink", "glBufferData", "glTex", "glUniform"}) {
            EXPECT_EQ(recorder.countPrefix(prefix), 0U) << prefix;
        }
        EXPECT_EQ(recorder.countDraws(), chain ? 3U : 1U);
        // Without vertex arrays each draw sets its attributes.
        const std::size_t calls = chain ? 38U : 15U;
        const std::size_t legacyCalls = chain ? 47U : 18U;
        EXPECT_EQ(recorder.total(), kind() == Kind::Legacy ? legacyCalls : calls) << recorder.summary();
    }
}

}  // namespace zv::test
