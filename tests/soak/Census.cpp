#include "soak/Census.h"

#include <GL/glew.h>
#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

namespace zv::soak {

namespace {

/// Names in use. Drivers hand out the lowest free name or the one behind the highest, so that a new one tells
/// how far to look.
template <class IsObject>
int count(IsObject&& isObject, GLuint newName) {
    constexpr GLuint kMargin = 4096;
    int found = 0;
    for (GLuint name = 1; name <= newName + kMargin; ++name) {
        found += isObject(name) == GL_TRUE ? 1 : 0;
    }
    return found;
}

template <class Generate, class Delete>
GLuint newName(Generate&& generate, Delete&& destroy) {
    GLuint name = 0;
    generate(1, &name);
    destroy(1, &name);
    return name;
}

GLuint newProgramName() {
    const GLuint name = glCreateProgram();
    glDeleteProgram(name);
    return name;
}

/// 0 under a sanitizer, which keeps freed memory back on purpose and reports leaks itself.
long measureResidentKib() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return 0;
#else
    malloc_trim(0);  // what the allocator merely keeps back is not held
    std::ifstream pages("/proc/self/statm");
    long total = 0;
    long resident = 0;
    pages >> total >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
#endif
}

}  // namespace

Census Census::take() {
    Census census;
    census.residentKib = measureResidentKib();
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        // The driver's cache opens files at times of its own.
        std::error_code error;
        const std::string file = std::filesystem::read_symlink(entry.path(), error).string();
        census.openFiles += file.find("mesa_shader_cache") == std::string::npos ? 1 : 0;
    }
    census.objects = {
        count([](GLuint name) { return glIsTexture(name); }, newName(glGenTextures, glDeleteTextures)),
        count([](GLuint name) { return glIsBuffer(name); }, newName(glGenBuffers, glDeleteBuffers)),
        count([](GLuint name) { return glIsFramebuffer(name); },
              newName(glGenFramebuffers, glDeleteFramebuffers)),
        count([](GLuint name) { return glIsProgram(name) | glIsShader(name); }, newProgramName()),
        count([](GLuint name) { return glIsRenderbuffer(name); },
              newName(glGenRenderbuffers, glDeleteRenderbuffers)),
        count([](GLuint name) { return glIsSampler(name); }, newName(glGenSamplers, glDeleteSamplers)),
        count([](GLuint name) { return glIsVertexArray(name); },
              newName(glGenVertexArrays, glDeleteVertexArrays))};
    return census;
}

}  // namespace zv::soak
