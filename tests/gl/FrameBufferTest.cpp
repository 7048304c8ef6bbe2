#include "gl/FrameBuffer.h"

#include <thread>
#include <vector>

#include "gl/GLChecks.h"
#include "gl/RenderState.h"
#include "gl/RenderTargetDepthStencil.h"
#include "gl/RenderTargetRenderBuffer.h"
#include "gl/RenderTargetTexture.h"
#include "gl/Texture2D.h"
#include "support/Picture.h"

namespace zv::test {

namespace {

struct Listed : FrameBuffer {
    using FrameBuffer::sFrameBuffers;
};

class FrameBufferTest : public GLTest {
protected:
    static RenderTargetTexture* makeTarget() {
        return RenderTargetTexture::create(Size16(4, 4), PXFORMAT_RGBA8888);
    }
    /// A buffer with a texture of 4 x 4 attached in GL.
    FrameBuffer* makeDrawable() {
        FrameBuffer* buffer = FrameBuffer::create();
        buffer->attachRenderTarget(makeTarget());
        applyBound(buffer);
        return buffer;
    }
    void applyBound(FrameBuffer* buffer) {
        renderState()->pushFrameBuffer(buffer);
        buffer->apply();
        renderState()->popFrameBuffer();
    }
    static Pixel pixelOf(const FrameBuffer* buffer) {
        return Picture::readTexture(buffer->getRenderTarget()->getTexture()->getName(), 4, 4).at(3, 0);
    }
    static GLint attachedType(GLenum attachment) {
        GLint type = -1;
        glGetFramebufferAttachmentParameteriv(GL_FRAMEBUFFER, attachment,
                                              GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE, &type);
        return type;
    }
};

TEST_F(FrameBufferTest, AppliesOnceUntilTheBindingIsDirtyAgain) {
    FrameBuffer* buffer = FrameBuffer::create();
    RenderTargetTexture* target = makeTarget();
    RenderTargetRenderBuffer* plain = RenderTargetRenderBuffer::create(Size16(4, 4));
    renderState()->pushFrameBuffer(buffer);
    GLCallRecorder recorder;
    for (int i = 0; i < 2; ++i) {
        buffer->attachRenderTarget(target);
        buffer->apply();
        buffer->apply();
    }
    ASSERT_EQ(recorder.count("glFramebufferTexture2D"), 1u) << "the held target again changes nothing";
    EXPECT_EQ(recorder.callsOf("glFramebufferTexture2D")[0].args,
              (std::vector<double>{GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D,
                                   double(target->getTexture()->getName()), 0}));
    buffer->setFboBindingDirty(true);
    buffer->apply();
    EXPECT_EQ(recorder.count("glFramebufferTexture2D"), 2u);
    EXPECT_EQ(recorder.count("glFramebufferRenderbuffer"), 0u);

    buffer->attachRenderTarget(plain);
    buffer->apply();
    EXPECT_EQ(recorder.callsOf("glFramebufferRenderbuffer").at(0).integer(3), plain->getBuffer());
    EXPECT_EQ(attachedType(GL_COLOR_ATTACHMENT0), GL_RENDERBUFFER);
    buffer->attachRenderTarget(nullptr);
    buffer->apply();
    EXPECT_EQ(attachedType(GL_COLOR_ATTACHMENT0), GL_NONE);
    renderState()->popFrameBuffer();
}

TEST_F(FrameBufferTest, HoldsItsTargetsAndLeavesDepthUnattached) {
    FrameBuffer* buffer = makeDrawable();
    RenderTarget* first = buffer->getRenderTarget();
    buffer->attachRenderTarget(first);
    EXPECT_EQ(first->getRefCount(), 2u);
    RenderTarget* second = makeTarget();
    buffer->attachRenderTarget(second);
    EXPECT_TRUE(first->getRefCount() == 1u && second->getRefCount() == 2u);
    applyBound(buffer);

    RenderTargetDepthStencil* depth = RenderTargetDepthStencil::create(Size16(2, 2));
    buffer->attachDepthStencilTarget(depth);
    buffer->retain();
    drainPool();
    renderState()->pushFrameBuffer(buffer);
    const GLCallRecorder recorder;
    for (int i = 0; i < 2; ++i) {
        buffer->attachDepthStencilTarget(depth);
        EXPECT_EQ(depth->getRefCount(), 1u) << "now the buffer alone holds it";
        buffer->apply();
    }
    EXPECT_EQ(recorder.count("glFramebufferTexture2D"), 2u) << "the same depth target still makes it dirty";
    EXPECT_EQ(attachedType(GL_DEPTH_ATTACHMENT), GL_NONE);
    EXPECT_EQ(attachedType(GL_STENCIL_ATTACHMENT), GL_NONE);
    renderState()->popFrameBuffer();
    const unsigned int depthName = depth->getBuffer(), name = buffer->getFBO();
    buffer->release();
    EXPECT_FALSE(glIsRenderbuffer(depthName) || glIsFramebuffer(name));
}

TEST_F(FrameBufferTest, ResizeReachesBothTargetsAndIsAlwaysFollowedByAnAttachment) {
    FrameBuffer* buffer = makeDrawable();
    buffer->resetSize(Size16(10, 6));
    EXPECT_EQ(buffer->getRenderTarget()->getTexture()->getSize(), Size16(10, 6));

    RenderTargetRenderBuffer* plain = RenderTargetRenderBuffer::create(Size16(4, 4));
    buffer->attachRenderTarget(plain);
    buffer->attachDepthStencilTarget(RenderTargetDepthStencil::create(Size16(4, 4)));
    applyBound(buffer);
    const GLCallRecorder recorder;
    buffer->resetSize(Size16(8, 8));
    EXPECT_EQ(recorder.total(), 0u);
    applyBound(buffer);
    EXPECT_EQ(recorder.count("glFramebufferRenderbuffer"), 1u);
}

TEST_F(FrameBufferTest, ClearsWithItsOwnValuesAndGivesTheBindingBack) {
    FrameBuffer* outer = makeDrawable();
    FrameBuffer* buffer = makeDrawable();
    renderState()->pushFrameBuffer(outer);
    buffer->clearFBO();
    EXPECT_EQ(pixelOf(buffer), (Pixel{0, 0, 0, 255}));
    buffer->setClearColor(Color4F{1.0f, 0.2f, 0.4f, 0.6f});
    buffer->setClearDepth(0.25f);
    buffer->setClearStencil(-3);
    const GLCallRecorder recorder;
    buffer->clearFBO();
    EXPECT_EQ(recorder.callsOf("glClear").at(0).integer(0),
              GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    EXPECT_EQ(recorder.callsOf("glClearDepth").at(0).args[0], 0.25);
    EXPECT_EQ(recorder.callsOf("glClearStencil").at(0).integer(0), -3);
    EXPECT_EQ(pixelOf(buffer), (Pixel{255, 51, 102, 153}));
    EXPECT_EQ(integer(GL_FRAMEBUFFER_BINDING), outer->getFBO());
    renderState()->popFrameBuffer();
}

TEST_F(FrameBufferTest, AllAreClearedByTheirOwnThreadOnly) {
    ASSERT_TRUE(Listed::sFrameBuffers.empty());
    for (int i = 0; i < 3; ++i)
        makeDrawable();
    FrameBuffer::createDefault(0);
    const GLCallRecorder recorder;
    std::thread([] { FrameBuffer::clearAllFBOs(); }).join();
    EXPECT_EQ(recorder.total(), 0u) << "another thread has no context for these names";

    FrameBuffer::clearAllFBOs();
    EXPECT_EQ(recorder.count("glClear"), 3u) << "the host's buffer is not ours to clear";
    drainPool();
    EXPECT_TRUE(Listed::sFrameBuffers.empty());
}

TEST_F(FrameBufferTest, DefaultOneStandsForTheHostsBuffer) {
    FrameBuffer* drawable = makeDrawable();
    FrameBuffer* host = FrameBuffer::createDefault(static_cast<int>(drawable->getFBO()));
    EXPECT_TRUE(host->isDefaultFBO() && !drawable->isDefaultFBO());
    EXPECT_EQ(FrameBuffer::sDefaultFBO.load(), host);
    FrameBuffer* later = FrameBuffer::createDefault(0);
    later->retain();
    drawable->retain();
    host->attachRenderTarget(makeTarget());
    {
        const GLCallRecorder recorder;
        host->apply();
        FrameBuffer::applyDefaultFBO();
        EXPECT_EQ(recorder.total(), 0u) << "nothing is attached to the host's buffer";
    }
    drainPool();
    EXPECT_TRUE(glIsFramebuffer(drawable->getFBO())) << "the host owns the name";
    EXPECT_EQ(FrameBuffer::sDefaultFBO.load(), later) << "an older one goes without a trace";
    later->release();
    EXPECT_EQ(FrameBuffer::sDefaultFBO.load(), nullptr);
    drawable->release();
}

using RenderTargetTest = GLTest;

/// What GL knows of the bound render buffer.
GLint storage(GLenum name) {
    GLint value = 0;
    glGetRenderbufferParameteriv(GL_RENDERBUFFER, name, &value);
    return value;
}

TEST_F(RenderTargetTest, RenderBuffersAreAllocatedOnceWithoutTouchingTheBinding) {
    RenderTarget* color = RenderTargetRenderBuffer::create(Size16(20, 10));
    glBindRenderbuffer(GL_RENDERBUFFER, color->getBuffer());
    RenderTarget* depth = RenderTargetDepthStencil::create(Size16(8, 4));
    EXPECT_EQ(integer(GL_RENDERBUFFER_BINDING), color->getBuffer());
    const unsigned int names[] = {color->getBuffer(), depth->getBuffer()};
    for (RenderTarget* target : {color, depth}) {
        const Size16 size = target->getSize();
        EXPECT_FALSE(target->resetSize(Size16(64, 64)));
        EXPECT_EQ(target->getSize(), size);
        glBindRenderbuffer(GL_RENDERBUFFER, target->getBuffer());
        EXPECT_EQ(storage(GL_RENDERBUFFER_WIDTH), size.x);
        EXPECT_EQ(storage(GL_RENDERBUFFER_HEIGHT), size.y);
        EXPECT_EQ(storage(GL_RENDERBUFFER_INTERNAL_FORMAT), target == color ? GL_RGBA4 : GL_DEPTH24_STENCIL8);
    }
    drainPool();
    EXPECT_FALSE(glIsRenderbuffer(names[0]) || glIsRenderbuffer(names[1]));
}

TEST_F(RenderTargetTest, TextureSizeInBytesIsThreeAPixelForRgbAndFourForTheRest) {
    struct Probe : RenderTargetTexture {
        using RenderTarget::init;
        using RenderTargetTexture::getTexSize;
    } probe;
    probe.init(Size16(3, 2));
    EXPECT_EQ(probe.getTexSize(PXFORMAT_RGB888), 18u);
    EXPECT_EQ(probe.getTexSize(PXFORMAT_R8), 24u);
    probe.init(Size16(65535, 65535));
    EXPECT_EQ(probe.getTexSize(PXFORMAT_RGBA8888), 17179344900u) << "more than 32 bits hold";
}

TEST_F(RenderTargetTest, OwnTextureIsMadeAnewForAnotherSizeOnly) {
    auto* target = RenderTargetTexture::create(Size16(6, 5), PXFORMAT_RGB888);
    Texture2D* texture = target->getTexture();
    texture->active(0);
    EXPECT_EQ(levelSize(), Size16(6, 5));
    const unsigned int before = texture->getName();
    const GLCallRecorder recorder;
    EXPECT_TRUE(target->resetSize(Size16(6, 5)));
    EXPECT_EQ(recorder.total(), 0u);
    EXPECT_TRUE(target->resetSize(Size16(9, 4)));
    EXPECT_EQ(recorder.callsOf("glDeleteTextures").at(0).integer(0), 1);
    EXPECT_TRUE(glIsTexture(before) == GL_FALSE || texture->getName() == before) << "no name is leaked";
    EXPECT_EQ(target->getTexture(), texture);
    EXPECT_EQ(target->getSize(), Size16(9, 4));
    texture->active(0);
    EXPECT_EQ(levelSize(), Size16(9, 4));
    EXPECT_EQ(texture->getPxFormat(), PXFORMAT_RGB888);
    EXPECT_EQ(RenderTargetTexture::create(Size16(4, 4), PXFORMAT_GRAY8), nullptr) << "a format without a row";
}

TEST_F(RenderTargetTest, HostTextureIsRetainedAndKeepsItsStorage) {
    EXPECT_EQ(RenderTargetTexture::create(nullptr), nullptr);
    auto* texture = new Texture2D;
    const unsigned int name = newTextureName();
    texture->init(name, Size16(12, 7), PXFORMAT_RGBA8888, false);
    RenderTargetTexture* target = RenderTargetTexture::create(texture);
    EXPECT_EQ(target->getSize(), Size16(12, 7));
    const GLCallRecorder recorder;
    EXPECT_TRUE(target->resetSize(Size16(3, 3)));
    EXPECT_EQ(recorder.total(), 0u);
    EXPECT_EQ(target->getSize(), Size16(3, 3));
    EXPECT_TRUE(texture->getSize() == Size16(12, 7) && texture->getName() == name);
    EXPECT_EQ(texture->getRefCount(), 2u);
    drainPool();
    EXPECT_EQ(texture->getRefCount(), 1u);
    texture->release();
    glDeleteTextures(1, &name);
}

}  // namespace

}  // namespace zv::test
