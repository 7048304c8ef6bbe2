// GLEW first: it must see no other GL header before itself.
#include <GL/glew.h>
//
#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <utility>
#include <vector>

#include "host/HeadlessContext.h"

namespace zv::host {

struct HeadlessContext::Platform {
    EGLDisplay display = EGL_NO_DISPLAY;
    EGLContext context = EGL_NO_CONTEXT;
    EGLSurface surface = EGL_NO_SURFACE;  // stays EGL_NO_SURFACE where contexts need none

    ~Platform() {
        // The display stays initialised: it belongs to the process, and other contexts may live on it.
        if (context != EGL_NO_CONTEXT) {
            if (eglGetCurrentContext() == context) {
                eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
            }
            eglDestroyContext(display, context);
        }
        if (surface != EGL_NO_SURFACE) {
            eglDestroySurface(display, surface);
        }
    }
};

namespace {

bool hasExtension(EGLDisplay display, const char* name) {
    const char* text = eglQueryString(display, EGL_EXTENSIONS);
    const std::size_t length = std::strlen(name);
    for (const char* at = text; at != nullptr && (at = std::strstr(at, name)) != nullptr; at += length) {
        if ((at == text || at[-1] == ' ') && (at[length] == '\0' || at[length] == ' ')) {
            return true;
        }
    }
    return false;
}

std::string eglFailure(const char* step) {
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "%s failed (EGL error 0x%04X)", step,
                  static_cast<unsigned int>(eglGetError()));
    return text.data();
}

/// Initialises a display and picks a configuration that can make desktop GL contexts without a window.
bool openDisplay(EGLDisplay display, EGLConfig& config, bool& surfaceless, std::string& error) {
    if (display == EGL_NO_DISPLAY) {
        error = "no such display";
        return false;
    }
    EGLint major = 0;
    EGLint minor = 0;
    if (eglInitialize(display, &major, &minor) == EGL_FALSE) {
        error = eglFailure("eglInitialize");
        return false;
    }
    surfaceless = hasExtension(display, "EGL_KHR_surfaceless_context");
    const std::array<EGLint, 5> wanted = {EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_SURFACE_TYPE,
                                          surfaceless ? 0 : EGL_PBUFFER_BIT, EGL_NONE};
    EGLint count = 0;
    if (eglChooseConfig(display, wanted.data(), &config, 1, &count) == EGL_FALSE || count < 1) {
        error = "the display has no configuration for desktop GL";
        return false;
    }
    return true;
}

EGLDisplay surfacelessDisplay() {
    const auto getDisplay = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(
        reinterpret_cast<void*>(eglGetProcAddress("eglGetPlatformDisplayEXT")));
    if (getDisplay == nullptr || !hasExtension(EGL_NO_DISPLAY, "EGL_MESA_platform_surfaceless")) {
        return EGL_NO_DISPLAY;
    }
    return getDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr);
}

std::vector<EGLDisplay> deviceDisplays() {
    const auto getDisplay = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(
        reinterpret_cast<void*>(eglGetProcAddress("eglGetPlatformDisplayEXT")));
    const auto queryDevices = reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(
        reinterpret_cast<void*>(eglGetProcAddress("eglQueryDevicesEXT")));
    std::array<EGLDeviceEXT, 16> devices{};
    EGLint count = 0;
    if (getDisplay == nullptr || queryDevices == nullptr ||
        queryDevices(static_cast<EGLint>(devices.size()), devices.data(), &count) == EGL_FALSE) {
        return {};
    }
    std::vector<EGLDisplay> displays;
    for (EGLint i = 0; i < count; ++i) {
        displays.push_back(
            getDisplay(EGL_PLATFORM_DEVICE_EXT, devices[static_cast<std::size_t>(i)], nullptr));
    }
    return displays;
}

/// The displays to try, best first: without any window system, then the session's own, then each graphics
/// device. ZV_EGL_PLATFORM=device puts the devices first, for a machine whose surfaceless platform draws in
/// software.
std::vector<EGLDisplay> candidateDisplays() {
    std::vector<EGLDisplay> displays = {surfacelessDisplay(), eglGetDisplay(EGL_DEFAULT_DISPLAY)};
    const std::vector<EGLDisplay> devices = deviceDisplays();
    const char* preferred = std::getenv("ZV_EGL_PLATFORM");
    const bool devicesFirst = preferred != nullptr && std::strcmp(preferred, "device") == 0;
    displays.insert(devicesFirst ? displays.begin() : displays.end(), devices.begin(), devices.end());
    return displays;
}

