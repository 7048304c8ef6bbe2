#include "scene/RenderTexture.h"

#include "RenderTextureTools.h"
#include "gl/FrameBuffer.h"
#include "gl/RenderState.h"
#include "gl/RenderTargetDepthStencil.h"
#include "gl/RenderTargetTexture.h"
#include "scene/UpdatePass.h"
#include "scene/ZVEngine.h"
#include "support/AllocationCounter.h"
#include "support/EngineTest.h"
#include "support/GLCallRecorder.h"

namespace zv::test {
namespace {

constexpr Pixel kRed{255, 0, 0, 255};
constexpr Pixel kGreen{0, 255, 0, 255};
constexpr Pixel kBlue{0, 0, 255, 255};

using RenderTextureTest = EngineTest;

GLuint boundFrameBuffer() {
    GLint bound = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
    return static_cast<GLuint>(bound);
}

RenderTexture* filled(Pixel colour, Size16 size, FrameBuffer* frameBuffer = nullptr) {
    RenderTexture* texture = RenderTexture::create(size, frameBuffer, PXFORMAT_RGBA8888);
    texture->getScene()->addChild(FillNode::create(colour));
    return texture;
}

TEST_F(RenderTextureTest, MakesFrameBufferTargetAndSceneAtItsFirstRender) {
    ZV_NEEDS_RECORDER();
    engine->getProgramCache();
    GLCallRecorder calls;
    RenderTexture* texture = RenderTexture::create({72, 128}, nullptr, PXFORMAT_RGBA8888);
    EXPECT_EQ(calls.countObjectCalls(), 0U) << calls.summary();
    EXPECT_TRUE(texture->isFlipY());
    EXPECT_EQ(texture->getContentSize(), Vec2f(72, 128));

    texture->renderToTexture();
    EXPECT_EQ(calls.count("glGenFramebuffers"), 1U);
    EXPECT_EQ(calls.count("glGenTextures"), 1U);
    EXPECT_EQ(texture->getScene()->getViewPort(), ViewPort(0, 0, 72, 128));
    EXPECT_EQ(texture->getTexture(0)->getSize(), Size16(72, 128));
    EXPECT_EQ(texture->getTexture(0)->getPxFormat(), PXFORMAT_RGBA8888);
    EXPECT_EQ(texture->getFrontRenderTexture(), texture);
    EXPECT_EQ(texture->getFrontScene(), texture->getScene());

    RenderTexture* shown = RenderTexture::create({8, 8}, nullptr, PXFORMAT_RGB888);
    EXPECT_NE(shown->getTexture(1), shown->getTexture(0)) << "asking for any slot fills slot 0";
    EXPECT_TRUE(shown->getTexture(0)->isValid());
}

TEST_F(RenderTextureTest, TakesSizeAndFormatFromAnExistingTarget) {
    EXPECT_EQ(RenderTexture::create(nullptr), nullptr);
    RenderTargetTexture* target = RenderTargetTexture::create({6, 3}, PXFORMAT_RGB888);
    RenderTexture* texture = RenderTexture::create(target);
    ASSERT_NE(texture, nullptr);
    EXPECT_EQ(texture->getSize(), Size16(6, 3));
    EXPECT_EQ(texture->getPxFormat(), PXFORMAT_RGB888);
    EXPECT_EQ(texture->getTexture(0), target->getTexture());
    EXPECT_EQ(target->getRefCount(), 2U);
    texture->setRenderTarget(target);
    EXPECT_EQ(target->getRefCount(), 2U);
}

TEST_F(RenderTextureTest, SettingASceneReleasesTheOneBeforeEvenWhenItIsTheSame) {
    RenderTexture* texture = filled(kRed, {4, 4});
    Scene* scene = texture->getScene();
    texture->setScene(scene);
    EXPECT_EQ(texture->getScene(), scene);
    EXPECT_EQ(scene->getRefCount(), 2U);
    drainPool();
    texture = filled(kGreen, {4, 4});
    texture->retain();
    drainPool();
    texture->setScene(texture->getScene());
    EXPECT_EQ(texture->getScene()->getFirstChild(), nullptr) << "nobody else kept it: a new scene is there";
    texture->release();
}

TEST_F(RenderTextureTest, PutsBackTheOuterPassOnItsOwnAndOnASharedFrameBuffer) {
    for (const bool shared : {false, true}) {
        SCOPED_TRACE(shared);
        FrameBuffer* outerBuffer = FrameBuffer::create();
        RenderTexture* inner = filled(kGreen, {4, 4}, shared ? outerBuffer : nullptr);
        RenderTexture* middle = filled(kBlue, {6, 6});  // always on a frame buffer of its own
        RenderTexture* outer = filled(kRed, {8, 8}, outerBuffer);
        auto* asks = static_cast<FillNode*>(outer->getScene()->getFirstChild());
        asks->whenDrawn = [&] {
            middle->renderToTexture();
            EXPECT_EQ(boundFrameBuffer(), outerBuffer->getFBO());
        };
        static_cast<FillNode*>(middle->getScene()->getFirstChild())->whenDrawn = [&] {
            inner->renderToTexture();
        };
        const GLuint before = boundFrameBuffer();
        outer->renderToTexture();
        EXPECT_EQ(boundFrameBuffer(), before);
        EXPECT_EQ(pictureOf(*outer), Picture(8, 8, kRed));
        EXPECT_EQ(pictureOf(*middle), Picture(6, 6, kBlue));
        EXPECT_EQ(pictureOf(*inner), Picture(4, 4, kGreen));
    }
}

TEST_F(RenderTextureTest, PutsBackTheTargetOfAPassThatAnotherFrameBufferLiesOver) {
    FrameBuffer* shared = FrameBuffer::create();
    RenderTexture* inner = filled(kGreen, {4, 4}, shared);
    RenderTexture* outer = filled(kRed, {4, 4}, shared);
    RenderTexture* between = filled(kBlue, {4, 4});
    between->renderToTexture();
    static_cast<FillNode*>(outer->getScene()->getFirstChild())->whenDrawn = [&] {
        RenderState* state = engine->getRenderState();
        state->pushFrameBuffer(between->getFrameBuffer());
        inner->renderToTexture();
        EXPECT_EQ(boundFrameBuffer(), between->getFrameBuffer()->getFBO());
        EXPECT_EQ(Picture::readFrameBuffer(4, 4), Picture(4, 4, kBlue));
        state->popFrameBuffer();
    };
    outer->renderToTexture();
    EXPECT_EQ(pictureOf(*outer), Picture(4, 4, kRed));
    EXPECT_EQ(pictureOf(*inner), Picture(4, 4, kGreen));
}

TEST_F(RenderTextureTest, IsShownUprightAndASceneMayHoldItsOwner) {
    RenderTexture* texture = RenderTexture::create({4, 4}, nullptr, PXFORMAT_RGBA8888);
    FillNode* upper = FillNode::create(kRed);
    upper->whenDrawn = [] { fillRect(0, 0, 4, 2, kGreen); };
    upper->setLocalZOrder(1);
    texture->getScene()->addChild(upper);
    texture->getScene()->setViewPort({0, 2, 4, 2});
    texture->renderToTexture();

    RenderTexture* shows = RenderTexture::create({4, 4}, nullptr, PXFORMAT_RGBA8888);
    shows->getScene()->addChild(texture);
    shows->renderToTexture();
    const Picture expected = Picture::make(4, 4, [](int, int y) { return y < 2 ? kGreen : kRed; });
    EXPECT_EQ(pictureOf(*texture), expected);
    EXPECT_EQ(pictureOf(*shows), expected);

    // Under its own scene, and asked to render from inside itself: neither goes round and round.
    upper->whenDrawn = [&] { texture->renderToTexture(); };
    texture->removeFromParent();
    texture->getScene()->addChild(texture);
    texture->update(1.0F);
    EXPECT_EQ(upper->time, 1.0F);
    texture->renderToTexture();
    texture->removeFromParent();
}

TEST_F(RenderTextureTest, ResizesTargetAndAttachmentsButNotTheViewPortOfItsScene) {
    RenderTexture* texture = filled(kRed, {72, 128});
    texture->getFrameBuffer()->attachDepthStencilTarget(RenderTargetDepthStencil::create({72, 128}));
    texture->renderToTexture();
    texture->setRect({0, 0, 36, 64});
    texture->resetSize({36, 60});
    EXPECT_EQ(texture->getSize(), Size16(36, 60));
    EXPECT_EQ(texture->getContentSize(), Vec2f(36, 60));
    EXPECT_EQ(texture->getTexture(0)->getSize(), Size16(36, 60));
    EXPECT_EQ(texture->getFrameBuffer()->getRenderTarget()->getSize(), Size16(36, 60));
    EXPECT_EQ(texture->getScene()->getViewPort(), ViewPort(0, 0, 72, 128));
    const T2F_Quad coords = texture->getTexCoords();
    EXPECT_EQ(coords.texCoords[0], Vec2f(0, 1)) << "flipped";
    EXPECT_EQ(coords.texCoords[3], Vec2f(1, 0)) << "the whole new texture is shown";
    texture->fitViewPort();
    EXPECT_EQ(texture->getScene()->getViewPort(), ViewPort(0, 0, 36, 60));
    texture->renderToTexture();
    EXPECT_EQ(pictureOf(*texture), Picture(36, 60, kRed));
}

TEST_F(RenderTextureTest, ATargetThatASharedFrameBufferResizedComesBackToItsSize) {
    FrameBuffer* shared = FrameBuffer::create();
    RenderTexture* half = RenderTexture::create({4, 4}, shared, PXFORMAT_RGBA8888);
    RenderTexture* full = filled(kBlue, {8, 8}, shared);
    full->renderToTexture();
    half->resetSize({2, 2});
    EXPECT_EQ(full->getTexture(0)->getSize(), Size16(2, 2)) << "the attached target is resized, whose ever";
    full->getTexCoords();  // computed for the wrong size
    full->renderToTexture();
    EXPECT_EQ(pictureOf(*full), Picture(8, 8, kBlue));
    EXPECT_EQ(full->getTexCoords().texCoords[3].x, 1.0F);

    // A size that somebody else gave the target first is followed too.
    half->resetSize({16, 16});
    full->resetSize({16, 16});
    EXPECT_EQ(full->getTexCoords().texCoords[3].x, 1.0F);
    full->fitViewPort();
    full->renderToTexture();
    EXPECT_EQ(pictureOf(*full), Picture(16, 16, kBlue));
}

TEST_F(RenderTextureTest, DrawsIntoTexturesMadeElsewhere) {
    GLuint names[2];
    glGenTextures(2, names);
    for (const GLuint name : names) {
        glBindTexture(GL_TEXTURE_2D, name);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    }
    RenderTexture* texture = filled(kRed, {4, 4});
    texture->renderToTexture();
    const GLuint own = texture->getTexture(0)->getName();
    texture->updateTargetTextureId(own);
    EXPECT_TRUE(glIsTexture(own));

    texture->updateTargetTextureId(names[0], GL_TEXTURE_2D, PXFORMAT_RGBA8888, false);
    EXPECT_FALSE(glIsTexture(own)) << "it was owned";
    texture->renderToTexture();
    EXPECT_EQ(Picture::readTexture(names[0], 4, 4), Picture(4, 4, kRed));
    texture->updateTargetTextureId(names[1]);
    EXPECT_TRUE(glIsTexture(names[0])) << "it was lent";
    texture->renderToTexture();
    EXPECT_EQ(Picture::readTexture(names[1], 4, 4), Picture(4, 4, kRed));
    EXPECT_FALSE(texture->getTexture(0)->isOwner());

    RenderTexture* taker = filled(kRed, {4, 4});
    taker->updateTargetTextureId(names[0]);
    EXPECT_TRUE(taker->getTexture(0)->isOwner()) << "the short form hands over what an owned name had";
    taker->retain();
    drainPool();
    taker->release();
    EXPECT_FALSE(glIsTexture(names[0]));
    EXPECT_TRUE(glIsTexture(names[1]));
    glDeleteTextures(1, &names[1]);
}

TEST_F(RenderTextureTest, WorksOnceAPassHoweverOftenItIsReached) {
    RenderTexture* texture = filled(kRed, {4, 4});
    auto* content = static_cast<FillNode*>(texture->getScene()->getFirstChild());
    FillNode* child = FillNode::create(kRed);
    texture->addChild(child);
    texture->update(1.0F);
    texture->update(2.0F);
    EXPECT_EQ(content->time, 3.0F) << "each call from outside is a pass";
    EXPECT_EQ(child->time, 3.0F);
    {
        const UpdatePass pass;
        texture->update(4.0F);
        texture->update(4.0F);
    }
    EXPECT_EQ(content->time, 7.0F);
    texture->update(1.0F);
    EXPECT_EQ(content->time, 8.0F);
}

TEST_F(RenderTextureTest, TheSecondEqualFrameAllocatesNothingAndMakesNoGLObject) {
    ZV_NEEDS_RECORDER();
    ZV_NEEDS_ALLOCATION_COUNTER();
    FrameBuffer* shared = FrameBuffer::create();
    RenderTexture* source = filled(kRed, {8, 8}, shared);
    RenderTexture* texture = RenderTexture::create({8, 8}, shared, PXFORMAT_RGB888);
    texture->getScene()->addChild(source);
    const auto frame = [&] {
        texture->update(0.1F);
        source->renderToTexture();
        texture->renderToTexture();
    };
    frame();
    GLCallRecorder calls;
    frame();
    const std::size_t first = calls.total();
    calls.clear();
    std::size_t allocations = 0;
    {
        const AllocationCounter counter;
        frame();
        allocations = counter.allocations();
    }
    EXPECT_EQ(allocations, 0U);
    EXPECT_EQ(calls.countObjectCalls(), 0U) << calls.summary();
    EXPECT_EQ(calls.countDraws(), 1U);
    EXPECT_EQ(calls.count("glFramebufferTexture2D"), 2U) << "one a pass on a shared frame buffer";
    EXPECT_EQ(calls.total(), first);
}

}  // namespace
}  // namespace zv::test
