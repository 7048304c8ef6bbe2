#include "scene/Scene.h"

#include "core/RefCreate.h"
#include "gl/RenderState.h"
#include "scene/ZVEngine.h"

namespace zv {

Scene::~Scene() = default;

Scene* Scene::create() {
    return createRef<Scene>([](Scene&) { return true; });
}

void Scene::render() {
    RenderState* state = ZVEngine::getCurrent()->getRenderState();
    state->pushViewPort(mViewPort, false);
    Node::onDraw(Mat4::IDENTITY);
    state->popViewPort(1);
}

}  // namespace zv
