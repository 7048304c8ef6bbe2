#pragma once

#include "gl/RenderTarget.h"

namespace zv {

/// A depth and stencil render buffer (GL_DEPTH24_STENCIL8). A frame buffer holds and resizes it but does
/// not attach it; see FrameBuffer::apply().
class ZV_API RenderTargetDepthStencil : public RenderTarget {
public:
    /// Allocates the render buffer; the render buffer binding is left as it was. Autoreleased.
    static RenderTargetDepthStencil* create(const Size16& size);

    RenderTargetDepthStencil();
    ~RenderTargetDepthStencil() override;

    unsigned int getBuffer() const override;

    /// Does nothing and answers false: a render buffer keeps the size that it was made with.
    bool resetSize(const Size16& size) override;

protected:
    bool init(const Size16& size);

private:
    unsigned int mBuffer = 0;
};

}  // namespace zv
