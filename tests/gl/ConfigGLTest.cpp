#include "gl/ConfigGL.h"

#include <GL/glew.h>

#include <locale>
#include <string>
#include <utility>

#include "gl/GLContext.h"
#include "gl/GLEnv.h"
#include "gl/GLViewImpl.h"
#include "support/GLTest.h"

namespace zv::test {

using ConfigGLTest = GLTest;

TEST(ConfigGL, VersionTextsAreTruncatedTimes100) {
    const std::pair<const char*, int> cases[] = {{"3.3.0 NVIDIA 535.183", 330},
                                                 {"2.1 Mesa 22.3.6", 210},
                                                 {"3.0", 300},
                                                 {"4.6.0", 459},
                                                 {"4.1", 409},
                                                 {"1.1.0", 110},
                                                 {"1.0", 200},
                                                 {"1.009", 200},
                                                 {"", 200},
                                                 {"OpenGL ES 3.0", 200},
                                                 {nullptr, 200},
                                                 {"-3.3", 200},
                                                 {"70000000000", 200}};
    for (const auto& [text, version] : cases) {
        EXPECT_EQ(ConfigGL::versionFromText(text), version) << (text != nullptr ? text : "null");
    }
}

TEST(ConfigGL, VersionTextsAreReadTheSameUnderACommaLocale) {
    const std::locale before = std::locale::global(std::locale::classic());
    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\1"; }
    };
    std::locale::global(std::locale(std::locale::classic(), new Comma));
    EXPECT_EQ(ConfigGL::versionFromText("3.3.0"), 330);
    std::locale::global(before);
}

TEST_F(ConfigGLTest, MatchesTheContextAndFollowsTheHost) {
    ConfigGL* config = ConfigGL::getInstance();
    EXPECT_EQ(config, ConfigGL::getInstance());
    const unsigned short driver = config->getVersionGL();
    EXPECT_EQ(driver, ConfigGL::versionFromText(reinterpret_cast<const char*>(glGetString(GL_VERSION))));
    EXPECT_EQ(driver >= 300, kind() != Kind::Legacy);
    EXPECT_EQ(config->getVersionShader(), kind() == Kind::Legacy ? 120 : 150);

    config->setVersionGL(299);
    EXPECT_EQ(config->getVersionShader(), 120);
    EXPECT_FALSE(config->supportVAO());
    config->setVersionGL(300);
    EXPECT_EQ(config->getVersionGL(), 300);
    EXPECT_EQ(config->getVersionShader(), 150);
    EXPECT_TRUE(config->supportVAO());
    config->setVersionGL(driver);

    EXPECT_TRUE(config->isSupportPBO());
    EXPECT_FALSE(config->isGLES());
    EXPECT_FALSE(config->supportsMapBuffer());
}

TEST_F(ConfigGLTest, SecondGLInitialisationDoesNothing) {
    glEnvInit();
    // Loading again would fill this entry point anew.
    const auto loaded = glGenFramebuffers;
    ASSERT_NE(loaded, nullptr);
    glGenFramebuffers = nullptr;
    glEnvInit();
    EXPECT_EQ(glGenFramebuffers, nullptr);
    glGenFramebuffers = loaded;
}

TEST(GLEnv, EnumsHaveNamesAndTypesHaveSizes) {
    EXPECT_STREQ(glEnumName(0x0501), "GL_INVALID_VALUE");
    EXPECT_STREQ(glEnumName(0x0503), "<GLenum?>");
    EXPECT_STREQ(glEnumName(0x0506), "GL_INVALID_FRAMEBUFFER_OPERATION");
    EXPECT_STREQ(glEnumName(0x1702), "GL_TEXTURE");
    EXPECT_STREQ(glEnumName(0x8CD7), "GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT");
    EXPECT_STREQ(glEnumName(0x8D41), "GL_RENDERBUFFER");
    const std::pair<unsigned int, int> sizes[] = {
        {GL_BYTE, 1}, {GL_UNSIGNED_BYTE, 1}, {GL_SHORT, 2}, {GL_UNSIGNED_SHORT, 2},
        {GL_INT, 4},  {GL_UNSIGNED_INT, 4},  {GL_FLOAT, 4}, {GL_DOUBLE, 0}};
    for (const auto& [type, size] : sizes) {
        EXPECT_EQ(getGLEnumTypeSize(type), size) << type;
    }
}

TEST(GLView, SharesOneSetOfAttributesAndCopiesItsCount) {
    GLContextAttrs attrs = GLView::sGLContextAttrs;
    EXPECT_EQ(attrs.redBits + attrs.greenBits + attrs.blueBits + attrs.alphaBits, 32);
    EXPECT_EQ(attrs.depthBits, 24);
    EXPECT_EQ(attrs.stencilBits, 8);
    EXPECT_EQ(attrs.multisamplingCount, 0);
    GLContextAttrs changed{5, 6, 7, 1, 16, 2, 4};
    GLView::setGLContextAttrs(changed);
    EXPECT_EQ(GLView::sGLContextAttrs.greenBits, 6);
    EXPECT_EQ(GLView::sGLContextAttrs.multisamplingCount, 4);
    GLView::setGLContextAttrs(attrs);

    GLViewImpl view;
    view.retain();
    EXPECT_EQ(GLViewImpl(view).getRefCount(), 2u);
}

TEST(GLContext, CarriesItsVersionAndLeavesMakingCurrentToTheHost) {
    GLContext plain;
    plain.makeCurrent();
    EXPECT_EQ(plain.getVersion(), GLContext::VERSION_UNKNOWN);
    EXPECT_EQ(GLContext(GLContext::VERSION_CORE).getVersion(), GLContext::VERSION_CORE);
}

}  // namespace zv::test
