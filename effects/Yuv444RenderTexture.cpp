#include "effects/Yuv444RenderTexture.h"

#include "core/RefCreate.h"
#include "gl/FrameBuffer.h"
#include "gl/Program.h"

namespace zv {

Yuv444RenderTexture* Yuv444RenderTexture::create(const TVec<2, unsigned short>& size,
                                                 FrameBuffer* frameBuffer) {
    return createRef<Yuv444RenderTexture>(
        [&](Yuv444RenderTexture& node) { return node.init(size, frameBuffer); });
}

bool Yuv444RenderTexture::init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer) {
    RenderTexture* inner = RenderTexture::create(size, frameBuffer, PXFORMAT_RGB888);
    if (inner == nullptr || !RenderTexture::init(size, frameBuffer, PXFORMAT_RGB888)) {
        return false;
    }
    // The own scene draws the inner picture through it into the own target, which so holds YUV values.
    inner->setProgram(Program::createWithFile("ZvShaderTexturePosition.vert", "ZvShaderRGB2YUV.frag"));
    addRenderTexture(inner);
    setup();
    setColorConversion(COLOR_CONVERSION_601_VIDEO);
    return true;
}

void Yuv444RenderTexture::setColorConversion(ColorConversion conversion) {
    if (!getRenderTextures().empty()) {
        sendRgbToYuv(getRenderTextures().front()->getProgram(), conversion);
    }
}

}  // namespace zv
