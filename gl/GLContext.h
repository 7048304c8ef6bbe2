#pragma once

#include <cstdint>

#include "core/ZVExport.h"

namespace zv {

/// The host's GL context, held by the engine as a shared pointer. A host that needs its context made current
/// derives from this.
class ZV_API GLContext {
public:
    enum GLVersion : std::int32_t {
        VERSION_UNKNOWN = 0,
        VERSION_LEGACY = 1,
        VERSION_COMPATIBILITY = 2,
        VERSION_CORE = 3
    };

    explicit GLContext(GLVersion version = VERSION_UNKNOWN);
    GLContext(const GLContext&) = delete;
    GLContext& operator=(const GLContext&) = delete;

    /// Makes the context current on the calling thread; does nothing here.
    virtual void makeCurrent();
    virtual ~GLContext();

    /// What the host said; the library itself goes by ConfigGL.
    GLVersion getVersion() const { return mVersion; }

private:
    GLVersion mVersion;
};

}  // namespace zv
