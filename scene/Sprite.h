#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "core/TRect.h"
#include "core/VertexFormats.h"
#include "core/ZVExport.h"
#include "scene/IBlend.h"
#include "scene/IProgram.h"
#include "scene/Node.h"

namespace zv {

class RenderState;
class Texture2D;

/// Draws one quad with up to four textures, slot i on texture unit i. In fill mode, the default, the quad
/// covers the view port (times the scale); otherwise it lies at the node's position with the size of its
/// content times its scale, all in clip coordinates: no matrix is applied.
/// Position, content size and scale are read when the positions are dirty, that is at the first draw and
/// after a change of the fill mode, and not again.
/// Made with new, one of the init() operations and autorelease(). Only on the engine's thread.
class ZV_API Sprite : public Node, public virtual IBlend, public virtual IProgram {
public:
    /// How the texture rectangle is mapped onto the quad. Other values keep the mapping before.
    enum RotationType : std::int32_t { ROTATION_0 = 0, ROTATION_90 = 1, ROTATION_180 = 2, ROTATION_270 = 3 };

    Sprite();

    /// A copy borrows: it shows the same textures, program and children without references of its own and
    /// must not outlive them. It takes no GL names either, but makes its own at its first draw, so that
    /// neither it nor the sprite copied from deletes or rewrites what the other draws with.
    Sprite(const Sprite& other);
    Sprite& operator=(const Sprite& other);

    /// Releases the textures and deletes the buffers. The vertex array goes to the render state for reuse.
    ~Sprite() override;

    /// Takes the default texture program of the current engine. False only without an engine.
    bool init() override;
    void onDrawSelf(const Mat4& matrix) override;

    /// Null for an empty slot and for an index above 3.
    virtual Texture2D* getTexture(unsigned char index);

    /// Shows the whole texture. False when it is null or init() fails.
    bool init(Texture2D* texture, bool flipY);
    /// Shows a part of the texture, see setRect(). False when it is null or init() fails.
    bool init(Texture2D* texture, const TRect<float, float>& rect, bool flipY);
    /// Shows a picture file, decoded anew and not kept in the texture cache. False when it does not decode.
    bool init(const std::string& file);

    /// Slot 0 and the part of it that is shown. The old texture is released before the new one is retained,
    /// also when they are the same: a texture that only this sprite keeps alive is gone when it is handed
    /// over again, and the slot is empty.
    void setTexture(Texture2D* texture, const TRect<float, float>& rect);

    /// Index 0 shows the whole texture and ignores the coordinates. Index 1 to 3 takes the texture, in the
    /// same order of release, and a copy of the coordinates (null: none). Coordinates set after
    /// the first draw of a context with vertex arrays reach the buffer but not the recorded layout: a slot
    /// that had none then keeps drawing without. Other indices change nothing.
    void setTexture(Texture2D* texture, unsigned char index, T2F_Quad* coords);

    unsigned char getValidTextureCount() const;

    /// The part of texture 0 that is shown, in texels, and the content size with it. The third and fourth
    /// value are read as far edges when they are mapped: (left, top, right, bottom).
    void setRect(const TRect<float, float>& rect);

    void setFlipX(bool flip);
    bool isFlipX() const;
    void setFlipY(bool flip);
    bool isFlipY() const;
    void setTextureRotationType(RotationType type);
    void setFillMode(bool fill);
    bool isFillMode() const;
    bool isDirtyTexCoords() const;

    /// Computes what is dirty. Texture coordinates wait until there is a texture 0.
    void updateQuad();
    /// Up-to-date coordinates of top left, bottom left, top right, bottom right.
    T2F_Quad getTexCoords();

    /// Gives a sprite whose texture 0 is a rectangle texture the program for it, with the texture's size.
    void checkTextureRectangle();

protected:
    /// Whether each pixel of the view port shows just one texel of texture 0, by the vertices that would be
    /// drawn now: the quad fills the view port, which has the texture's size, with the whole texture. A
    /// program that is a point operation then reads that texel, whatever the filter. False for textures that
    /// are lent: how those are read is their owner's business.
    bool isPixelForPixel();

private:
    static constexpr unsigned kSlots = 4;

    struct TextureSlot {
        RefHolder<Texture2D> texture;
        T2F_Quad coords;
        bool hasCoords = false;
    };

    bool usesOwnCoords(const TextureSlot& slot) const { return slot.texture.get() && slot.hasCoords; }
    void copyFields(const Sprite& other);
    void setFlag(unsigned mask, bool on);
    void changeFlag(unsigned mask, bool on, unsigned dirty);
    bool isOn(unsigned mask) const { return (mFlags & mask) != 0; }
    void updateTexCoords();
    void updatePositions();
    void upload(RenderState& state);
    void bindLayout(RenderState& state);
    void unbind(RenderState& state);

    std::array<TextureSlot, kSlots> mSlots;
    V2F_T2F_Quad mQuad;
    TRect<float, float> mRect;
    // GL names at full width: a context may hold more than 65535 of them.
    unsigned int mVertexArray = 0;
    unsigned int mVertexBuffer = 0;
    unsigned int mCoordBuffer = 0;
    RotationType mRotationType = ROTATION_0;
    std::uint16_t mFlags;
    std::uint8_t mPackedSets = 0;  ///< most coordinate sets that the coordinate buffer has held
};

}  // namespace zv
