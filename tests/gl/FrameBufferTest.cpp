#include "gl/FrameBuffer.h"

#include <GL/glew.h>

#include <thread>
#include <vector>

#include "gl/RenderState.h"
#include "gl/RenderTargetDepthStencil.h"
#include "gl/RenderTargetRenderBuffer.h"
#include "gl/RenderTargetTexture.h"
#include "gl/Texture2D.h"
#include "support/GLCallRecorder.h"
#include "support/GLTest.h"
#include "support/Picture.h"

namespace {

using namespace zv;
using zv::test::GLCall;
using zv::test::GLCallRecorder;
using zv::test::Picture;
using zv::test::Pixel;

struct Listed : FrameBuffer {
    using FrameBuffer::sFrameBuffers;
};

class FrameBufferTest : public zv::test::GLTest {
protected:
    /// A buffer with a texture of 4 x 4 attached in GL.
    FrameBuffer* makeDrawable() {
        FrameBuffer* buffer = FrameBuffer::create();
        buffer->attachRenderTarget(RenderTargetTexture::create(Size16(4, 4), PXFORMAT_RGBA8888));
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
    ZV_NEEDS_RECORDER();
    FrameBuffer* buffer = FrameBuffer::create();
    RenderTargetTexture* texture = RenderTargetTexture::create(Size16(4, 4), PXFORMAT_RGBA8888);
    RenderTargetRenderBuffer* plain = RenderTargetRenderBuffer::create(Size16(4, 4));
    GLCallRecorder recorder;
    renderState()->pushFrameBuffer(buffer);
    buffer->attachRenderTarget(texture);
    buffer->apply();
    buffer->apply();
    ASSERT_EQ(recorder.count("glFramebufferTexture2D"), 1u);
    const GLCall attached = recorder.callsOf("glFramebufferTexture2D")[0];
    EXPECT_EQ(attached.args, (std::vector<double>{GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D,
                                                  double(texture->getTexture()->getName()), 0}));
    buffer->attachRenderTarget(texture);
    buffer->apply();
    EXPECT_EQ(recorder.count("glFramebufferTexture2D"), 1u) << "the held target again";
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
    ZV_NEEDS_RECORDER();
    FrameBuffer* buffer = makeDrawable();
    RenderTarget* first = buffer->getRenderTarget();
    buffer->attachRenderTarget(first);
    EXPECT_EQ(first->getRefCount(), 2u);
    RenderTarget* second = RenderTargetTexture::create(Size16(2, 2), PXFORMAT_RGBA8888);
    buffer->attachRenderTarget(second);
    EXPECT_EQ(first->getRefCount(), 1u);
    EXPECT_EQ(second->getRefCount(), 2u);
    applyBound(buffer);

    RenderTargetDepthStencil* depth = RenderTargetDepthStencil::create(Size16(2, 2));
    buffer->attachDepthStencilTarget(depth);
    buffer->retain();
    depth->retain();
    second->retain();
    drainPool();
    depth->release();  // now the buffer alone holds it
    GLCallRecorder recorder;
    renderState()->pushFrameBuffer(buffer);
    for (int i = 0; i < 2; ++i) {
        buffer->attachDepthStencilTarget(depth);
        EXPECT_EQ(depth->getRefCount(), 1u);
        buffer->apply();
    }
    EXPECT_EQ(recorder.count("glFramebufferTexture2D"), 2u) << "the same depth target still makes it dirty";
    EXPECT_EQ(attachedType(GL_DEPTH_ATTACHMENT), GL_NONE);
    EXPECT_EQ(attachedType(GL_STENCIL_ATTACHMENT), GL_NONE);
    renderState()->popFrameBuffer();
    EXPECT_EQ(buffer->getDepthStencilTarget(), depth);
    const unsigned int depthName = depth->getBuffer();
    const unsigned int name = buffer->getFBO();
    buffer->release();
    EXPECT_EQ(second->getRefCount(), 1u);
    EXPECT_FALSE(glIsRenderbuffer(depthName));
    EXPECT_FALSE(glIsFramebuffer(name));
    second->release();
}

TEST_F(FrameBufferTest, ResizeReachesBothTargetsAndIsAlwaysFollowedByAnAttachment) {
    ZV_NEEDS_RECORDER();
    FrameBuffer* buffer = makeDrawable();
    buffer->resetSize(Size16(10, 6));
    EXPECT_EQ(buffer->getRenderTarget()->getTexture()->getSize(), Size16(10, 6));

    RenderTargetRenderBuffer* plain = RenderTargetRenderBuffer::create(Size16(4, 4));
    buffer->attachRenderTarget(plain);
    buffer->attachDepthStencilTarget(RenderTargetDepthStencil::create(Size16(4, 4)));
    applyBound(buffer);
    GLCallRecorder recorder;
    buffer->resetSize(Size16(8, 8));
    EXPECT_EQ(plain->getSize(), Size16(4, 4));
    EXPECT_EQ(buffer->getDepthStencilTarget()->getSize(), Size16(4, 4));
    EXPECT_EQ(recorder.total(), 0u);
    applyBound(buffer);
    EXPECT_EQ(recorder.count("glFramebufferRenderbuffer"), 1u);

    FrameBuffer* empty = FrameBuffer::create();
    empty->resetSize(Size16(8, 8));  // nothing to resize
}

TEST_F(FrameBufferTest, ClearsWithItsOwnValuesAndGivesTheBindingBack) {
    ZV_NEEDS_RECORDER();
    FrameBuffer* outer = makeDrawable();
    FrameBuffer* buffer = makeDrawable();
    EXPECT_EQ(buffer->getClearDepth(), 1.0f);
    EXPECT_EQ(buffer->getClearStencil(), 0);
    renderState()->pushFrameBuffer(outer);
    GLCallRecorder recorder;
    buffer->clearFBO();
    EXPECT_EQ(pixelOf(buffer), (Pixel{0, 0, 0, 255}));
    buffer->setClearColor(Color4F{1.0f, 0.2f, 0.4f, 0.6f});
    buffer->setClearDepth(0.25f);
    buffer->setClearStencil(-3);
    recorder.clear();
    buffer->clearFBO();
    EXPECT_EQ(recorder.count("glClear"), 1u);
    EXPECT_EQ(recorder.callsOf("glClear")[0].integer(0),
              GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    EXPECT_EQ(recorder.callsOf("glClearDepth").at(0).args[0], 0.25);
    EXPECT_EQ(recorder.callsOf("glClearStencil").at(0).integer(0), -3);
    EXPECT_EQ(pixelOf(buffer), (Pixel{255, 51, 102, 153}));
    GLint bound = -1;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
    EXPECT_EQ(static_cast<unsigned int>(bound), outer->getFBO());
    EXPECT_EQ(renderState()->getCurFBO(), outer->getFBO());
    renderState()->popFrameBuffer();
}

TEST_F(FrameBufferTest, AllAreClearedInSetOrderByTheirOwnThreadOnly) {
    ZV_NEEDS_RECORDER();
    GLCallRecorder recorder;
    ASSERT_TRUE(Listed::sFrameBuffers.empty());
    FrameBuffer::clearAllFBOs();
    EXPECT_EQ(recorder.total(), 0u);

    FrameBuffer* buffers[] = {makeDrawable(), makeDrawable(), makeDrawable()};
    FrameBuffer::createDefault(0);
    recorder.clear();
    std::thread([] { FrameBuffer::clearAllFBOs(); }).join();
    EXPECT_EQ(recorder.total(), 0u) << "another thread has no context for these names";

    FrameBuffer::clearAllFBOs();
    EXPECT_EQ(recorder.count("glClear"), 3u) << "the host's buffer is not ours to clear";
    std::vector<long long> bound;
    for (const GLCall& call : recorder.callsOf("glBindFramebuffer")) {
        if (call.integer(1) != 0) {
            bound.push_back(call.integer(1));
        }
    }
    std::vector<long long> expected;
    for (const FrameBuffer* buffer : Listed::sFrameBuffers) {
        expected.push_back(buffer->getFBO());
    }
    EXPECT_EQ(bound, expected);
    EXPECT_EQ(pixelOf(buffers[1]), (Pixel{0, 0, 0, 255}));
    drainPool();
    EXPECT_TRUE(Listed::sFrameBuffers.empty());
}

TEST_F(FrameBufferTest, DefaultOneStandsForTheHostsBuffer) {
    ZV_NEEDS_RECORDER();
    EXPECT_EQ(FrameBuffer::sDefaultFBO.load(), nullptr);
    FrameBuffer* drawable = makeDrawable();
    EXPECT_FALSE(drawable->isDefaultFBO());
    FrameBuffer* host = FrameBuffer::createDefault(static_cast<int>(drawable->getFBO()));
    EXPECT_TRUE(host->isDefaultFBO());
    EXPECT_EQ(host->getFBO(), drawable->getFBO());
    EXPECT_EQ(FrameBuffer::sDefaultFBO.load(), host);
    FrameBuffer* later = FrameBuffer::createDefault(0);
    later->retain();
    drawable->retain();
    GLCallRecorder recorder;
    host->attachRenderTarget(RenderTargetTexture::create(Size16(2, 2), PXFORMAT_RGBA8888));
    recorder.clear();
    host->apply();
    FrameBuffer::applyDefaultFBO();
    EXPECT_EQ(recorder.total(), 0u) << "nothing is attached to the host's buffer";
    drainPool();
    EXPECT_TRUE(glIsFramebuffer(drawable->getFBO())) << "the host owns the name";
    EXPECT_EQ(FrameBuffer::sDefaultFBO.load(), later) << "an older one goes without a trace";
    later->release();
    EXPECT_EQ(FrameBuffer::sDefaultFBO.load(), nullptr);
    drawable->release();
}

}  // namespace
