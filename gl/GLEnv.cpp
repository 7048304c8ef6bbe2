#include "gl/GLEnv.h"

#include <GL/glew.h>

#include <cstring>

#if defined(_WIN32)
#include <windows.h>
#endif

namespace zv {

namespace {

bool gInitialised = false;

/// The extension text that the fallback below searches. It is fixed and empty, not the driver's, so that the
/// fallback never resolves anything: a driver for which GLEW finds no frame buffers stays without them.
constexpr const char* EXTENSION_TEXT = "";

constexpr int FUNCTION_COUNT = 17;
using FunctionNames = const char* const[FUNCTION_COUNT];

constexpr FunctionNames ARB_NAMES = {"glIsRenderbuffer",          "glBindRenderbuffer",
                                     "glDeleteRenderbuffers",     "glGenRenderbuffers",
                                     "glRenderbufferStorage",     "glGetRenderbufferParameteriv",
                                     "glIsFramebuffer",           "glBindFramebuffer",
                                     "glDeleteFramebuffers",      "glGenFramebuffers",
                                     "glCheckFramebufferStatus",  "glFramebufferTexture1D",
                                     "glFramebufferTexture2D",    "glFramebufferTexture3D",
                                     "glFramebufferRenderbuffer", "glGetFramebufferAttachmentParameteriv",
                                     "glGenerateMipmap"};

constexpr FunctionNames EXT_NAMES = {
    "glIsRenderbufferEXT",          "glBindRenderbufferEXT",
    "glDeleteRenderbuffersEXT",     "glGenRenderbuffersEXT",
    "glRenderbufferStorageEXT",     "glGetRenderbufferParameterivEXT",
    "glIsFramebufferEXT",           "glBindFramebufferEXT",
    "glDeleteFramebuffersEXT",      "glGenFramebuffersEXT",
    "glCheckFramebufferStatusEXT",  "glFramebufferTexture1DEXT",
    "glFramebufferTexture2DEXT",    "glFramebufferTexture3DEXT",
    "glFramebufferRenderbufferEXT", "glGetFramebufferAttachmentParameterivEXT",
    "glGenerateMipmapEXT"};

using Procedure = void (*)();

Procedure findProcedure([[maybe_unused]] const char* name) {
#if defined(_WIN32)
    return reinterpret_cast<Procedure>(wglGetProcAddress(name));
#else
    return nullptr;  // Elsewhere GLEW alone loads entry points.
#endif
}

template <class Function>
void resolve(Function& function, const char* name) {
    function = reinterpret_cast<Function>(findProcedure(name));
}

void resolveFrameBufferFunctions(const FunctionNames& names) {
    resolve(glIsRenderbuffer, names[0]);
    resolve(glBindRenderbuffer, names[1]);
    resolve(glDeleteRenderbuffers, names[2]);
    resolve(glGenRenderbuffers, names[3]);
    resolve(glRenderbufferStorage, names[4]);
    resolve(glGetRenderbufferParameteriv, names[5]);
    resolve(glIsFramebuffer, names[6]);
    resolve(glBindFramebuffer, names[7]);
    resolve(glDeleteFramebuffers, names[8]);
    resolve(glGenFramebuffers, names[9]);
    resolve(glCheckFramebufferStatus, names[10]);
    resolve(glFramebufferTexture1D, names[11]);
    resolve(glFramebufferTexture2D, names[12]);
    resolve(glFramebufferTexture3D, names[13]);
    resolve(glFramebufferRenderbuffer, names[14]);
    resolve(glGetFramebufferAttachmentParameteriv, names[15]);
    resolve(glGenerateMipmap, names[16]);
}

void findFrameBufferFunctions() {
    if (glGenFramebuffers != nullptr)
        return;
    if (std::strstr(EXTENSION_TEXT, "ARB_framebuffer_object") != nullptr)
        resolveFrameBufferFunctions(ARB_NAMES);
    else if (std::strstr(EXTENSION_TEXT, "EXT_framebuffer_object") != nullptr)
        resolveFrameBufferFunctions(EXT_NAMES);
}

}  // namespace

void glEnvInit() {
    if (gInitialised)
        return;
    if (glewInit() == GLEW_OK)
        findFrameBufferFunctions();
    gInitialised = true;
}

const char* glEnumName(unsigned int value) {
    switch (value) {
        case GL_INVALID_ENUM:
            return "GL_INVALID_ENUM";
        case GL_INVALID_VALUE:
            return "GL_INVALID_VALUE";
        case GL_INVALID_OPERATION:
            return "GL_INVALID_OPERATION";
        case GL_OUT_OF_MEMORY:
            return "GL_OUT_OF_MEMORY";
        case GL_INVALID_FRAMEBUFFER_OPERATION:
            return "GL_INVALID_FRAMEBUFFER_OPERATION";
        case GL_TEXTURE:
            return "GL_TEXTURE";
        case GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT:
            return "GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT";
        case GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT:
            return "GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT";
        case GL_FRAMEBUFFER_UNSUPPORTED:
            return "GL_FRAMEBUFFER_UNSUPPORTED";
        case GL_RENDERBUFFER:
            return "GL_RENDERBUFFER";
        default:
            return "<GLenum?>";
    }
}

int getGLEnumTypeSize(unsigned int type) {
    switch (type) {
        case GL_BYTE:
        case GL_UNSIGNED_BYTE:
            return 1;
        case GL_SHORT:
        case GL_UNSIGNED_SHORT:
            return 2;
        case GL_INT:
        case GL_UNSIGNED_INT:
        case GL_FLOAT:
            return 4;
        default:
            return 0;
    }
}

}  // namespace zv
