#pragma once

#include "gl/GLContext.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <EGL/egl.h>
#include <EGL/eglext.h>
#endif

/// A host's own context, made with nothing but the system's interfaces.
class HostContext : public zv::GLContext {
public:
    HostContext() : zv::GLContext(VERSION_COMPATIBILITY) {
#if defined(_WIN32)
        mWindow = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW, 0, 0, 16, 16, nullptr, nullptr,
                                  nullptr, nullptr);
        mDevice = GetDC(mWindow);
        PIXELFORMATDESCRIPTOR format = {};
        format.nSize = sizeof(format);
        format.nVersion = 1;
        format.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
        format.cColorBits = 32;
        SetPixelFormat(mDevice, ChoosePixelFormat(mDevice, &format), &format);
        mContext = wglCreateContext(mDevice);
#else
        mDisplay = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
        eglInitialize(mDisplay, nullptr, nullptr);
        eglBindAPI(EGL_OPENGL_API);
        mContext = eglCreateContext(mDisplay, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, nullptr);
#endif
    }

    ~HostContext() override {
#if defined(_WIN32)
        wglMakeCurrent(nullptr, nullptr);
        wglDeleteContext(mContext);
        ReleaseDC(mWindow, mDevice);
        DestroyWindow(mWindow);
#else
        eglMakeCurrent(mDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        // The display stays until the process ends: a driver that is unloaded loses track of its own memory.
        eglDestroyContext(mDisplay, mContext);
#endif
    }

    void makeCurrent() override {
        ++calls;
#if defined(_WIN32)
        wglMakeCurrent(mDevice, mContext);
#else
        eglMakeCurrent(mDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, mContext);
#endif
    }

    int calls = 0;

private:
#if defined(_WIN32)
    HWND mWindow;
    HDC mDevice;
    HGLRC mContext;
#else
    EGLDisplay mDisplay;
    EGLContext mContext;
#endif
};
