#include "gl/ConfigGL.h"

#include <GL/glew.h>

#include <utility>

#include "gl/GLEnv.h"
#include "support/GLTest.h"

namespace zv::test {

using ConfigGLTest = GLTest;

TEST(ConfigGL, VersionTextsAreTruncatedTimes100) {
    const std::pair<const char*, int> cases[] = {{"3.3.0 NVIDIA 535.183", 330},
                                                 {"2.1 Mesa 22.3.6", 210},
                                                 {"4.6.0", 459},
                                                 {"1.0", 200},
                                                 {"1.009", 200},
                                                 {"OpenGL ES 3.0", 200},
                                                 {"", 200},
                                                 {nullptr, 200},
                                                 {"-3.3", 200},
                                                 {"1.1.0", 110},
                                                 {"70000000000", 200}};
    for (const auto& [text, version] : cases)
        EXPECT_EQ(ConfigGL::versionFromText(text), version) << (text != nullptr ? text : "null");
}

TEST_F(ConfigGLTest, MatchesTheContextAndFollowsTheHost) {
    ConfigGL* config = ConfigGL::getInstance();
    const unsigned short driver = config->getVersionGL();
    EXPECT_EQ(driver, ConfigGL::versionFromText(reinterpret_cast<const char*>(glGetString(GL_VERSION))));
    for (const int version : {int{driver}, 299, 300}) {
        config->setVersionGL(static_cast<unsigned short>(version));
        EXPECT_EQ(config->getVersionShader(), version < 300 ? 120 : 150);
        EXPECT_EQ(config->supportVAO(), version >= 300);
    }
    config->setVersionGL(driver);
    EXPECT_EQ(config->supportVAO(), kind() != Kind::Legacy);
}

TEST_F(ConfigGLTest, SecondGLInitialisationDoesNothing) {
    // Loading again would fill this entry point anew.
    const auto loaded = glGenFramebuffers;
    ASSERT_NE(loaded, nullptr);
    glGenFramebuffers = nullptr;
    glEnvInit();
    EXPECT_EQ(glGenFramebuffers, nullptr);
    glGenFramebuffers = loaded;
}

TEST(GLEnv, EnumsHaveNamesAndTypesHaveSizes) {
    EXPECT_STREQ(glEnumName(0x0503), "<GLenum?>");
    EXPECT_STREQ(glEnumName(0x8CD7), "GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT");
    EXPECT_TRUE(getGLEnumTypeSize(GL_UNSIGNED_SHORT) == 2 && getGLEnumTypeSize(GL_DOUBLE) == 0);
}

}  // namespace zv::test
