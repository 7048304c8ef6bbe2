// What a frame needs may go while it is drawn, or never come.
#include "gl/Program.h"
#include "scene/MediaPipelineTest.h"
#include "scene/RenderTextureTools.h"

namespace zv::test {

namespace {

/// Deletes what the host had bound, in the middle of a frame.
struct Thief : Node {
    unsigned int texture = 0;
    Program* program = nullptr;
    void onDrawSelf(const Mat4&) override {
        glDeleteTextures(1, &texture);
        program->release();
    }
};

Program* plainProgram() {
    auto* program = new Program;
    EXPECT_TRUE(program->init("attribute vec4 a_position; void main() { gl_Position = a_position; }",
                              "void main() { gl_FragColor = vec4(1.0); }"));
    return program;
}

using LostThings = MediaPipelineTest;

TEST_F(LostThings, WhatTheHostHadBoundMayDieDuringTheFrame) {
    media->init(makeSprite(picture), kSize, nullptr, false);
    frame();
    media->setKeepHostState(true);
    auto* thief = autoreleased(new Thief);
    glGenTextures(1, &thief->texture);
    glActiveTexture(GL_TEXTURE1);
    glBindTexture(GL_TEXTURE_2D, thief->texture);
    thief->program = plainProgram();
    glUseProgram(thief->program->getName());
    media->addSticker(thief);
    frame();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_EQ(glInteger(GL_CURRENT_PROGRAM), 0);
    EXPECT_EQ(glInteger(GL_TEXTURE_BINDING_2D), 0) << "unit 1";
    glActiveTexture(GL_TEXTURE0);
    EXPECT_EQ(output(), picture);
}

TEST_F(LostThings, AProgramInUseDiesWithItsOwner) {
    Program* own = plainProgram();
    const unsigned int name = own->getName();
    glUseProgram(name);
    own->release();
    EXPECT_EQ(glIsProgram(name), GL_FALSE);
    EXPECT_EQ(glInteger(GL_CURRENT_PROGRAM), 0);
}

}  // namespace

}  // namespace zv::test
