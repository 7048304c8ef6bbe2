#include "scene/IFrameBuffer.h"

#include "gl/FrameBuffer.h"

namespace zv {

IFrameBuffer::IFrameBuffer() = default;

IFrameBuffer::IFrameBuffer(const IFrameBuffer&) = default;

IFrameBuffer& IFrameBuffer::operator=(const IFrameBuffer&) = default;

IFrameBuffer::~IFrameBuffer() = default;

void IFrameBuffer::setFrameBuffer(FrameBuffer* frameBuffer) {
    mFrameBuffer.set(frameBuffer);
}

FrameBuffer* IFrameBuffer::getFrameBuffer() {
    return mFrameBuffer.get();
}

}  // namespace zv
