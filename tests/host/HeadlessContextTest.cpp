#include "host/HeadlessContext.h"

#include <GL/glew.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <thread>

#include "support/GLTest.h"
#include "support/Picture.h"

namespace zv::test {

using host::HeadlessContext;

std::shared_ptr<HeadlessContext> makeContext() {
    std::string error;
    auto context = HeadlessContext::create(GLTest::kind(), &error);
    EXPECT_NE(context, nullptr) << error;
    return context;
}

/// Draws into a texture of the current context and reads it back.
Picture clearedTarget(float red) {
    GLuint texture = 0;
    GLuint frameBuffer = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 2, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glGenFramebuffers(1, &frameBuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, frameBuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    glClearColor(red, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    return Picture::readFrameBuffer(2, 2);
}

TEST(HeadlessContextTest, IsOfTheKindAskedFor) {
    const auto context = makeContext();
    EXPECT_EQ(context->getKind(), GLTest::kind());
    const double version = std::atof(reinterpret_cast<const char*>(glGetString(GL_VERSION)));
    if (context->getKind() == HeadlessContext::Kind::Legacy) {
        EXPECT_EQ(context->getVersion(), GLContext::VERSION_LEGACY);
        EXPECT_EQ(version, 2.1);
    } else {
        const bool core = context->getKind() == HeadlessContext::Kind::Core;
        EXPECT_EQ(context->getVersion(), core ? GLContext::VERSION_CORE : GLContext::VERSION_COMPATIBILITY);
        EXPECT_GE(version, core ? 3.3 : 3.0);
        GLint profile = 0;
        glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
        EXPECT_EQ(profile, core ? GL_CONTEXT_CORE_PROFILE_BIT : GL_CONTEXT_COMPATIBILITY_PROFILE_BIT);
    }
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST(HeadlessContextTest, TwoOnOneThreadKeepTheirObjectsApart) {
    const auto first = makeContext();
    EXPECT_EQ(clearedTarget(1).at(0, 0), (Pixel{255, 0, 0, 255}));
    auto second = makeContext();
    EXPECT_FALSE(first->isCurrent());
    first->makeCurrent();
    EXPECT_TRUE(first->isCurrent());
    EXPECT_FALSE(second->isCurrent());
    // Destroying one that is not current leaves the current one alone.
    second.reset();
    EXPECT_TRUE(first->isCurrent());
    EXPECT_EQ(Picture::readFrameBuffer(2, 2).at(1, 1), (Pixel{255, 0, 0, 255}));
}

TEST(HeadlessContextTest, MovesToAnotherThreadOnceLetGoAndEachThreadCanHaveItsOwn) {
    const auto context = makeContext();
    clearedTarget(1);
    context->doneCurrent();
    EXPECT_FALSE(context->isCurrent());
    std::array<std::thread, 4> threads;
    std::array<int, 4> red{};
    for (std::size_t i = 0; i < threads.size(); ++i) {
        threads[i] = std::thread([&red, &context, i] {
            if (i == 0) {
                context->makeCurrent();
                red[i] = Picture::readFrameBuffer(2, 2).at(0, 0)[0];
                context->doneCurrent();
                return;
            }
            const auto own = makeContext();
            red[i] = clearedTarget(static_cast<float>(i) / 5).at(1, 1)[0];
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(red, (std::array<int, 4>{255, 51, 102, 153}));
}

}  // namespace zv::test
