#pragma once

#include "core/ZVExport.h"
#include "scene/RefHolder.h"

namespace zv {

class FrameBuffer;

/// The frame buffer that something draws into, retained. Null at first.
class ZV_API IFrameBuffer {
public:
    IFrameBuffer();
    IFrameBuffer(const IFrameBuffer& other);             ///< borrows the frame buffer, never releases it
    IFrameBuffer& operator=(const IFrameBuffer& other);  ///< borrows the frame buffer, never releases it
    virtual ~IFrameBuffer();

    /// Releases the frame buffer before and retains this one; the same pointer changes nothing.
    virtual void setFrameBuffer(FrameBuffer* frameBuffer);
    virtual FrameBuffer* getFrameBuffer();

private:
    RefHolder<FrameBuffer> mFrameBuffer;
};

}  // namespace zv
