#include "gl/RenderTargetDepthStencil.h"

#include <GL/glew.h>

#include "core/RefCreate.h"

namespace zv {

RenderTargetDepthStencil* RenderTargetDepthStencil::create(const Size16& size) {
    return createRef<RenderTargetDepthStencil>([&](RenderTargetDepthStencil& t) { return t.init(size); });
}

RenderTargetDepthStencil::RenderTargetDepthStencil() : RenderTarget(TYPE_BUFFER) {}

RenderTargetDepthStencil::~RenderTargetDepthStencil() {
    deleteRenderBuffer(mBuffer);
}

unsigned int RenderTargetDepthStencil::getBuffer() const {
    return mBuffer;
}

bool RenderTargetDepthStencil::resetSize(const Size16&) {
    return false;
}

bool RenderTargetDepthStencil::init(const Size16& size) {
    mSize = size;
    mBuffer = makeRenderBuffer(size, GL_DEPTH24_STENCIL8, "depth-stencil target");
    return true;
}

}  // namespace zv
