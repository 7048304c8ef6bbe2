#include "support/GLTest.h"

#include <GL/glew.h>

#include <cstdlib>
#include <string>

#include "core/FileUtil.h"
#include "gl/ConfigGL.h"

namespace zv::test {

namespace {

// What the look-ups answer: the running test's.
PoolMgr* sPools = nullptr;
RenderState* sRenderState = nullptr;

constexpr GLuint kTextureUnits = 8;

/// Errors are a queue per kind; a context that is not current would answer errors for ever.
void clearErrors() {
    for (int i = 0; i < 16 && glGetError() != GL_NO_ERROR; ++i) {
    }
}

void resetBindings(bool hasVertexArrays) {
    if (hasVertexArrays) {
        glBindVertexArray(0);
    }
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
    glUseProgram(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    for (GLuint unit = kTextureUnits; unit-- > 0;) {
        glActiveTexture(GL_TEXTURE0 + unit);
        glBindTexture(GL_TEXTURE_2D, 0);
        glBindTexture(GL_TEXTURE_RECTANGLE, 0);
    }
}

void resetFixedState() {
    for (const int capability : {GL_BLEND, GL_DEPTH_TEST, GL_SCISSOR_TEST, GL_STENCIL_TEST, GL_CULL_FACE}) {
        glDisable(static_cast<GLenum>(capability));
    }
    glBlendFunc(GL_ONE, GL_ZERO);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glDepthMask(GL_TRUE);
    glClearColor(0, 0, 0, 0);
    glViewport(0, 0, 0, 0);
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
}

}  // namespace

GLTest::Kind GLTest::kind() {
    const char* given = std::getenv("ZV_TEST_GL");
    const std::string name = given != nullptr ? given : "core";
    if (name == "legacy") {
        return Kind::Legacy;
    }
    return name == "compat" ? Kind::Compatibility : Kind::Core;
}

const std::shared_ptr<host::HeadlessContext>& GLTest::context() {
    static const std::shared_ptr<host::HeadlessContext> context = [] {
        std::string error;
        auto made = host::HeadlessContext::create(kind(), &error);
        EXPECT_NE(made, nullptr) << error;
        return made;
    }();
    return context;
}

bool GLTest::prepareContext() {
    if (context() == nullptr) {
        ADD_FAILURE() << "this machine gave no GL context";
        return false;
    }
    context()->makeCurrent();
    FileUtil::getInstance()->setZvRoot(ZV_TEST_RES_DIR);
    resetBindings(ConfigGL::getInstance()->supportVAO());
    resetFixedState();
    clearErrors();
    return true;
}

void GLTest::SetUp() {
    ASSERT_TRUE(prepareContext());
    mPools = std::make_unique<PoolMgr>();
    mRenderState = std::make_unique<RenderState>();
    sPools = mPools.get();
    sRenderState = mRenderState.get();
    PoolMgr::setLookup([] { return sPools; });
    RenderState::setLookup([] { return sRenderState; });
}

void GLTest::TearDown() {
    if (mPools != nullptr) {
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << "the test left a GL error pending";
    }
    // The last drain may still ask for the manager and the render state.
    mPools.reset();
    sPools = nullptr;
    mRenderState.reset();
    sRenderState = nullptr;
    PoolMgr::setLookup(nullptr);
    RenderState::setLookup(nullptr);
}

}  // namespace zv::test
