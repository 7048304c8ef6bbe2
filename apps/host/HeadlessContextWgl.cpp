#include <windows.h>
// windows.h first: GLEW takes its calling conventions from there.
#include <GL/glew.h>

#include <array>
#include <cstring>
#include <utility>

#include "host/HeadlessContext.h"

namespace zv::host {

struct HeadlessContext::Platform {
    HWND window = nullptr;
    HDC device = nullptr;
    HGLRC context = nullptr;

    ~Platform() {
        if (context != nullptr) {
            if (wglGetCurrentContext() == context) {
                wglMakeCurrent(nullptr, nullptr);
            }
            wglDeleteContext(context);
        }
        if (device != nullptr) {
            ReleaseDC(window, device);
        }
        if (window != nullptr) {
            // Fails silently on a thread that did not make the window; the process end frees it then.
            DestroyWindow(window);
        }
    }
};

namespace {

using CreateContextAttribs = HGLRC(WINAPI*)(HDC, HGLRC, const int*);

constexpr int kContextMajorVersion = 0x2091;
constexpr int kContextMinorVersion = 0x2092;
constexpr int kContextProfileMask = 0x9126;
constexpr int kCoreProfileBit = 0x1;
constexpr int kCompatibilityProfileBit = 0x2;
constexpr wchar_t kWindowClass[] = L"ZorvikHeadlessContext";

/// A window that is never shown, with a pixel format for GL.
bool openWindow(HWND& window, HDC& device, std::string& error) {
    static const ATOM windowClass = [] {
        WNDCLASSW description{};
        description.style = CS_OWNDC;
        description.lpfnWndProc = DefWindowProcW;
        description.hInstance = GetModuleHandleW(nullptr);
        description.lpszClassName = kWindowClass;
        return RegisterClassW(&description);
    }();
    window = windowClass == 0 ? nullptr
                              : CreateWindowExW(0, kWindowClass, L"", WS_OVERLAPPEDWINDOW, 0, 0, 16, 16,
                                                nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    if (window == nullptr) {
        error = "CreateWindow failed";
        return false;
    }
    device = GetDC(window);
    PIXELFORMATDESCRIPTOR format{};
    format.nSize = sizeof(format);
    format.nVersion = 1;
    format.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
    format.iPixelType = PFD_TYPE_RGBA;
    format.cColorBits = 32;
    format.cAlphaBits = 8;
    const int chosen = ChoosePixelFormat(device, &format);
    if (chosen == 0 || SetPixelFormat(device, chosen, &format) == FALSE) {
        error = "the display has no pixel format for GL";
        return false;
    }
    return true;
}

/// Makes the context that `kind` asks for; the plain one that is current lends its entry points.
HGLRC makeProfile(HDC device, HeadlessContext::Kind kind) {
    const PROC address = wglGetProcAddress("wglCreateContextAttribsARB");
    CreateContextAttribs create = nullptr;
    static_assert(sizeof(create) == sizeof(address), "function pointers have one size");
    std::memcpy(&create, &address, sizeof(create));
    if (create == nullptr) {
        return nullptr;
    }
    const bool core = kind == HeadlessContext::Kind::Core;
    const std::array<int, 7> attributes = {kContextMajorVersion,
                                           3,
                                           kContextMinorVersion,
                                           core ? 3 : 2,
                                           kContextProfileMask,
                                           core ? kCoreProfileBit : kCompatibilityProfileBit,
                                           0};
    return create(device, nullptr, attributes.data());
}

}  // namespace

HeadlessContext::HeadlessContext(Kind kind, std::unique_ptr<Platform> platform)
    : GLContext(versionOf(kind)), mKind(kind), mPlatform(std::move(platform)) {}

HeadlessContext::~HeadlessContext() = default;

std::shared_ptr<HeadlessContext> HeadlessContext::create(Kind kind, std::string* error) {
    auto platform = std::make_unique<Platform>();
    std::string failure;
    const auto fail = [&](const std::string& why) {
        if (error != nullptr) {
            *error = "no GL context: " + why;
        }
        return std::shared_ptr<HeadlessContext>();
    };
    if (!openWindow(platform->window, platform->device, failure)) {
        return fail(failure);
    }
    platform->context = wglCreateContext(platform->device);
    if (platform->context == nullptr || wglMakeCurrent(platform->device, platform->context) == FALSE) {
        return fail("wglCreateContext failed");
    }
    if (kind != Kind::Legacy) {
        const HGLRC profile = makeProfile(platform->device, kind);
        if (profile == nullptr && kind == Kind::Core) {
            return fail("the driver makes no 3.3 core contexts");
        }
        if (profile != nullptr) {
            wglMakeCurrent(nullptr, nullptr);
            wglDeleteContext(platform->context);
            platform->context = profile;
        }
    }
    std::shared_ptr<HeadlessContext> result(new HeadlessContext(kind, std::move(platform)));
    result->makeCurrent();
    if (!result->isCurrent()) {
        return fail("wglMakeCurrent failed");
    }
    glewInit();
    return result;
}

void HeadlessContext::makeCurrent() {
    wglMakeCurrent(mPlatform->device, mPlatform->context);
}

void HeadlessContext::doneCurrent() {
    if (isCurrent()) {
        wglMakeCurrent(nullptr, nullptr);
    }
}

bool HeadlessContext::isCurrent() const {
    return wglGetCurrentContext() == mPlatform->context;
}

}  // namespace zv::host
