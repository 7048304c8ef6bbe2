#include "gl/GLViewImpl.h"

namespace zv {

GLViewImpl::~GLViewImpl() = default;

}  // namespace zv
