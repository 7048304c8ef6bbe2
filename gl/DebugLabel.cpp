#include "gl/DebugLabel.h"

#include <GL/glew.h>

#include <algorithm>

namespace zv {

namespace {

/// The shortest GL_MAX_LABEL_LENGTH that a context may have is 256, its closing zero included.
constexpr std::size_t LONGEST_LABEL = 255;

}  // namespace

void setDebugLabel(unsigned int kind, unsigned int name, const std::string& label) {
    if ((!GLEW_KHR_debug && !GLEW_VERSION_4_3) || glObjectLabel == nullptr || name == 0) {
        return;
    }
    const auto length = static_cast<GLsizei>(std::min(label.size(), LONGEST_LABEL));
    glObjectLabel(kind, name, length, label.c_str());
}

}  // namespace zv
