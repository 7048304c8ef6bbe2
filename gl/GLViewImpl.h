#pragma once

#include "gl/GLView.h"

namespace zv {

/// The desktop's view; it adds nothing to GLView.
class ZV_API GLViewImpl : public GLView {
public:
    GLViewImpl() = default;
    GLViewImpl(const GLViewImpl&) = default;
    GLViewImpl& operator=(const GLViewImpl&) = default;
    ~GLViewImpl() override;
};

}  // namespace zv
