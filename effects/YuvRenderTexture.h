#pragma once

#include <utility>

#include "core/TVec.h"
#include "core/ZVExport.h"
#include "effects/ColorConversion.h"
#include "scene/RefHolder.h"
#include "scene/RenderTexture.h"

namespace zv {

class FrameBuffer;
class Program;

/// Turns the picture of a sprite into YUV in two GL textures of the caller: Y into the first one, U and V
/// side by side into the lower left quarter of the second one.
/// - Input: the sprite given at the start, else the first sprite of the own scene; of format RGB or RGBA.
///   It is drawn through this node's programs: what a program of its own would have done to it is lost, and
///   so are siblings. A plain RenderTexture as the input converts whatever hangs in its front scene, effects,
///   YUV sprites and stickers too.
/// - Output: Y in red, green and blue; U in red and V in green, on contexts below GL 3.0 U in red, green and
///   blue and V in alpha, as a luminance-alpha texture would hand them out. Both textures have the size given
///   here and must be ones that GL can draw into; their first row is the bottom one. Drawn as a node it shows
///   its input.
/// - Cost: a pass at full size with 1 fetch a pixel, one of a quarter of the pixels with 4.
/// - State: gives frame buffer, view port, the input's program and its blending back; leaves the program
///   of the last pass in use, as do setColorConversion() and resetSize().
/// - Setters: see each.
/// Without an input nothing is drawn. getOutData() reads the luma, a byte a pixel.
class ZV_API YuvRenderTexture : public RenderTexture {
public:
    using ColorConversion = zv::ColorConversion;

    /// Converts the first sprite that its own scene holds.
    /// @param yTexture, uvTexture GL names of target GL_TEXTURE_2D, never deleted here
    /// @param frameBuffer retained; null for one of its own
    static YuvRenderTexture* create(unsigned int yTexture, unsigned int uvTexture,
                                    const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer);
    /// @param input retained; a RenderTexture is rendered first, into this node's frame buffer
    static YuvRenderTexture* create(Sprite* input, unsigned int yTexture, unsigned int uvTexture,
                                    const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer);

    YuvRenderTexture();
    ~YuvRenderTexture() override;

    /// GL names of the luma and the chroma texture.
    std::pair<unsigned int, unsigned int> getTextureId();
    /// Draws into other textures of the same size from now on, which stay the caller's. For hosts that let
    /// textures take turns, and after resetSize().
    void updateTextureId(unsigned int yTexture, unsigned int uvTexture);

    /// What the values are to mean; COLOR_CONVERSION_601_VIDEO at first. Takes effect with the next picture.
    /// Needs the GL context current, and sends only what is new. Other numbers change nothing.
    void setColorConversion(ColorConversion conversion);

    /// The input, that is the one given at the start or the whole own scene, once an UpdatePass.
    void update(float dt) override;
    /// Shows the input over the whole view port; the matrix is deliberately not used.
    void onDraw(const Mat4& matrix) override;
    void renderToTexture() override;
    /// The size of the next pictures; an input that is a RenderTexture of the former size follows. Textures
    /// of the new size come through updateTextureId().
    void resetSize(const TVec<2, unsigned short>& size) override;
    /// The input when it is a RenderTexture, else null.
    RenderTexture* getFrontRenderTexture() override;
    /// That of the front render texture, else the own scene.
    Scene* getFrontScene() override;
    /// Made at first need; the front render texture gets the same one.
    FrameBuffer* getFrameBuffer() override;

protected:
    using RenderTexture::init;
    bool initWithYUV(Sprite* input, unsigned int yTexture, unsigned int uvTexture,
                     const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer);

private:
    Sprite* findInput();
    void sendPictureSize();

    RefHolder<Sprite> mInput;
    RefHolder<RenderTarget> mUvTarget;
    RefHolder<Program> mYProgram;
    RefHolder<Program> mUvProgram;
};

}  // namespace zv
