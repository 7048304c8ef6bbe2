#include "gl/RenderTargetRenderBuffer.h"

#include <GL/glew.h>

#include "core/RefCreate.h"

namespace zv {

RenderTargetRenderBuffer* RenderTargetRenderBuffer::create(const Size16& size) {
    return createRef<RenderTargetRenderBuffer>([&](RenderTargetRenderBuffer& t) { return t.init(size); });
}

RenderTargetRenderBuffer::RenderTargetRenderBuffer() : RenderTarget(TYPE_BUFFER), mFormat(GL_RGBA4) {}

RenderTargetRenderBuffer::~RenderTargetRenderBuffer() {
    deleteRenderBuffer(mBuffer);
}

unsigned int RenderTargetRenderBuffer::getBuffer() const {
    return mBuffer;
}

bool RenderTargetRenderBuffer::resetSize(const Size16&) {
    return false;
}

bool RenderTargetRenderBuffer::init(const Size16& size) {
    mSize = size;
    mBuffer = makeRenderBuffer(size, mFormat, "render target");
    return true;
}

}  // namespace zv
