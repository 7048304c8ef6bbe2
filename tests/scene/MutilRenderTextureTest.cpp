#include "scene/MutilRenderTexture.h"

#include "RenderTextureTools.h"

namespace zv::test {
namespace {

using MutilRenderTextureTest = EngineTest;

MutilRenderTexture* nestOf(const std::vector<RenderTexture*>& passes, FrameBuffer* frameBuffer) {
    MutilRenderTexture* nest = MutilRenderTexture::create({8, 4}, frameBuffer, PXFORMAT_RGBA8888);
    for (RenderTexture* pass : passes) {
        nest->addRenderTexture(pass);
    }
    nest->setup();
    nest->setup();  // changes nothing
    return nest;
}

TEST_F(MutilRenderTextureTest, NestsFromTheLastPassToTheFrontOnce) {
    FrameBuffer* shared = FrameBuffer::create();
    MarkTexture* first = MarkTexture::create(2, shared);
    MarkTexture* second = MarkTexture::create(1, shared);
    MutilRenderTexture* nest = nestOf({first, second}, shared);
    EXPECT_EQ(namesBelow(nest->getScene()), "12") << "from the back";
    EXPECT_EQ(nest->getByName("1"), second);
    EXPECT_EQ(nest->getByName("3"), nullptr);
    MutilRenderTexture* outer = nestOf({nest}, shared);
    EXPECT_EQ(outer->getFrontRenderTexture(), first);
    FillNode* input = FillNode::create(kRed);
    outer->getFrontScene()->addChild(input);
    MarkTexture::log.clear();
    outer->renderToTexture();
    EXPECT_EQ(pictureOf(*outer), markedPicture("12")) << "each pass saw the one before it";
    EXPECT_EQ(pictureOf(*first), markedPicture("2"));

    FillNode* beside = FillNode::create(kRed);
    nest->addChild(beside);
    outer->update(0.5F);
    nest->resetSize({6, 3});
    EXPECT_EQ(MarkTexture::log, "212121") << "rendered, updated and resized once each in list order";
    EXPECT_EQ(input->time, 0.5F);
    EXPECT_EQ(beside->time, 0.5F) << "so is the nest itself";
    nest->renderToTexture();
    EXPECT_EQ(pictureOf(*first), markedPicture("2", 6, 3));
    EXPECT_EQ(pictureOf(*nest), markedPicture("12", 6, 3));
}

TEST_F(MutilRenderTextureTest, HoldsOneReferenceAnEntryAndWorksWithoutAny) {
    RenderTexture* pass = RenderTexture::create({8, 4}, nullptr, PXFORMAT_RGBA8888);
    MutilRenderTexture* nest = nestOf({pass, pass}, nullptr);
    EXPECT_EQ(pass->getRefCount(), 4U) << "pool, parent and two entries";
    pass->removeFromParent();
    nest->clearAllRenderTexture();
    EXPECT_EQ(pass->getRefCount(), 1U);
    EXPECT_EQ(nest->getFrontRenderTexture(), nest);
    nest->getFrontScene()->addChild(FillNode::create(kRed));
    nest->renderToTexture();
    EXPECT_EQ(pictureOf(*nest), Picture(8, 4, kRed));
    nest->addRenderTexture(pass);
    pass->retain();
    drainPool();
    EXPECT_EQ(pass->getRefCount(), 1U) << "the destructor releases what is left";
    pass->release();
}

}  // namespace
}  // namespace zv::test
