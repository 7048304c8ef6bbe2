#pragma once

#include "core/TVec.h"
#include "core/ZVExport.h"
#include "effects/ColorConversion.h"
#include "scene/MutilRenderTexture.h"

namespace zv {

class FrameBuffer;

/// Turns every pixel of its picture into YUV at full size, Y in red, U in green and V in blue. getOutData()
/// hands out three bytes a pixel, Y, U and V in turn, the picture's bottom row first.
/// - Input: what is in the front scene, any format. Its upright picture is drawn at full size first.
/// - Output: the size it was made with, RGB. Drawn as a node it shows this target, that is YUV values as if
///   they were colours, through its own program.
/// - Cost: two passes at full size, 1 fetch a pixel each; two targets of 3 bytes a pixel.
/// - State: gives frame buffer and view port back; leaves its conversion program in use, as does
///   setColorConversion().
/// - Setters: see setColorConversion().
class ZV_API Yuv444RenderTexture : public MutilRenderTexture {
public:
    using ColorConversion = zv::ColorConversion;

    /// @param frameBuffer retained; null for one of its own
    static Yuv444RenderTexture* create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer);

    Yuv444RenderTexture() = default;

    /// What the values are to mean; COLOR_CONVERSION_601_VIDEO at first. Takes effect with the next picture.
    /// Needs the GL context current, and sends only what is new. Other numbers change nothing.
    void setColorConversion(ColorConversion conversion);

protected:
    using MutilRenderTexture::init;
    bool init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer);
};

}  // namespace zv
