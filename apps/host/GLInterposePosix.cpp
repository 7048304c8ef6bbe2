// On Linux the functions of GL 1.1 are called by name, not through pointers. A program that watches them
// defines them itself and exports them, so that the library's calls land here first; each passes on to the GL
// library behind it.
#include "host/GLInterpose.h"

#include <GL/glew.h>
#include <dlfcn.h>

#include "host/GLCallTable.h"
#include "host/GLCallWatch.h"

namespace {

/// The next definition of a function after this program's own.
template <class Function>
zv::host::WatchedCall<Function> watch(const char* name) {
    return {name, 110, reinterpret_cast<Function>(dlsym(RTLD_NEXT, name))};
}

}  // namespace

#define ZV_INTERPOSE(result, name, parameters, arguments)                                 \
    extern "C" __attribute__((visibility("default"))) result GLAPIENTRY name parameters { \
        static const auto call = watch<result(GLAPIENTRY*) parameters>(#name);            \
        return call arguments;                                                            \
    }
ZV_GL11_CALLS(ZV_INTERPOSE)
#undef ZV_INTERPOSE

namespace zv::host {

void linkGLInterpose() {}

}  // namespace zv::host
