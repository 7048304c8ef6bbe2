#include "gl/ContextProfile.h"

#include <GL/glew.h>

#include "gl/ConfigGL.h"

namespace zv {

ContextProfile ContextProfile::read() {
    ContextProfile profile;
    const int version = ConfigGL::getInstance()->getVersionGL();
    if (version >= 300) {
        GLint flags = 0;
        glGetIntegerv(GL_CONTEXT_FLAGS, &flags);
        profile.forwardCompatible = (flags & GL_CONTEXT_FLAG_FORWARD_COMPATIBLE_BIT) != 0;
    }
    if (version >= 320) {
        GLint mask = 0;
        glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &mask);
        profile.core = (mask & GL_CONTEXT_CORE_PROFILE_BIT) != 0;
    }
    return profile;
}

}  // namespace zv
