#include "gl/TextureCache.h"

#include "core/RefCreate.h"

namespace zv {

TextureCache::~TextureCache() = default;

Texture2D* TextureCache::createWithFile(std::string path) {
    if (Texture2D* cached = get(path))
        return cached;
    Texture2D* texture = createRef<Texture2D>([&](Texture2D& created) { return created.init(path); });
    if (texture != nullptr)
        add(path, texture);
    return texture;
}

}  // namespace zv
