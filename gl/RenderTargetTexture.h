#pragma once

#include <cstdint>

#include "gl/PxFormat.h"
#include "gl/RenderTarget.h"

namespace zv {

/// A render target whose colour lands in a texture, its own or one that the host lends.
class ZV_API RenderTargetTexture : public RenderTarget {
public:
    /// A new empty GL_TEXTURE_2D of one level. Autoreleased; null when the texture cannot be made.
    static RenderTargetTexture* create(const Size16& size, PxFormat format);
    /// Wraps `texture` (retained) at its own size. Autoreleased; null for a null texture.
    static RenderTargetTexture* create(Texture2D* texture);

    RenderTargetTexture();
    ~RenderTargetTexture() override;

    Texture2D* getTexture() const override;

    /// Makes the storage anew when the size differs; what it held is lost and the GL name may change.
    /// A texture that does not own its storage keeps it: then only the size reported here changes.
    /// @return false, with everything as it was, for a size that GL does not take
    bool resetSize(const Size16& size) override;

protected:
    bool init(const Size16& size, PxFormat format);
    bool init(Texture2D* texture);

    /// Bytes of a picture of this target's size: 3 a pixel for PXFORMAT_RGB888, else 4.
    std::uint64_t getTexSize(PxFormat format) const;

private:
    /// Allocates the texture's storage at this target's size.
    bool makeStorage(PxFormat format);

    Texture2D* mTexture = nullptr;
};

}  // namespace zv
