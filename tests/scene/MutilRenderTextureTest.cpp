#include "scene/MutilRenderTexture.h"

#include "RenderTextureTools.h"
#include "gl/FrameBuffer.h"
#include "support/AllocationCounter.h"
#include "support/EngineTest.h"
#include "support/GLCallRecorder.h"

namespace zv::test {
namespace {

constexpr Pixel kRed{255, 0, 0, 255};

class MutilRenderTextureTest : public EngineTest {
protected:
    void SetUp() override {
        EngineTest::SetUp();
        shared = FrameBuffer::create();
        nest = MutilRenderTexture::create({8, 4}, shared, PXFORMAT_RGBA8888);
    }
    MarkTexture* addPass(const char* name, int column) {
        MarkTexture* pass = MarkTexture::create(name, column, {8, 4}, shared);
        pass->log = &log;
        nest->addRenderTexture(pass);
        return pass;
    }

    std::string log;
    FrameBuffer* shared = nullptr;
    MutilRenderTexture* nest = nullptr;
};

TEST_F(MutilRenderTextureTest, NestsFromTheLastPassToTheFrontOnce) {
    MarkTexture* first = addPass("a", 3);
    MarkTexture* second = addPass("b", 1);
    MarkTexture* third = addPass("b", 2);
    for (int i = 0; i < 2; ++i) {
        nest->setup();
        EXPECT_EQ(nest->getScene()->getChildRen(), std::vector<Node*>{third}) << "setup " << i;
        EXPECT_EQ(third->getScene()->getChildRen(), std::vector<Node*>{second});
        EXPECT_EQ(second->getScene()->getChildRen(), std::vector<Node*>{first});
    }
    EXPECT_EQ(nest->getFrontRenderTexture(), first);
    EXPECT_EQ(nest->getFrontScene(), first->getScene());
    EXPECT_EQ(nest->getByName("b"), second);
    EXPECT_EQ(nest->getByName("c"), nullptr);

    MutilRenderTexture* outer = MutilRenderTexture::create({8, 4}, shared, PXFORMAT_RGBA8888);
    outer->addRenderTexture(nest);
    EXPECT_EQ(outer->getFrontRenderTexture(), first);
    outer->setup();
    EXPECT_EQ(outer->getScene()->getFirstChild(), nest);

    FillNode* input = FillNode::create(kRed);
    nest->getFrontScene()->addChild(input);
    outer->renderToTexture();
    EXPECT_EQ(log, "abb");
    EXPECT_EQ(pictureOf(*outer), markedPicture(kRed, "123")) << "each pass saw the one before it";
    EXPECT_EQ(pictureOf(*first), markedPicture(kRed, "3"));

    FillNode* beside = FillNode::create(kRed);
    nest->addChild(beside);
    log.clear();
    outer->update(0.5F);
    EXPECT_EQ(beside->time, 0.5F) << "so is the nest itself";
    EXPECT_EQ(log, "abb") << "once each, in list order";
    EXPECT_EQ(input->time, 0.5F);
    first->update(0.5F);
    EXPECT_EQ(input->time, 1.0F) << "a call from outside still works";
}

TEST_F(MutilRenderTextureTest, WithoutPassesItIsAPlainRenderTexture) {
    nest->setup();
    EXPECT_EQ(nest->getFrontRenderTexture(), nest);
    EXPECT_EQ(nest->getFrontScene(), nest->getScene());
    nest->getFrontScene()->addChild(FillNode::create(kRed));
    nest->renderToTexture();
    EXPECT_EQ(pictureOf(*nest), Picture(8, 4, kRed));
}

TEST_F(MutilRenderTextureTest, ResizesThePassesBeforeItselfWithTheirViewPorts) {
    MarkTexture* first = addPass("a", 1);
    MarkTexture* second = addPass("b", 2);
    nest->setup();
    nest->getFrontScene()->addChild(FillNode::create(kRed));
    nest->renderToTexture();
    log.clear();
    nest->resetSize({6, 3});
    EXPECT_EQ(log, "ab");
    EXPECT_EQ(nest->getSize(), Size16(6, 3));
    for (RenderTexture* pass : {static_cast<RenderTexture*>(first), static_cast<RenderTexture*>(second),
                                static_cast<RenderTexture*>(nest)}) {
        EXPECT_EQ(pass->getTexture(0)->getSize(), Size16(6, 3));
        EXPECT_EQ(pass->getScene()->getViewPort(), ViewPort(0, 0, 6, 3));
    }
    nest->renderToTexture();
    EXPECT_EQ(pictureOf(*nest), markedPicture(kRed, "12", 6, 3));
}

TEST_F(MutilRenderTextureTest, HoldsOneReferenceAnEntry) {
    MarkTexture* pass = addPass("a", 1);
    nest->addRenderTexture(pass);
    EXPECT_EQ(pass->getRefCount(), 3U);
    nest->clearAllRenderTexture();
    EXPECT_EQ(pass->getRefCount(), 1U);
    nest->addRenderTexture(pass);
    pass->retain();
    drainPool();
    EXPECT_EQ(pass->getRefCount(), 1U) << "the destructor releases what is left";
    pass->release();
}

TEST_F(MutilRenderTextureTest, TheSecondEqualFrameAllocatesNothing) {
    ZV_NEEDS_RECORDER();
    ZV_NEEDS_ALLOCATION_COUNTER();
    addPass("a", 1)->log = nullptr;
    addPass("b", 2)->log = nullptr;
    nest->setup();
    nest->getFrontScene()->addChild(FillNode::create(kRed));
    const auto frame = [&] {
        nest->update(0.1F);
        nest->renderToTexture();
    };
    frame();
    GLCallRecorder calls;
    frame();
    calls.clear();
    std::size_t allocations = 0;
    {
        const AllocationCounter counter;
        frame();
        allocations = counter.allocations();
    }
    EXPECT_EQ(allocations, 0U);
    EXPECT_EQ(calls.countObjectCalls(), 0U) << calls.summary();
    EXPECT_EQ(calls.countDraws(), 2U);
}

}  // namespace
}  // namespace zv::test
