#include "gl/RenderTarget.h"

#include <GL/glew.h>

#include <string>

#include "gl/DebugLabel.h"

namespace zv {

RenderTarget::~RenderTarget() = default;

Texture2D* RenderTarget::getTexture() const {
    return nullptr;
}

unsigned int RenderTarget::getBuffer() const {
    return 0;
}

bool RenderTarget::resetSize(const Size16&) {
    return true;
}

bool RenderTarget::init(const Size16& size) {
    mSize = size;
    return true;
}

unsigned int RenderTarget::makeRenderBuffer(const Size16& size, unsigned int format, const char* label) {
    GLint bound = 0;
    glGetIntegerv(GL_RENDERBUFFER_BINDING, &bound);
    GLuint name = 0;
    glGenRenderbuffers(1, &name);
    glBindRenderbuffer(GL_RENDERBUFFER, name);
    glRenderbufferStorage(GL_RENDERBUFFER, format, size.x, size.y);
    setDebugLabel(GL_RENDERBUFFER, name, label);
    glBindRenderbuffer(GL_RENDERBUFFER, static_cast<GLuint>(bound));
    return name;
}

void RenderTarget::deleteRenderBuffer(unsigned int name) {
    if (glIsRenderbuffer(name) == GL_TRUE) {
        glDeleteRenderbuffers(1, &name);
    }
}

}  // namespace zv
