#include "gl/TextureRect.h"

#include <GL/glew.h>

namespace zv {

TextureRect::TextureRect() {
    mTarget = GL_TEXTURE_RECTANGLE;
}

TextureRect::~TextureRect() = default;

bool TextureRect::isTexture() const {
    return true;
}

}  // namespace zv
