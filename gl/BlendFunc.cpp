#include "gl/BlendFunc.h"

#include <GL/glew.h>

namespace zv {

const BlendFunc BlendFunc::DISABLE(GL_ZERO, GL_ZERO);
const BlendFunc BlendFunc::ALPHA_PREMULTIPLIED(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
const BlendFunc BlendFunc::ALPHA_NON_PREMULTIPLIED(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
const BlendFunc BlendFunc::ADDITIVE(GL_SRC_ALPHA, GL_ONE);

}  // namespace zv
