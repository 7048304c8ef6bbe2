#pragma once

#include "core/TVec.h"
#include "core/UniqueDataPtr.h"
#include "core/ZVExport.h"
#include "effects/ColorConversion.h"
#include "scene/MutilRenderTexture.h"
#include "scene/RefHolder.h"

namespace zv {

class FrameBuffer;
class Program;

/// Turns its picture into planar YUV 4:2:0 (I420) and packs it into one RGBA target, four bytes of a plane a
/// texel, so that one read brings a frame in the byte order of I420. docs/yuv.md draws the layout.
/// - Input: what is in the front scene, any format. Its upright picture is drawn at full size first.
/// - Output: getOutSize() texels of RGBA, luma in the upper rows, the chroma planes in the lower ones. Drawn
///   as a node it shows this target, or nothing where it packs into a frame buffer of the caller.
/// - Cost: one RGB pass at full size, a luma pass of a quarter of the pixels and 4 fetches each, a chroma
///   pass of an eighth of the pixels and 16 fetches each; one target of 3 and one of 1.5 bytes a pixel.
/// - State: gives frame buffer, view port and the inner picture's program back; leaves the program of the
///   last pass in use, as do setColorConversion() and resetSize().
/// - Setters: see setColorConversion().
class ZV_API Yuv420RenderTexture : public MutilRenderTexture {
public:
    using ColorConversion = zv::ColorConversion;

    /// @param frameBuffer retained; null for one of its own
    /// @param frameBufferId 0 or above: the GL frame buffer to pack into, of getOutSize() at least, which
    /// stays the caller's and is used with what is attached to it; below 0: a target of its own
    static Yuv420RenderTexture* create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                       int frameBufferId = -1);

    Yuv420RenderTexture();
    ~Yuv420RenderTexture() override;

    /// In texels: a quarter of the width, rounded up, and one and a half times the height, rounded up.
    TVec<2, unsigned short> getOutSize() const;
    /// Made at first use, of the out size; one of another size, or without a texture, is replaced. Null when
    /// it cannot be made.
    RenderTarget* getRenderTarget() override;
    Texture2D* getTexture(unsigned char index) override;

    /// What the bytes are to mean; COLOR_CONVERSION_601_VIDEO at first. Takes effect with the next picture.
    /// Needs the GL context current, and sends only what is new. Other numbers change nothing.
    void setColorConversion(ColorConversion conversion);

    void resetSize(const TVec<2, unsigned short>& size) override;
    void onDrawSelf(const Mat4& matrix) override;
    void renderToTexture() override;

    using RenderTexture::getOutData;
    /// Reads the frame, one call late like RenderTexture's: the rows of Y, each of out width x 4 bytes (those
    /// past the picture's width repeat its last column), then U, then V, both of half the width x half the
    /// height with nothing between their rows, then zeros. The picture's top row is first in every plane.
    /// `out` has its size already: out width x out height x 4.
    void getOutData(UniqueDataPtr<unsigned char>& out) override;
    /// The same into a buffer of the right size; an empty one when GL does not take a target of that size.
    UniqueDataPtr<unsigned char> getOutData() override;

protected:
    using MutilRenderTexture::init;
    bool init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, int frameBufferId);

private:
    void drawPasses(RenderTexture& inner);
    void sendPixelSize();

    RefHolder<FrameBuffer> mExternalFrameBuffer;
    RefHolder<Program> mYProgram;
    RefHolder<Program> mUvProgram;
};

}  // namespace zv
