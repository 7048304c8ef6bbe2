#include "gl/Texture.h"

#include <GL/glew.h>

#include "gl/DeletedNames.h"
#include "gl/HostState.h"

namespace zv {

namespace {

// The enums that no GL header of the desktop names.
constexpr unsigned int ATC_RGB = 0x8C92;
constexpr unsigned int ATC_RGBA_EXPLICIT_ALPHA = 0x8C93;
constexpr unsigned int ATC_RGBA_INTERPOLATED_ALPHA = 0x87EE;
constexpr unsigned int UNUSED = 0xFFFFFFFF;

struct FormatRow {
    PxFormat key;
    PxFormatInfo info;
};

constexpr FormatRow FORMAT_TABLE[] = {
    {PXFORMAT_BGRA8888, {GL_RGBA, GL_BGRA, GL_UNSIGNED_BYTE, 32, false, true}},
    {PXFORMAT_RGBA8888, {GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE, 32, false, true}},
    {PXFORMAT_RGBA4444, {GL_RGBA, GL_RGBA, GL_UNSIGNED_SHORT_4_4_4_4, 16, false, true}},
    {PXFORMAT_RGB5A1, {GL_RGBA, GL_RGBA, GL_UNSIGNED_SHORT_5_5_5_1, 16, false, true}},
    {PXFORMAT_RGB565, {GL_RGB, GL_RGB, GL_UNSIGNED_SHORT_5_6_5, 16, false, false}},
    {PXFORMAT_RGB888, {GL_RGB, GL_RGB, GL_UNSIGNED_BYTE, 24, false, false}},
    {PXFORMAT_A8, {GL_ALPHA, GL_ALPHA, GL_UNSIGNED_BYTE, 8, false, false}},
    {PXFORMAT_R8, {GL_RED, GL_RED, GL_UNSIGNED_BYTE, 8, false, false}},
    {PXFORMAT_RG88, {GL_RG, GL_RG, GL_UNSIGNED_BYTE, 16, false, false}},
    {PXFORMAT_S3TC_DXT1, {GL_COMPRESSED_RGBA_S3TC_DXT1_EXT, UNUSED, UNUSED, 4, true, false}},
    {PXFORMAT_S3TC_DXT3, {GL_COMPRESSED_RGBA_S3TC_DXT3_EXT, UNUSED, UNUSED, 8, true, false}},
    {PXFORMAT_S3TC_DXT5, {GL_COMPRESSED_RGBA_S3TC_DXT5_EXT, UNUSED, UNUSED, 8, true, false}},
    {PXFORMAT_ATC_RGB, {ATC_RGB, UNUSED, UNUSED, 4, true, false}},
    {PXFORMAT_ATC_EXPLICIT_ALPHA, {ATC_RGBA_EXPLICIT_ALPHA, UNUSED, UNUSED, 8, true, false}},
    {PXFORMAT_ATC_INTERPOLATED_ALPHA, {ATC_RGBA_INTERPOLATED_ALPHA, UNUSED, UNUSED, 8, true, false}},
};

}  // namespace

const TexParams TexParams::DEFAULT = {GL_LINEAR, GL_LINEAR, GL_CLAMP_TO_EDGE, GL_CLAMP_TO_EDGE};

const PxFormatInfo* Texture::getPxFormatInfo(PxFormat format) {
    for (const FormatRow& row : FORMAT_TABLE) {
        if (row.key == format)
            return &row.info;
    }
    return nullptr;
}

Texture::Texture() : mTarget(GL_TEXTURE_2D) {}

Texture::~Texture() {
    deleteOwnedName();
}

bool Texture::isTexture() const {
    return true;
}

unsigned int Texture::getInternalFormat() const {
    const PxFormatInfo* info = getPxFormatInfo(mFormat);
    return info != nullptr ? info->internalFormat : 0;
}

void Texture::active(unsigned int unit) {
    glActiveTexture(GL_TEXTURE0 + unit);
    HostState::beforeBinding(unit, mTarget);
    glBindTexture(mTarget, mName);
}

void Texture::deleteOwnedName() {
    if (isOwner() && mName != 0) {
        glDeleteTextures(1, &mName);
        DeletedNames::add();
    }
}

void Texture::reset() {
    deleteOwnedName();
    mName = 0;
}

void Texture::updateTextureId(int name) {
    const auto newName = static_cast<unsigned int>(name);
    if (newName == mName)
        return;
    deleteOwnedName();
    mName = newName;
}

void Texture::updateTextureId(int name, unsigned int target, PxFormat format, bool owner) {
    if (static_cast<unsigned int>(name) == mName && mName != 0)
        return;
    updateTextureId(name);
    mTarget = target;
    mFormat = format;
    mFlags.setFlag(FLAG_OWNER, owner);
}

void Texture::setTexParameters(const TexParams& params, bool bind) {
    if (bind)
        active(0);
    glTexParameteri(mTarget, GL_TEXTURE_MIN_FILTER, params.minFilter);
    glTexParameteri(mTarget, GL_TEXTURE_MAG_FILTER, params.magFilter);
    glTexParameteri(mTarget, GL_TEXTURE_WRAP_S, params.wrapS);
    glTexParameteri(mTarget, GL_TEXTURE_WRAP_T, params.wrapT);
}

}  // namespace zv
