#pragma once

#include <GL/glew.h>

#include <functional>
#include <string>

#include "core/RefCreate.h"
#include "gl/FrameBuffer.h"
#include "gl/RenderTarget.h"
#include "gl/Texture2D.h"
#include "scene/RenderTexture.h"
#include "scene/Scene.h"
#include "scene/TargetPass.h"
#include "support/EngineTest.h"
#include "support/Picture.h"

namespace zv::test {

constexpr Pixel kRed{255, 0, 0, 255};
constexpr Pixel kGreen{0, 255, 0, 255};
constexpr Pixel kBlue{0, 0, 255, 255};

/// Fills a part of the bound frame buffer.
inline void fillRect(int x, int y, int width, int height, Pixel colour) {
    glEnable(GL_SCISSOR_TEST);
    glScissor(x, y, width, height);
    glClearColor(colour[0] / 255.0F, colour[1] / 255.0F, colour[2] / 255.0F, colour[3] / 255.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    glDisable(GL_SCISSOR_TEST);
}

inline int glInteger(unsigned int name) {
    GLint value = -1;
    glGetIntegerv(name, &value);
    return value;
}

/// Fills GL's view port when it is drawn and does what it is told on the way.
class FillNode : public Node {
public:
    static FillNode* create(Pixel colour) {
        return createRef<FillNode>([&](FillNode& node) {
            node.colour = colour;
            return true;
        });
    }
    void onDrawSelf(const Mat4&) override {
        whenDrawn();
        GLint viewPort[4];
        glGetIntegerv(GL_VIEWPORT, viewPort);
        fillRect(viewPort[0], viewPort[1], viewPort[2], viewPort[3], colour);
    }
    void onUpdateSelf(float dt) override { time += dt; }

    Pixel colour{};
    float time = 0;
    std::function<void()> whenDrawn = [] {};
};

/// Fills a part of what a render texture draws into.
inline void fillRect(RenderTexture& texture, int x, int y, int width, int height, Pixel colour) {
    const TargetPass pass(*texture.getFrameBuffer(), *texture.getRenderTarget());
    fillRect(x, y, width, height, colour);
}

/// A render texture whose scene holds `content`.
inline RenderTexture* showing(Node* content, Size16 size, FrameBuffer* frameBuffer = nullptr) {
    RenderTexture* texture = RenderTexture::create(size, frameBuffer, PXFORMAT_RGBA8888);
    texture->getScene()->addChild(content);
    return texture;
}

/// A pass that shows what its scene holds and marks one column of it, and writes down what happens to it. Its
/// Z order is the column, its name the column's digit.
class MarkTexture : public RenderTexture {
public:
    static MarkTexture* create(int column, FrameBuffer* frameBuffer) {
        return createRef<MarkTexture>([&](MarkTexture& t) {
            t.setName(std::to_string(column));
            t.setLocalZOrder(column);
            t.column = column;
            return t.init(Size16(8, 4), frameBuffer, PXFORMAT_RGBA8888);
        });
    }
    void renderToTexture() override {
        RenderTexture::renderToTexture();
        fillRect(*this, column, 0, 1, getSize().y, markOf(column));
        log += getName().str();
    }
    void onUpdateSelf(float) override { log += getName().str(); }
    void resetSize(const TVec<2, unsigned short>& size) override {
        RenderTexture::resetSize(size);
        log += getName().str();
    }
    static Pixel markOf(int column) { return {10, static_cast<std::uint8_t>(20 * column), 250, 255}; }

    int column = 0;
    static inline std::string log;  ///< the names of all of them, in the order of the calls
};

inline Picture pictureOf(RenderTexture& texture) {
    const Texture2D* shown = texture.getRenderTarget()->getTexture();
    return Picture::readTexture(shown->getName(), shown->getSize().x, shown->getSize().y);
}

/// The picture that a frame of red becomes after passes that mark these columns.
inline Picture markedPicture(const std::string& columns, int width = 8, int height = 4) {
    return Picture::make(width, height, [&](int x, int) {
        return columns.find(static_cast<char>('0' + x)) != std::string::npos ? MarkTexture::markOf(x) : kRed;
    });
}

/// The names of what hangs below a node and in the scenes of the render textures there, depth first.
inline std::string namesBelow(const Node* node) {
    std::string names;
    for (Node* child : node->getChildRen()) {
        auto* texture = dynamic_cast<RenderTexture*>(child);
        names += child->getName().str() + namesBelow(texture != nullptr ? texture->getScene() : child);
    }
    return names;
}

}  // namespace zv::test
