#pragma once

#include <optional>

#include "RenderTextureTools.h"
#include "gl/RenderState.h"
#include "gl/RenderTargetTexture.h"
#include "scene/ZVEngine.h"

namespace zv::test {

/// What the target holds wherever nothing was drawn.
constexpr Pixel kPoison{255, 0, 255, 128};

/// Draws onto poison.
class NodeDrawingTest : public EngineTest {
protected:
    void TearDown() override {
        unbindTarget();
        EngineTest::TearDown();
    }
    void bindTarget(Size16 size) {
        mPass.emplace(*FrameBuffer::create(), *RenderTargetTexture::create(size, PXFORMAT_RGBA8888));
        mViewPort = {0, 0, size.x, size.y};
    }
    void unbindTarget() { mPass.reset(); }
    /// What the node draws into one view port of the target, on fresh poison; top row first. Nothing may stay
    /// bound.
    Picture draw(Node* node, const ViewPort& viewPort) {
        fillRect(0, 0, mViewPort.size.x, mViewPort.size.y, kPoison);
        Scene* scene = Scene::create();
        scene->setViewPort(viewPort);
        scene->addChild(node);
        scene->render();
        scene->removeChild(node);
        const RenderState* state = engine->getRenderState();
        EXPECT_EQ(state->getCurVao() + state->getCurVbo(), 0U);
        EXPECT_EQ(glInteger(GL_ARRAY_BUFFER_BINDING), 0);
        EXPECT_EQ(glInteger(GL_ELEMENT_ARRAY_BUFFER_BINDING), 0);
        for (const GLuint attribute : {0U, 4U, 10U, 11U, 12U, 13U}) {
            GLint enabled = -1;
            glGetVertexAttribiv(attribute, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &enabled);
            EXPECT_EQ(enabled, 0) << attribute;
        }
        return Picture::readFrameBuffer(mViewPort.size.x, mViewPort.size.y).flippedY();
    }
    Picture draw(Node* node) { return draw(node, mViewPort); }

private:
    std::optional<TargetPass> mPass;
    ViewPort mViewPort;
};

}  // namespace zv::test
