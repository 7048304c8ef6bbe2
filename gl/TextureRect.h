#pragma once

#include "gl/Texture.h"

namespace zv {

/// A rectangle texture, sampled by pixel coordinates; for names that a host hands in.
class ZV_API TextureRect : public Texture {
public:
    TextureRect();
    ~TextureRect() override;
    bool isTexture() const override;
};

}  // namespace zv
