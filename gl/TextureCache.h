#pragma once

#include <string>

#include "core/ZVExport.h"
#include "gl/RefCache.h"
#include "gl/Texture2D.h"

namespace zv {

/// File textures by path, so that a picture used by several effects is decoded and uploaded once.
class ZV_API TextureCache : public RefCache<Texture2D> {
public:
    TextureCache() = default;
    ~TextureCache() override;

    /// The texture kept under the path, or a new one decoded from it (see Texture2D::init) and kept, which
    /// needs a current release pool. Not retained for the caller. Null, and nothing kept, when the file does
    /// not decode.
    Texture2D* createWithFile(std::string path);
};

}  // namespace zv
