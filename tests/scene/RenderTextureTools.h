#pragma once

#include <GL/glew.h>

#include <functional>
#include <string>

#include "core/RefCreate.h"
#include "gl/RenderTarget.h"
#include "gl/Texture2D.h"
#include "scene/RenderTexture.h"
#include "scene/Scene.h"
#include "scene/TargetPass.h"
#include "support/Picture.h"

namespace zv::test {

/// Fills a part of the bound frame buffer.
inline void fillRect(int x, int y, int width, int height, Pixel colour) {
    glEnable(GL_SCISSOR_TEST);
    glScissor(x, y, width, height);
    glClearColor(static_cast<float>(colour[0]) / 255.0F, static_cast<float>(colour[1]) / 255.0F,
                 static_cast<float>(colour[2]) / 255.0F, static_cast<float>(colour[3]) / 255.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    glDisable(GL_SCISSOR_TEST);
}

/// Fills GL's view port when it is drawn and does what it is told on the way.
class FillNode : public Node {
public:
    static FillNode* create(Pixel colour, int zOrder = 0) {
        return createRef<FillNode>([&](FillNode& node) {
            node.colour = colour;
            node.setLocalZOrder(zOrder);
            return true;
        });
    }
    void onDrawSelf(const Mat4&) override {
        if (whenDrawn) {
            whenDrawn();
        }
        GLint viewPort[4];
        glGetIntegerv(GL_VIEWPORT, viewPort);
        fillRect(viewPort[0], viewPort[1], viewPort[2], viewPort[3], colour);
    }
    void onUpdateSelf(float dt) override { time += dt; }

    Pixel colour{};
    float time = 0;
    std::function<void()> whenDrawn;
};

/// A pass that shows what its scene holds and marks one column of it, and writes down what happens to it.
class MarkTexture : public RenderTexture {
public:
    static MarkTexture* create(const std::string& name, int column, Size16 size = {8, 4},
                               FrameBuffer* frameBuffer = nullptr) {
        return createRef<MarkTexture>([&](MarkTexture& t) {
            t.setName(name);
            t.setLocalZOrder(column);
            t.column = column;
            return t.init(size, frameBuffer, PXFORMAT_RGBA8888);
        });
    }
    void renderToTexture() override {
        RenderTexture::renderToTexture();
        const TargetPass pass(*getFrameBuffer(), *getRenderTarget());
        fillRect(column, 0, 1, getSize().y, markOf(column));
        note();
    }
    void onUpdateSelf(float dt) override {
        time += dt;
        note();
    }
    void resetSize(const TVec<2, unsigned short>& size) override {
        RenderTexture::resetSize(size);
        note();
    }
    static Pixel markOf(int column) { return {10, static_cast<std::uint8_t>(20 * column), 250, 255}; }

    int column = 0;
    float time = 0;
    std::string* log = nullptr;

private:
    void note() {
        if (log) {
            *log += getName().str();
        }
    }
};

inline Picture pictureOf(RenderTexture& texture) {
    const Texture2D* shown = texture.getRenderTarget()->getTexture();
    return Picture::readTexture(shown->getName(), shown->getSize().x, shown->getSize().y);
}

/// Reads the picture that a frame of `fill` becomes after passes that mark these columns.
inline Picture markedPicture(Pixel fill, const std::string& columns, int width = 8, int height = 4) {
    return Picture::make(width, height, [&](int x, int) {
        return columns.find(static_cast<char>('0' + x)) != std::string::npos ? MarkTexture::markOf(x) : fill;
    });
}

}  // namespace zv::test
