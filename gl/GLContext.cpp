#include "gl/GLContext.h"

namespace zv {

GLContext::GLContext(GLVersion version) : mVersion(version) {}

GLContext::~GLContext() = default;

void GLContext::makeCurrent() {}

}  // namespace zv
