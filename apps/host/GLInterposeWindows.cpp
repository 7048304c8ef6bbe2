// On Windows each module reaches GL through its own import table, and the functions newer than GL 1.1 through
// wglGetProcAddress. Both are turned aside, in the library and in the program, before either has asked for an
// entry point.
#include <windows.h>
// windows.h first: GLEW takes its calling conventions from there.
#include <GL/glew.h>

#include "host/GLCallTable.h"
#include "host/GLCallWatch.h"
#include "host/GLInterpose.h"
#include "host/ImportTable.h"

namespace {

using GetProcAddressWgl = PROC(WINAPI*)(LPCSTR);

GetProcAddressWgl sGetProcAddress = nullptr;

PROC WINAPI getWatchedProcAddress(LPCSTR name) {
    return reinterpret_cast<PROC>(
        zv::host::GLCallWatch::entryPoint(name, reinterpret_cast<void*>(sGetProcAddress(name))));
}

#define ZV_INTERPOSE(result, name, parameters, arguments)                                \
    zv::host::WatchedCall<result(GLAPIENTRY*) parameters> s_##name{#name, 110, nullptr}; \
    result GLAPIENTRY watched_##name parameters {                                        \
        return s_##name arguments;                                                       \
    }
ZV_GL11_CALLS(ZV_INTERPOSE)
#undef ZV_INTERPOSE

void* replaceGL(std::string_view name, void* address) {
    if (name == "wglGetProcAddress") {
        sGetProcAddress = reinterpret_cast<GetProcAddressWgl>(address);
        return reinterpret_cast<void*>(getWatchedProcAddress);
    }
#define ZV_REPLACE(result, function, parameters, arguments)                                \
    if (name == #function) {                                                               \
        s_##function.original = reinterpret_cast<result(GLAPIENTRY*) parameters>(address); \
        return reinterpret_cast<void*>(watched_##function);                                \
    }
    ZV_GL11_CALLS(ZV_REPLACE)
#undef ZV_REPLACE
    return address;
}

}  // namespace

namespace zv::host {

void linkGLInterpose() {
    for (const char* module : {"zorvik.dll", static_cast<const char*>(nullptr)}) {
        replaceImports(module, "opengl32.dll", replaceGL);
    }
}

}  // namespace zv::host
