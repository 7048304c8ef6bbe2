#include "effects/FaceBuffingNode.h"

#include "core/RefCreate.h"
#include "gl/FrameBuffer.h"

namespace zv {

FaceBuffingNode* FaceBuffingNode::create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                         PxFormat format) {
    return createRef<FaceBuffingNode>(
        [&](FaceBuffingNode& node) { return node.init(size, frameBuffer, format); });
}

}  // namespace zv
