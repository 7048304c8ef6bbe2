#pragma once

#include <memory>
#include <string>

#include "gl/GLContext.h"

namespace zv::host {

/// A GL context without a display: EGL on Linux, a hidden window's context on Windows. The engine can hold it
/// like any host context. Each instance is independent (nothing is shared), belongs to the thread where it is
/// current, and may be made current on another thread once the first has let it go with doneCurrent().
class HeadlessContext : public GLContext {
public:
    enum class Kind {
        Core,           ///< a core profile, 3.3 or newer
        Compatibility,  ///< the newest compatibility profile that the driver offers
        Legacy          ///< what the driver gives when no version is asked for; Mesa gives 2.1 when
                        ///< MESA_GL_VERSION_OVERRIDE=2.1 is set before the first GL call of the process
    };

    /// Makes a context, makes it current on the calling thread and loads the GL entry points.
    /// @return null on failure; then `error`, when given, holds one line that says which step failed.
    static std::shared_ptr<HeadlessContext> create(Kind kind, std::string* error = nullptr);

    /// Makes this context current on the calling thread. A context that is current elsewhere stays there.
    void makeCurrent() override;
    /// Destroys the context; if it is current on the calling thread, that thread has none afterwards.
    ~HeadlessContext() override;

    HeadlessContext(const HeadlessContext&) = delete;
    HeadlessContext& operator=(const HeadlessContext&) = delete;

    /// Lets go of this context on the calling thread, if it is the current one there.
    void doneCurrent();
    /// Whether this context is the calling thread's current one.
    bool isCurrent() const;
    Kind getKind() const;

private:
    struct Platform;  // the native handles; defined once a platform

    static GLVersion versionOf(Kind kind);

    HeadlessContext(Kind kind, std::unique_ptr<Platform> platform);

    Kind mKind;
    std::unique_ptr<Platform> mPlatform;
};

}  // namespace zv::host
