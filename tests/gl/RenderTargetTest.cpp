#include <GL/glew.h>

#include "gl/RenderTarget.h"
#include "gl/RenderTargetDepthStencil.h"
#include "gl/RenderTargetRenderBuffer.h"
#include "gl/RenderTargetTexture.h"
#include "gl/Texture2D.h"
#include "support/GLCallRecorder.h"
#include "support/GLTest.h"

namespace {

using namespace zv;
using zv::test::GLCallRecorder;
using zv::test::GLTest;
using RenderTargetTest = GLTest;

/// Width, height and internal format of a render buffer as GL knows them.
struct BufferStorage {
    GLint width = 0, height = 0, format = 0;

    explicit BufferStorage(unsigned int name) {
        glBindRenderbuffer(GL_RENDERBUFFER, name);
        glGetRenderbufferParameteriv(GL_RENDERBUFFER, GL_RENDERBUFFER_WIDTH, &width);
        glGetRenderbufferParameteriv(GL_RENDERBUFFER, GL_RENDERBUFFER_HEIGHT, &height);
        glGetRenderbufferParameteriv(GL_RENDERBUFFER, GL_RENDERBUFFER_INTERNAL_FORMAT, &format);
    }
};

Size16 textureSizeInGL(const Texture2D& texture) {
    GLint width = 0, height = 0;
    glBindTexture(texture.getTarget(), texture.getName());
    glGetTexLevelParameteriv(texture.getTarget(), 0, GL_TEXTURE_WIDTH, &width);
    glGetTexLevelParameteriv(texture.getTarget(), 0, GL_TEXTURE_HEIGHT, &height);
    return Size16(static_cast<unsigned short>(width), static_cast<unsigned short>(height));
}

TEST_F(RenderTargetTest, BaseHoldsASizeAndNothingElse) {
    RenderTarget target;
    EXPECT_TRUE(target.init(Size16(7, 5)));
    EXPECT_TRUE(target.resetSize(Size16(1, 1)));
    EXPECT_EQ(target.getSize(), Size16(7, 5));
    EXPECT_EQ(target.getTexture(), nullptr);
    EXPECT_EQ(target.getBuffer(), 0u);
    EXPECT_EQ(target.getType(), RenderTarget::TYPE_BUFFER);
}

TEST_F(RenderTargetTest, RenderBuffersAreAllocatedOnceWithoutTouchingTheBinding) {
    GLuint mine = 0;
    glGenRenderbuffers(1, &mine);
    glBindRenderbuffer(GL_RENDERBUFFER, mine);
    RenderTarget* color = RenderTargetRenderBuffer::create(Size16(20, 10));
    RenderTarget* depth = RenderTargetDepthStencil::create(Size16(8, 4));
    GLint bound = 0;
    glGetIntegerv(GL_RENDERBUFFER_BINDING, &bound);
    EXPECT_EQ(static_cast<GLuint>(bound), mine);

    const unsigned int names[] = {color->getBuffer(), depth->getBuffer()};
    for (RenderTarget* target : {color, depth}) {
        EXPECT_EQ(target->getType(), RenderTarget::TYPE_BUFFER);
        EXPECT_EQ(target->getTexture(), nullptr);
        const Size16 size = target->getSize();
        EXPECT_FALSE(target->resetSize(Size16(64, 64)));
        EXPECT_EQ(target->getSize(), size);
        const BufferStorage storage(target->getBuffer());
        EXPECT_EQ(storage.width, size.x);
        EXPECT_EQ(storage.height, size.y);
        EXPECT_EQ(storage.format, target == color ? GL_RGBA4 : GL_DEPTH24_STENCIL8);
    }
    drainPool();
    for (const unsigned int name : names) {
        EXPECT_FALSE(glIsRenderbuffer(name));
    }
    glDeleteRenderbuffers(1, &mine);
}

TEST_F(RenderTargetTest, TextureSizeInBytesIsThreeAPixelForRgbAndFourForTheRest) {
    struct Probe : RenderTargetTexture {
        using RenderTarget::init;
        using RenderTargetTexture::getTexSize;
    } probe;
    probe.init(Size16(3, 2));
    EXPECT_EQ(probe.getTexSize(PXFORMAT_RGB888), 18u);
    EXPECT_EQ(probe.getTexSize(PXFORMAT_RGBA8888), 24u);
    EXPECT_EQ(probe.getTexSize(PXFORMAT_R8), 24u);
    probe.init(Size16(65535, 65535));
    EXPECT_EQ(probe.getTexSize(PXFORMAT_RGBA8888), 17179344900u) << "more than 32 bits hold";
}

TEST_F(RenderTargetTest, OwnTextureIsMadeAnewForAnotherSizeOnly) {
    ZV_NEEDS_RECORDER();
    auto* target = RenderTargetTexture::create(Size16(6, 5), PXFORMAT_RGB888);
    ASSERT_NE(target, nullptr);
    Texture2D* texture = target->getTexture();
    EXPECT_EQ(target->getType(), RenderTarget::TYPE_TEXTURE);
    EXPECT_EQ(target->getBuffer(), 0u);
    EXPECT_EQ(texture->getTarget(), static_cast<unsigned int>(GL_TEXTURE_2D));
    EXPECT_FALSE(texture->hasMipmaps());
    EXPECT_EQ(textureSizeInGL(*texture), Size16(6, 5));
    {
        const GLCallRecorder recorder;
        EXPECT_TRUE(target->resetSize(Size16(6, 5)));
        EXPECT_EQ(recorder.total(), 0u);
    }
    const unsigned int before = texture->getName();
    {
        const GLCallRecorder recorder;
        EXPECT_TRUE(target->resetSize(Size16(9, 4)));
        EXPECT_EQ(recorder.count("glDeleteTextures"), 1u);
        EXPECT_EQ(recorder.callsOf("glDeleteTextures")[0].integer(0), 1);
    }
    EXPECT_EQ(target->getTexture(), texture);
    EXPECT_TRUE(glIsTexture(before) == GL_FALSE || texture->getName() == before) << "no name is leaked";
    EXPECT_EQ(target->getSize(), Size16(9, 4));
    EXPECT_EQ(textureSizeInGL(*texture), Size16(9, 4));
    EXPECT_EQ(texture->getPxFormat(), PXFORMAT_RGB888);
    EXPECT_EQ(RenderTargetTexture::create(Size16(4, 4), PXFORMAT_GRAY8), nullptr) << "a format without a row";
}

TEST_F(RenderTargetTest, HostTextureIsRetainedAndKeepsItsStorage) {
    ZV_NEEDS_RECORDER();
    EXPECT_EQ(RenderTargetTexture::create(nullptr), nullptr);
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    auto* texture = new Texture2D;
    texture->init(name, Size16(12, 7), PXFORMAT_RGBA8888, false);
    RenderTargetTexture* target = RenderTargetTexture::create(texture);
    EXPECT_EQ(texture->getRefCount(), 2u);
    EXPECT_EQ(target->getSize(), Size16(12, 7));
    {
        const GLCallRecorder recorder;
        EXPECT_TRUE(target->resetSize(Size16(3, 3)));
        EXPECT_EQ(recorder.total(), 0u);
    }
    EXPECT_EQ(target->getSize(), Size16(3, 3));
    EXPECT_EQ(texture->getSize(), Size16(12, 7));
    EXPECT_EQ(texture->getName(), name);
    drainPool();
    EXPECT_EQ(texture->getRefCount(), 1u);
    texture->release();
    EXPECT_TRUE(glIsTexture(name));
    glDeleteTextures(1, &name);
}

}  // namespace
