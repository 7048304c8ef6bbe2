#pragma once

#include <GL/glew.h>

namespace zv::test {

/// A frame buffer in the place of a host's screen, bound and empty: a context without a display has no window
/// to draw to.
struct HostScreen {
    HostScreen(int width, int height) {
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        glBindTexture(GL_TEXTURE_2D, 0);
        glGenFramebuffers(1, &frameBuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, frameBuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    ~HostScreen() {
        glDeleteFramebuffers(1, &frameBuffer);
        glDeleteTextures(1, &texture);
    }
    HostScreen(const HostScreen&) = delete;
    HostScreen& operator=(const HostScreen&) = delete;

    GLuint texture = 0, frameBuffer = 0;
};

}  // namespace zv::test
