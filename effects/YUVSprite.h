#pragma once

#include "core/TVec.h"
#include "core/ZVExport.h"
#include "effects/ColorConversion.h"
#include "scene/Sprite.h"

namespace zv {

class Texture2D;

/// Shows a YUV picture that lies in planes as RGB: a plane each for Y, U and V, or one for Y and one for U
/// and V in turn.
/// - Input: slot 0 luma; slot 1 chroma or U; slot 2 V. The planes' first row is the picture's top one (else:
///   setFlipY()). U and V side by side lie in red and green, on contexts below GL 3.0 in luminance and
///   alpha. Chroma may have half the size, rounded down or up where it is odd, or the whole size, and lies
///   centred on the luma it stands for. The planes bring their filters and wraps: linear and clamp to edge,
///   with no mipmaps, is what a picture wants.
/// - Output: RGB with alpha 1.
/// - Cost: one pass where it is drawn; 2 or 3 fetches a pixel; no target.
/// - State: leaves its program in use, as do the setters.
/// - Setters: see each; all take effect at once, and need the GL context current.
class ZV_API YUVSprite : public Sprite {
public:
    using ColorConversion = zv::ColorConversion;

    /// Two planes by their GL names (of target GL_TEXTURE_2D), which stay the caller's: luma of `size` and
    /// chroma of half of it, rounded down but never below 1. Autoreleased, as all; null when the sprite
    /// cannot be made.
    static YUVSprite* create(unsigned int yTexture, unsigned int uvTexture,
                             const TVec<2, unsigned short>& size);
    /// Three planes by their GL names.
    static YUVSprite* create(unsigned int yTexture, unsigned int uTexture, unsigned int vTexture,
                             const TVec<2, unsigned short>& size);
    /// Two planes, which are retained; the sprite has the size of `y`. Null also when one of them is.
    static YUVSprite* create(Texture2D* y, Texture2D* uv);
    /// Three planes.
    static YUVSprite* create(Texture2D* y, Texture2D* u, Texture2D* v);

    /// Which values the planes hold; COLOR_CONVERSION_601_FULL at first, so video needs this call. Goes to
    /// the sprite's program of the moment, and sends only what is new. Other numbers change nothing.
    void setColorConversion(ColorConversion conversion);

    /// Other GL textures of the same sizes and formats. A name that a plane owned is deleted, and the new one
    /// is owned in its place; planes made of names own none. The names of the present change nothing.
    void updateTextureId(unsigned int y, unsigned int uv);
    void updateTextureId(unsigned int y, unsigned int u, unsigned int v);
    /// Other planes, of any size, retained. Ignored when one is null.
    void updateTexture(Texture2D* y, Texture2D* u, Texture2D* v);

protected:
    using Sprite::init;
    bool init(unsigned int yTexture, unsigned int uvTexture, const TVec<2, unsigned short>& size);
    bool init(unsigned int yTexture, unsigned int uTexture, unsigned int vTexture,
              const TVec<2, unsigned short>& size);
    bool init(Texture2D* y, Texture2D* uv);
    bool init(Texture2D* y, Texture2D* u, Texture2D* v);

private:
    bool initPlanes(Texture2D* y, Texture2D* u, Texture2D* v, const char* fragmentFile);
    void sendChromaScale();
    void updatePlaneId(unsigned char slot, unsigned int name);
};

}  // namespace zv
