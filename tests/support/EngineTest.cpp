#include "support/EngineTest.h"

#include <GL/glew.h>

namespace zv::test {

void EngineTest::SetUp() {
    ASSERT_TRUE(prepareContext());
    engine = std::make_unique<ZVEngine>(context());
    engine->setAutoUpdate(false);
}

void EngineTest::TearDown() {
    if (context() != nullptr) {
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << "the test left a GL error pending";
        engine.reset();
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR))
            << "the engine's end left a GL error pending";
    }
}

}  // namespace zv::test
