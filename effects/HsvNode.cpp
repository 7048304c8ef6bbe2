#include "effects/HsvNode.h"

#include "core/RefCreate.h"
#include "gl/FrameBuffer.h"
#include "gl/Program.h"

namespace zv {

HsvNode* HsvNode::create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) {
    return createRef<HsvNode>([&](HsvNode& node) { return node.init(size, frameBuffer, format); });
}

bool HsvNode::init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) {
    if (!RenderTexture::init(size, frameBuffer, format)) {
        return false;
    }
    setProgram(Program::createWithFile("ZvShaderTexturePosition.vert", "ZvShaderHSV.frag"));
    if (Program* program = getProgram()) {
        program->setPointwise(true);
    }
    sendAdjust();
    return true;
}

void HsvNode::setHue(float factor) {
    mAdjust[0] = factor;
    sendAdjust();
}

void HsvNode::setSaturation(float factor) {
    mAdjust[1] = factor;
    sendAdjust();
}

void HsvNode::setValue(float factor) {
    mAdjust[2] = factor;
    sendAdjust();
}

void HsvNode::sendAdjust() {
    if (!getProgram()) {
        return;
    }
    // Straight to GL, not with the next draw. The program remembers the last vector and sends only a new one.
    getProgram()->use();
    getProgram()->setUniform3fv("u_hsv_adjust", mAdjust, 1);
}

}  // namespace zv
