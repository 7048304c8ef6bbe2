#pragma once

#include <cstdint>

#include "core/Ref.h"
#include "gl/GLContextAttrs.h"

namespace zv {

/// A host's drawing surface, for hosts that give theirs a counted object. A copy takes over the reference
/// count as it stands.
class ZV_API GLView : public Ref {
public:
    GLView() = default;
    GLView(const GLView&) = default;
    GLView& operator=(const GLView&) = default;
    ~GLView() override;

    static void setGLContextAttrs(GLContextAttrs& attrs);

    /// Attributes for surfaces made from now on, process-wide.
    static GLContextAttrs sGLContextAttrs;

protected:
    std::uint32_t mReserved = 0;  ///< free for derived classes; nothing here reads it
};

}  // namespace zv
