// What does not depend on the window system.
#include "host/HeadlessContext.h"

namespace zv::host {

GLContext::GLVersion HeadlessContext::versionOf(Kind kind) {
    switch (kind) {
        case Kind::Core:
            return GLContext::VERSION_CORE;
        case Kind::Compatibility:
            return GLContext::VERSION_COMPATIBILITY;
        default:
            return GLContext::VERSION_LEGACY;
    }
}

HeadlessContext::Kind HeadlessContext::getKind() const {
    return mKind;
}

}  // namespace zv::host
