#pragma once

#include "gl/RenderTarget.h"

namespace zv {

/// A render target whose colour lands in a render buffer (GL_RGBA4): drawn into, never sampled.
class ZV_API RenderTargetRenderBuffer : public RenderTarget {
public:
    /// Allocates the render buffer; the render buffer binding is left as it was. Autoreleased.
    static RenderTargetRenderBuffer* create(const Size16& size);

    RenderTargetRenderBuffer();
    ~RenderTargetRenderBuffer() override;

    unsigned int getBuffer() const override;

    /// Does nothing and answers false: a render buffer keeps the size that it was made with.
    bool resetSize(const Size16& size) override;

protected:
    bool init(const Size16& size);

private:
    unsigned int mFormat;
    unsigned int mBuffer = 0;
};

}  // namespace zv
