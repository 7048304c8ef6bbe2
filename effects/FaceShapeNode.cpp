#include "effects/FaceShapeNode.h"

#include "core/RefCreate.h"
#include "gl/FrameBuffer.h"

namespace zv {

FaceShapeNode* FaceShapeNode::create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                     PxFormat format) {
    return createRef<FaceShapeNode>(
        [&](FaceShapeNode& node) { return node.init(size, frameBuffer, format); });
}

void FaceShapeNode::updateFaceShape(int type, float value) {
    mStrengths[type] = value;
}

float FaceShapeNode::getFaceShape(int type) const {
    const auto found = mStrengths.find(type);
    return found != mStrengths.end() ? found->second : 0.0F;
}

}  // namespace zv
