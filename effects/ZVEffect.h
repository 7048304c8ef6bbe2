#pragma once

#include "core/TVec.h"
#include "core/ZVExport.h"

namespace zv {

class FrameBuffer;
class MutilRenderTexture;
class Sprite;

/// Makes nodes for common inputs. All on the engine's thread with its GL context current.
class ZV_API ZVEffect {
public:
    ZVEffect() = delete;

    /// A sprite that shows a GL texture (of target GL_TEXTURE_2D) of somebody else, first row at the bottom.
    /// The texture is never deleted by the sprite, and must live as long as it is drawn. Its program has a
    /// matrix for the texture coordinates, "u_textureMatrix", which is the identity until it is set.
    /// Autoreleased; null when the sprite cannot be made.
    static Sprite* createOESSprite(unsigned int textureId, const TVec<2, unsigned short>& size);

    /// A render texture that turns its input upside down: in its own texture the picture lies the other way
    /// round than in that of a plain render texture. Autoreleased; null when it cannot be made.
    static MutilRenderTexture* createFlipYRenderTexture(const TVec<2, unsigned short>& size,
                                                        FrameBuffer* frameBuffer);

    /// Does nothing: an empty hook, kept for hosts that call it.
    static void test(int value);
};

}  // namespace zv
