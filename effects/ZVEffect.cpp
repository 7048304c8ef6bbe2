#include "effects/ZVEffect.h"

#include "core/RefCreate.h"
#include "gl/FrameBuffer.h"
#include "gl/Program.h"
#include "gl/Texture2D.h"
#include "scene/MutilRenderTexture.h"
#include "scene/Sprite.h"

namespace zv {

Sprite* ZVEffect::createOESSprite(unsigned int textureId, const TVec<2, unsigned short>& size) {
    auto* texture = createRef<Texture2D>(
        [&](Texture2D& wrapper) { return wrapper.init(textureId, size, PXFORMAT_NONE, false); });
    auto* sprite = createRef<Sprite>([&](Sprite& made) { return made.init(texture, true); });
    if (sprite != nullptr) {
        sprite->setProgram(
            Program::createWithFile("ZvShaderPosition_TextureMat4.vert", "ZvShaderOesPosition.frag"));
    }
    return sprite;
}

MutilRenderTexture* ZVEffect::createFlipYRenderTexture(const TVec<2, unsigned short>& size,
                                                       FrameBuffer* frameBuffer) {
    MutilRenderTexture* outer = MutilRenderTexture::create(size, frameBuffer, PXFORMAT_RGB888);
    RenderTexture* inner = RenderTexture::create(size, frameBuffer, PXFORMAT_RGB888);
    if (outer == nullptr || inner == nullptr) {
        return nullptr;
    }
    inner->setFlipY(false);
    outer->addRenderTexture(inner);
    outer->setup();
    return outer;
}

void ZVEffect::test(int) {}

}  // namespace zv
