#pragma once

#include "core/Flag.h"
#include "core/Ref.h"
#include "gl/PxFormat.h"
#include "gl/TexParams.h"

namespace zv {

/// One GL texture name with its target, pixel format and ownership. Made, used and deleted on the GL thread.
class ZV_API Texture : public Ref {
public:
    /// Takes no name yet. An owner by default: a name that it gets is deleted with it.
    Texture();
    Texture(const Texture&) = delete;
    Texture& operator=(const Texture&) = delete;
    /// Deletes the GL name when it is owned.
    ~Texture() override;
    virtual bool isTexture() const;

    /// What GL is told about a format; null for a value without a row (0, 6, 7 and 12 to 16).
    static const PxFormatInfo* getPxFormatInfo(PxFormat format);

    /// The internal format in the format's row, 0 without a row.
    unsigned int getInternalFormat() const;
    PxFormat getPxFormat() const { return mFormat; }
    unsigned int getTarget() const { return mTarget; }
    /// The GL name; 0 is none.
    unsigned int getName() const { return mName; }
    bool isValid() const { return mName > 0; }
    bool isOwner() const { return mFlags.isOn(FLAG_OWNER); }
    /// Whether the last upload had more than one level.
    bool hasMipmaps() const { return mFlags.isOn(FLAG_MIPMAP); }
    bool isOES() const { return false; }

    /// Selects a texture unit and binds the texture there; the unit stays selected.
    void active(unsigned int unit);
    /// Gives the name up, deleting it when it is owned.
    void reset();
    /// Adopts another name; the former one is deleted when it is owned. Who owns stays as it is.
    void updateTextureId(int name);
    /// The same, with target, format and ownership. When the name is the current one and not 0, nothing at
    /// all changes.
    void updateTextureId(int name, unsigned int target, PxFormat format, bool owner);
    /// Sets filters and wrapping. With bind false the texture must be bound already; with bind true it stays
    /// bound to unit 0, which stays selected.
    void setTexParameters(const TexParams& params, bool bind);

protected:
    enum : unsigned int { FLAG_OWNER = 1u << 0, FLAG_MIPMAP = 1u << 2 };

    /// Deletes the GL name when it is owned; the field keeps it.
    void deleteOwnedName();

    unsigned int mName = 0;
    PxFormat mFormat = PXFORMAT_NONE;
    unsigned int mTarget;
    Flag mFlags{FLAG_OWNER};
};

}  // namespace zv
