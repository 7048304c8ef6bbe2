#include "scene/DrawLines.h"

#include <GL/glew.h>

#include <algorithm>
#include <cstddef>

#include "core/RefCreate.h"
#include "gl/ContextProfile.h"
#include "gl/Program.h"
#include "gl/RenderState.h"

namespace zv {

namespace {

constexpr VertexUpload::Layout kLayout = {
    {AttribIndex::POSITION, 2, GL_FLOAT, false, offsetof(V2F_C4B, vertices)},
    {AttribIndex::COLOR0, 4, GL_UNSIGNED_BYTE, true, offsetof(V2F_C4B, colors)},
};

}  // namespace

DrawLines* DrawLines::create(unsigned short lineWidth) {
    return createRef<DrawLines>([&](DrawLines& lines) { return lines.init(lineWidth); });
}

bool DrawLines::init(unsigned short lineWidth) {
    mLineWidth = lineWidth;
    setProgram(
        Program::createWithFile("ZvPositionColorLengthTexture.vert", "ZvPositionColorLengthTexture.frag"));
    return true;
}

void DrawLines::addPoly(const TVec<2, float>* points, std::size_t count, bool closed, const Color4B& color) {
    if (points == nullptr || count == 0) {
        return;
    }
    const auto append = [&](const TVec<2, float>& from, const TVec<2, float>& to) {
        mVertices.push_back({from, color});
        mVertices.push_back({to, color});
    };
    for (std::size_t i = 0; i + 1 < count; ++i) {
        append(points[i], points[i + 1]);
    }
    if (closed) {
        append(points[count - 1], points[0]);
    }
    mUpload.markDirty();
}

void DrawLines::onDrawSelf(const Mat4&) {
    Program* program = getProgram();
    RenderState* state = RenderState::getCurrent();
    if (mVertices.empty() || !state || !program || program->getName() == 0) {
        return;
    }
    if (!mWideLinesKnown) {
        mWideLines = !ContextProfile::read().forwardCompatible;
        mWideLinesKnown = true;
    }
    mUpload.bind(*state, mVertices.data(), mVertices.size() * sizeof(V2F_C4B), sizeof(V2F_C4B), kLayout,
                 "lines");
    state->useProgram(program);
    GLfloat widthBefore = 1.0F;
    glGetFloatv(GL_LINE_WIDTH, &widthBefore);
    glLineWidth(mWideLines ? std::max<GLfloat>(mLineWidth, 1.0F) : 1.0F);
    state->setBlend(getBlendFunc());
    state->drawArrays(GL_LINES, 0, static_cast<int>(mVertices.size()));
    glLineWidth(widthBefore);
    VertexUpload::unbind(*state, kLayout);
}

}  // namespace zv
