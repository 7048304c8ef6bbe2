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
    EXPECT_TRUE(error.empty()) << error;
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
    ASSERT_TRUE(context->isCurrent());
    EXPECT_EQ(context->getKind(), GLTest::kind());
    const double version = std::atof(reinterpret_cast<const char*>(glGetString(GL_VERSION)));
    GLint profile = 0;
    switch (context->getKind()) {
        case HeadlessContext::Kind::Core:
            EXPECT_EQ(context->getVersion(), GLContext::VERSION_CORE);
            EXPECT_GE(version, 3.3);
            glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
            EXPECT_EQ(profile, GL_CONTEXT_CORE_PROFILE_BIT);
            break;
        case HeadlessContext::Kind::Compatibility:
            EXPECT_EQ(context->getVersion(), GLContext::VERSION_COMPATIBILITY);
            EXPECT_GE(version, 3.0);
            glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
            EXPECT_EQ(profile, GL_CONTEXT_COMPATIBILITY_PROFILE_BIT);
            break;
        case HeadlessContext::Kind::Legacy:
            EXPECT_EQ(context->getVersion(), GLContext::VERSION_LEGACY);
            EXPECT_EQ(version, 2.1);
            break;
    }
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST(HeadlessContextTest, TwoOnOneThreadKeepTheirObjectsApart) {
    const auto first = makeContext();
    EXPECT_EQ(clearedTarget(1).at(0, 0), (Pixel{255, 0, 0, 255}));
    auto second = makeContext();
    EXPECT_FALSE(first->isCurrent());
    GLint bound = -1;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
    EXPECT_EQ(bound, 0);
    first->makeCurrent();
    EXPECT_TRUE(first->isCurrent());
    EXPECT_FALSE(second->isCurrent());
    // Destroying one that is not current leaves the current one alone.
    second.reset();
    EXPECT_TRUE(first->isCurrent());
    EXPECT_EQ(Picture::readFrameBuffer(2, 2).at(1, 1), (Pixel{255, 0, 0, 255}));
}

TEST(HeadlessContextTest, MovesToAnotherThreadOnceLetGo) {
    const auto context = makeContext();
    clearedTarget(1);
    context->doneCurrent();
    EXPECT_FALSE(context->isCurrent());
    Pixel seen{};
    std::thread([&] {
        context->makeCurrent();
        seen = Picture::readFrameBuffer(2, 2).at(0, 0);
        context->doneCurrent();
    }).join();
    EXPECT_EQ(seen, (Pixel{255, 0, 0, 255}));
}

TEST(HeadlessContextTest, EachThreadCanHaveItsOwn) {
    std::array<std::thread, 4> threads;
    std::array<int, 4> red{};
    for (std::size_t i = 0; i < threads.size(); ++i) {
        threads[i] = std::thread([&red, i] {
            for (int round = 0; round < 3; ++round) {
                const auto context = makeContext();
                red[i] = clearedTarget(static_cast<float>(i + 1) / 5).at(1, 1)[0];
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(red, (std::array<int, 4>{51, 102, 153, 204}));
}

}  // namespace zv::test
