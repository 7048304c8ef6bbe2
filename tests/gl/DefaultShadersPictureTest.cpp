#include <GL/glew.h>

#include <cstdint>

#include "gl/FrameBuffer.h"
#include "gl/Program.h"
#include "gl/RenderState.h"
#include "gl/RenderTargetTexture.h"
#include "gl/Texture2D.h"
#include "gl/TextureRect.h"
#include "support/GLTest.h"
#include "support/PictureCompare.h"

namespace {

using namespace zv;
using zv::test::Picture;
using zv::test::Pixel;

constexpr unsigned short WIDTH = 13, HEIGHT = 7;

/// Draws a texture over the middle of a poisoned target, one texel a pixel.
class DefaultShadersPicture : public zv::test::GLTest {
protected:
    Picture draw(Program* program, Texture* texture, int components) {
        constexpr unsigned short targetWidth = WIDTH + 4, targetHeight = HEIGHT + 2;
        RenderState& state = *renderState();
        FrameBuffer* buffer = FrameBuffer::create();
        buffer->attachRenderTarget(
            RenderTargetTexture::create(Size16(targetWidth, targetHeight), PXFORMAT_RGBA8888));
        state.pushFrameBuffer(buffer);
        buffer->apply();
        glClearColor(1, 0, 1, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        state.pushViewPort(ViewPort(0, 0, targetWidth, targetHeight), false);

        const float x = float(WIDTH) / targetWidth, y = float(HEIGHT) / targetHeight;
        const float corners[4][6] = {
            {-x, y, 0, 1, 0, 1}, {-x, -y, 0, 1, 0, 0}, {x, y, 0, 1, 1, 1}, {x, -y, 0, 1, 1, 0}};
        state.useProgram(program);
        texture->active(0);
        const unsigned int vao = state.genAndBindVao();
        const unsigned int vbo = state.genVbo(GL_ARRAY_BUFFER, sizeof(corners), corners, GL_STATIC_DRAW);
        const void* const texcoordOffset = reinterpret_cast<const void*>(std::uintptr_t{16});
        state.vertexAttribPointer(AttribIndex::POSITION, components, GL_FLOAT, GL_FALSE, 24, nullptr);
        state.vertexAttribPointer(AttribIndex::TEXCOORD0, 2, GL_FLOAT, GL_FALSE, 24, texcoordOffset);
        state.drawArrays(GL_TRIANGLE_STRIP, 0, 4);
        glDisableVertexAttribArray(AttribIndex::POSITION);
        glDisableVertexAttribArray(AttribIndex::TEXCOORD0);
        state.unBindVaoVbo();
        state.collectVao(vao);
        glDeleteBuffers(1, &vbo);
        Picture drawn = Picture::readFrameBuffer(targetWidth, targetHeight);
        state.popViewPort(1);
        state.popFrameBuffer();
        return drawn;
    }
    static Picture expected(const Picture& source) {
        return Picture::make(WIDTH + 4, HEIGHT + 2, [&](int x, int y) {
            const bool inside = x >= 2 && x < WIDTH + 2 && y >= 1 && y < HEIGHT + 1;
            return inside ? source.at(x - 2, y - 1) : Pixel{255, 0, 255, 255};
        });
    }
};

TEST_F(DefaultShadersPicture, PlainTextureIsCopiedTexelByTexel) {
    const Picture source = Picture::noise(WIDTH, HEIGHT, 3, false);
    auto* texture = new Texture2D;
    ASSERT_TRUE(
        texture->init(source.rgba.data(), source.rgba.size(), PXFORMAT_RGBA8888, Size16(WIDTH, HEIGHT)));
    Program* program =
        Program::createWithFile("ZvShaderTexturePosition.vert", "ZvShaderTexturePosition.frag");
    expectSame(draw(program, texture, 2), expected(source), "plain-two-component-positions");
    expectSame(draw(program, texture, 4), expected(source), "plain-four-component-positions");
    texture->release();
}

TEST_F(DefaultShadersPicture, RectangleTextureIsCopiedTexelByTexel) {
    const Picture source = Picture::noise(WIDTH, HEIGHT, 4, false);
    auto* texture = new TextureRect;
    GLuint name = 0;
    glGenTextures(1, &name);
    texture->updateTextureId(static_cast<int>(name));
    texture->setTexParameters(TexParams::DEFAULT, true);
    glTexImage2D(GL_TEXTURE_RECTANGLE, 0, GL_RGBA, WIDTH, HEIGHT, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 source.rgba.data());
    Program* program =
        Program::createWithFile("ZvShaderTexturePosition.vert", "ZvShaderTextureRectPosition.frag");
    ASSERT_NE(program->getName(), 0u);
    program->use();
    const float size[] = {WIDTH, HEIGHT};
    program->setUniform2fv("texSize", size, 1);
    expectSame(draw(program, texture, 2), expected(source), "rectangle");
    texture->release();
}

}  // namespace
