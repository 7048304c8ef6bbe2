#pragma once

#include <GL/glew.h>

#include "core/TVec.h"
#include "gl/Program.h"
#include "support/GLCallRecorder.h"
#include "support/GLTest.h"

namespace zv::test {

/// One number of GL's state, wide enough to be compared with names as well as with constants.
inline long long integer(GLenum name) {
    GLint value = -1;
    glGetIntegerv(name, &value);
    return value;
}

/// The value of a float of a program, as GL has it.
inline float valueInGL(Program& program, const char* uniform) {
    GLfloat value = 0;
    glGetUniformfv(program.getName(), program.getUniform(uniform)->location, &value);
    return value;
}

/// A texture name that GL knows, as hosts bring them.
inline unsigned int newTextureName(unsigned int target = GL_TEXTURE_2D) {
    unsigned int name = 0;
    glGenTextures(1, &name);
    glBindTexture(target, name);
    return name;
}

/// The size of a level of the bound texture, as GL knows it.
inline Size16 levelSize(GLint level = 0) {
    GLint size[2] = {};
    glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_WIDTH, &size[0]);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_HEIGHT, &size[1]);
    return Size16(static_cast<unsigned short>(size[0]), static_cast<unsigned short>(size[1]));
}

}  // namespace zv::test