EGLContext makeContext(EGLDisplay display, EGLConfig config, HeadlessContext::Kind kind) {
    const std::array<EGLint, 7> core = {EGL_CONTEXT_MAJOR_VERSION,
                                        3,
                                        EGL_CONTEXT_MINOR_VERSION,
                                        3,
                                        EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                        EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
                                        EGL_NONE};
    const std::array<EGLint, 7> compatibility = {EGL_CONTEXT_MAJOR_VERSION,
                                                 3,
                                                 EGL_CONTEXT_MINOR_VERSION,
                                                 2,
                                                 EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                                 EGL_CONTEXT_OPENGL_COMPATIBILITY_PROFILE_BIT,
                                                 EGL_NONE};
    const std::array<EGLint, 1> plain = {EGL_NONE};
    const EGLint* attributes = plain.data();
    if (kind == HeadlessContext::Kind::Core) {
        attributes = core.data();
    } else if (kind == HeadlessContext::Kind::Compatibility) {
        attributes = compatibility.data();
    }
    EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, attributes);
    if (context == EGL_NO_CONTEXT && kind == HeadlessContext::Kind::Compatibility) {
        // A driver that knows no profiles still makes one when no version is asked for.
        context = eglCreateContext(display, config, EGL_NO_CONTEXT, plain.data());
    }
    return context;
}

/// The entry points are shared by all threads: contexts that start at the same time take turns in writing
/// them.
void loadEntryPoints() {
    static std::mutex mutex;
    const std::lock_guard<std::mutex> lock(mutex);
    // GLEW answers 4 (no GLX display) under EGL although it has loaded every entry point.
    glewInit();
}

}  // namespace

HeadlessContext::HeadlessContext(Kind kind, std::unique_ptr<Platform> platform)
    : GLContext(versionOf(kind)), mKind(kind), mPlatform(std::move(platform)) {}

HeadlessContext::~HeadlessContext() = default;

std::shared_ptr<HeadlessContext> HeadlessContext::create(Kind kind, std::string* error) {
    std::string failure = "EGL offers no display";
    for (EGLDisplay display : candidateDisplays()) {
        auto platform = std::make_unique<Platform>();
        EGLConfig config = nullptr;
        bool surfaceless = false;
        std::string why;
        // The current API is remembered per thread, and GLES is what a thread starts with.
        if (!openDisplay(display, config, surfaceless, why)) {
            // A display that does not exist explains less than one that refused.
            failure = display == EGL_NO_DISPLAY ? failure : why;
            continue;
        }
        if (eglBindAPI(EGL_OPENGL_API) == EGL_FALSE) {
            failure = eglFailure("eglBindAPI(EGL_OPENGL_API)");
            continue;
        }
        platform->display = display;
        platform->context = makeContext(display, config, kind);
        if (platform->context == EGL_NO_CONTEXT) {
            failure = eglFailure("eglCreateContext");
            continue;
        }
        if (!surfaceless) {
            const std::array<EGLint, 5> size = {EGL_WIDTH, 1, EGL_HEIGHT, 1, EGL_NONE};
            platform->surface = eglCreatePbufferSurface(display, config, size.data());
        }
        if (eglMakeCurrent(display, platform->surface, platform->surface, platform->context) == EGL_FALSE) {
            failure = eglFailure("eglMakeCurrent");
            continue;
        }
        loadEntryPoints();
        return std::shared_ptr<HeadlessContext>(new HeadlessContext(kind, std::move(platform)));
    }
    if (error != nullptr) {
        *error = "no GL context: " + failure;
    }
    return nullptr;
}

void HeadlessContext::makeCurrent() {
    eglBindAPI(EGL_OPENGL_API);
    eglMakeCurrent(mPlatform->display, mPlatform->surface, mPlatform->surface, mPlatform->context);
}

void HeadlessContext::doneCurrent() {
    if (isCurrent()) {
        eglMakeCurrent(mPlatform->display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    }
}

bool HeadlessContext::isCurrent() const {
    return eglGetCurrentContext() == mPlatform->context;
}

}  // namespace zv::host
