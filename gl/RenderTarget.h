#pragma once

#include <cstdint>

#include "core/Ref.h"
#include "core/TVec.h"
#include "core/ZVExport.h"

namespace zv {

class Texture2D;

/// What a frame buffer draws into: a texture or a render buffer of a size. This base holds the size only.
class ZV_API RenderTarget : public Ref {
public:
    enum Type : std::int32_t { TYPE_BUFFER = 0, TYPE_TEXTURE = 1 };

    RenderTarget() = default;
    ~RenderTarget() override;
    RenderTarget(const RenderTarget&) = delete;
    RenderTarget& operator=(const RenderTarget&) = delete;

    /// The texture that is drawn into, not retained for the caller; null for a render buffer.
    virtual Texture2D* getTexture() const;
    /// GL name of the render buffer that is drawn into; 0 for a texture.
    virtual unsigned int getBuffer() const;
    /// Gives the storage a new size. False when this kind of target cannot be resized.
    virtual bool resetSize(const Size16& size);

    /// Stores the size; answers true.
    bool init(const Size16& size);

    /// Width and height in pixels.
    const Size16& getSize() const { return mSize; }
    Type getType() const { return mType; }

protected:
    explicit RenderTarget(Type type) : mType(type) {}

    /// Allocates storage of an internal format, leaving the render buffer binding as it was; answers its
    /// name.
    static unsigned int makeRenderBuffer(const Size16& size, unsigned int format, const char* label);
    /// Deletes the name if GL knows it as a render buffer.
    static void deleteRenderBuffer(unsigned int name);

    Type mType = TYPE_BUFFER;
    Size16 mSize;
};

}  // namespace zv
