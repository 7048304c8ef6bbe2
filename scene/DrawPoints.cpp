#include "scene/DrawPoints.h"

#include <GL/glew.h>

#include <cstddef>

#include "core/Mat4.h"
#include "core/RefCreate.h"
#include "gl/ContextProfile.h"
#include "gl/Program.h"
#include "gl/RenderState.h"

namespace zv {

namespace {

constexpr VertexUpload::Layout kLayout = {
    {AttribIndex::POSITION, 2, GL_FLOAT, false, offsetof(V2F_C4B_T2F, vertices)},
    {AttribIndex::COLOR0, 4, GL_UNSIGNED_BYTE, true, offsetof(V2F_C4B_T2F, colors)},
    {AttribIndex::TEXCOORD0, 2, GL_FLOAT, false, offsetof(V2F_C4B_T2F, texCoords)},
};

/// Enables a capability for as long as it lives.
class Enabled {
public:
    Enabled(GLenum capability, bool wanted) : mCapability(capability) {
        mMine = wanted && glIsEnabled(capability) == GL_FALSE;
        if (wanted) {
            glEnable(capability);
        }
    }
    ~Enabled() {
        if (mMine) {
            glDisable(mCapability);
        }
    }
    Enabled(const Enabled&) = delete;
    Enabled& operator=(const Enabled&) = delete;

private:
    GLenum mCapability;
    bool mMine;
};

}  // namespace

DrawPoints* DrawPoints::create() {
    return createRef<DrawPoints>([](DrawPoints& points) { return points.init(); });
}

bool DrawPoints::init() {
    Program* program = Program::createWithFile("ZvPositionColorPoint.vert", "ZvPositionColorPoint.frag");
    setProgram(program);
    program->use();
    program->setUniform("u_mvp", Mat4::IDENTITY);
    return true;
}

void DrawPoints::addPoints(const TVec<2, float>* points, std::size_t count, float size,
                           const Color4B& color) {
    if (points == nullptr || count == 0) {
        return;
    }
    for (std::size_t i = 0; i < count; ++i) {
        mVertices.push_back({points[i], color, {size, 0.0F}});
    }
    mUpload.markDirty();
}

void DrawPoints::onDrawSelf(const Mat4&) {
    Program* program = getProgram();
    RenderState* state = RenderState::getCurrent();
    if (mVertices.empty() || !state || !program || program->getName() == 0) {
        return;
    }
    if (!mProfileKnown) {
        mNeedsSprites = !ContextProfile::read().core;  // core contexts know no other points
        mProfileKnown = true;
    }
    mUpload.bind(*state, mVertices.data(), mVertices.size() * sizeof(V2F_C4B_T2F), sizeof(V2F_C4B_T2F),
                 kLayout, "points");
    state->useProgram(program);
    state->setBlend(getBlendFunc());
    {
        const Enabled sizes(GL_PROGRAM_POINT_SIZE, true);
        const Enabled sprites(GL_POINT_SPRITE, mNeedsSprites);
        state->drawArrays(GL_POINTS, 0, static_cast<int>(mVertices.size()));
    }
    VertexUpload::unbind(*state, kLayout);
}

}  // namespace zv
