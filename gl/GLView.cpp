#include "gl/GLView.h"

namespace zv {

GLContextAttrs GLView::sGLContextAttrs;

GLView::~GLView() = default;

void GLView::setGLContextAttrs(GLContextAttrs& attrs) {
    sGLContextAttrs = attrs;
}

}  // namespace zv
