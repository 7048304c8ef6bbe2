#include "scene/RenderTexture.h"

#include "RenderTextureTools.h"
#include "gl/RenderState.h"
#include "gl/RenderTargetDepthStencil.h"
#include "scene/ZVEngine.h"

namespace zv::test {
namespace {

using RenderTextureTest = EngineTest;

GLuint boundFrameBuffer() {
    return static_cast<GLuint>(glInteger(GL_FRAMEBUFFER_BINDING));
}

RenderTexture* filled(Pixel colour, Size16 size, FrameBuffer* frameBuffer = nullptr) {
    return showing(FillNode::create(colour), size, frameBuffer);
}

FillNode* contentOf(RenderTexture* texture) {
    return static_cast<FillNode*>(texture->getScene()->getFirstChild());
}

TEST_F(RenderTextureTest, MakesItsTargetAtFirstNeedOrTakesOne) {
    RenderTexture* texture = RenderTexture::create({72, 128}, nullptr, PXFORMAT_RGB888);
    EXPECT_EQ(texture->getTexture(1), nullptr);
    EXPECT_NE(texture->Sprite::getTexture(0), nullptr) << "asking for any slot fills slot 0";
    RenderTarget* target = texture->getRenderTarget();
    RenderTexture* taker = RenderTexture::create(target);
    taker->setRenderTarget(target);
    EXPECT_EQ(target->getRefCount(), 3U);
    EXPECT_EQ(taker->getTexture(0), texture->getTexture(0));
    EXPECT_EQ(taker->getSize(), Size16(72, 128));
    EXPECT_EQ(taker->getPxFormat(), PXFORMAT_RGB888);
    EXPECT_EQ(RenderTexture::create(nullptr), nullptr);
}

TEST_F(RenderTextureTest, SettingASceneReleasesTheOneBeforeEvenWhenItIsTheSame) {
    RenderTexture* texture = filled(kRed, {4, 4});
    texture->retain();
    texture->setScene(texture->getScene());
    EXPECT_NE(texture->getScene()->getFirstChild(), nullptr);
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
        contentOf(middle)->whenDrawn = [&] { inner->renderToTexture(); };
        contentOf(outer)->whenDrawn = [&] {
            middle->renderToTexture();
            EXPECT_EQ(boundFrameBuffer(), outerBuffer->getFBO());
        };
        outer->renderToTexture();
        EXPECT_EQ(boundFrameBuffer(), 0U);
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
    contentOf(outer)->whenDrawn = [&] {
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
    FillNode* upper = FillNode::create(kRed);
    upper->whenDrawn = [] { fillRect(0, 0, 4, 2, kGreen); };
    RenderTexture* texture = showing(upper, {4, 4});
    texture->getScene()->setViewPort({0, 2, 4, 2});
    texture->renderToTexture();
    RenderTexture* shows = showing(texture, {4, 4});
    shows->renderToTexture();
    const Picture expected = Picture::make(4, 4, [](int, int y) { return y < 2 ? kGreen : kRed; });
    EXPECT_EQ(pictureOf(*texture), expected);
    EXPECT_EQ(pictureOf(*shows), expected);

    // Under its own scene, and asked to render from inside itself: neither goes round and round.
    upper->whenDrawn = [&] { texture->renderToTexture(); };
    texture->removeFromParent();
    texture->getScene()->addChild(texture);
    FillNode* child = FillNode::create(kRed);
    texture->addChild(child);
    texture->update(1.0F);
    texture->update(2.0F);
    EXPECT_EQ(upper->time, 3.0F) << "each call from outside is a pass";
    EXPECT_EQ(child->time, 3.0F);
    texture->renderToTexture();
    texture->removeFromParent();
}

TEST_F(RenderTextureTest, ResizesTargetAndAttachmentsButNotTheViewPortOfItsScene) {
    RenderTexture* texture = filled(kRed, {72, 128});
    texture->getFrameBuffer()->attachDepthStencilTarget(RenderTargetDepthStencil::create({72, 128}));
    texture->renderToTexture();
    texture->setRect({0, 0, 36, 64});
    texture->resetSize({36, 60});
    EXPECT_EQ(texture->getContentSize(), Vec2f(36, 60));
    EXPECT_EQ(texture->getFrameBuffer()->getRenderTarget()->getSize(), Size16(36, 60));
    EXPECT_EQ(texture->getScene()->getViewPort(), ViewPort(0, 0, 72, 128));
    const T2F_Quad coords = texture->getTexCoords();
    EXPECT_EQ(coords.texCoords[0], Vec2f(0, 1)) << "flipped";
    EXPECT_EQ(coords.texCoords[3], Vec2f(1, 0)) << "the whole new texture is shown";
    texture->fitViewPort();
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

    RenderTexture* taker = filled(kRed, {4, 4});
    taker->updateTargetTextureId(names[0]);
    drainPool();
    EXPECT_FALSE(glIsTexture(names[0])) << "the short form hands over what an owned name had";
    EXPECT_TRUE(glIsTexture(names[1])) << "or had not";
    glDeleteTextures(1, &names[1]);
}

}  // namespace
}  // namespace zv::test
