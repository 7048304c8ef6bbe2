#include "effects/GraffitiNode.h"

#include <GL/glew.h>

#include <array>
#include <cmath>
#include <cstddef>

#include "core/RefCreate.h"
#include "core/VertexFormats.h"
#include "effects/GraffitiStrokes.h"
#include "gl/ConfigGL.h"
#include "gl/FrameBuffer.h"
#include "gl/Program.h"
#include "gl/RenderState.h"

namespace zv {

namespace {

constexpr int kCorners = 4;
constexpr float kTexels = 3.0F;  ///< reach of the gradient that finds the edges
constexpr float kShake = 0.015F;

/// Values of "fWhichTypeOfDrawing".
constexpr float kPicturePass = 0.1F;
constexpr float kStrokePass = 1.0F;

/// First and last stroke of each step: up through the groups, the last stroke alone, and down again.
constexpr std::int32_t kSteps[][2] = {{0, 27},    {28, 54},   {55, 73},   {74, 91},   {92, 111},
                                      {112, 128}, {129, 144}, {145, 145}, {129, 144}, {112, 128},
                                      {92, 111},  {74, 91},   {55, 73},   {28, 54}};
constexpr std::int32_t kStepCount = 14;

constexpr VertexMember kPosition = {AttribIndex::POSITION, 2, GL_FLOAT, false, offsetof(V2F_T2F, vertices)};
constexpr VertexMember kTexCoord = {AttribIndex::TEXCOORD0, 2, GL_FLOAT, false, offsetof(V2F_T2F, texCoords)};

/// A triangle strip for each stroke: it samples the picture where it lies.
using Strips = std::array<std::array<V2F_T2F, kCorners>, kGraffitiStrokeCount>;

Strips makeStrips() {
    Strips strips;
    for (std::size_t i = 0; i < strips.size(); ++i) {
        const GraffitiStroke& stroke = kGraffitiStrokes[i];
        const float x[] = {stroke.x0, stroke.x1};
        const float y[] = {stroke.y0, stroke.y1};
        for (std::size_t corner = 0; corner < kCorners; ++corner) {
            const TVec<2, float> place(x[corner % 2], y[corner / 2]);
            strips[i][corner] = {{2.0F * (place.x - 0.5F), 2.0F * (place.y - 0.5F)}, place};
        }
    }
    return strips;
}

const Strips& strips() {
    static const Strips made = makeStrips();
    return made;
}

/// What glMultiDrawArrays wants to know of all strips.
struct StripRanges {
    std::array<GLint, kGraffitiStrokeCount> first;
    std::array<GLsizei, kGraffitiStrokeCount> count;

    StripRanges() {
        for (std::size_t i = 0; i < first.size(); ++i) {
            first[i] = static_cast<GLint>(i) * kCorners;
            count[i] = kCorners;
        }
    }
};

}  // namespace

GraffitiNode* GraffitiNode::create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                   PxFormat format) {
    return createRef<GraffitiNode>([&](GraffitiNode& node) { return node.init(size, frameBuffer, format); });
}

bool GraffitiNode::init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) {
    if (!RenderTexture::init(size, frameBuffer, format)) {
        return false;
    }
    setProgram(Program::createWithFile("ZvShaderGraffitiFilter.vert", "ZvShaderGraffitiFilter.frag"));
    mStrips.markDirty();
    return true;
}

void GraffitiNode::setProgram(Program* program) {
    RenderTexture::setProgram(program);
    mLocations = {};
    if (program != nullptr) {
        mLocations = {program->getUniformLocation("texelWidthOffset"),
                      program->getUniformLocation("texelHeightOffset"), program->getUniformLocation("shakeX"),
                      program->getUniformLocation("fWhichTypeOfDrawing")};
    }
}

void GraffitiNode::updateAnimationParams() {
    const auto step =
        static_cast<std::int32_t>(std::floor(static_cast<float>(mFrame) / static_cast<float>(mPeriod)));
    mFirstRect = kSteps[step][0];
    mLastRect = kSteps[step][1];
    if (step % 2 == 1) {
        constexpr float shakes[] = {0.0F, kShake, -kShake};
        mShakeX = shakes[mFrame % mPeriod % 3];
    }  // else it stays where the odd step left it, on purpose
    mFrame = mFrame == mPeriod * kStepCount - 1 ? 0 : mFrame + 1;
}

void GraffitiNode::onDrawSelf(const Mat4& matrix) {
    updateAnimationParams();
    RenderState* state = RenderState::getCurrent();
    if (state == nullptr || !canDraw()) {
        return;
    }
    Program* program = getProgram();
    state->useProgram(program);
    program->setUniform1f(mLocations.texelWidthOffset, kTexels / static_cast<float>(getSize().x));
    program->setUniform1f(mLocations.texelHeightOffset, kTexels / static_cast<float>(getSize().y));
    program->setUniform1f(mLocations.shakeX, mShakeX);
    program->setUniform1f(mLocations.drawingType, kPicturePass);
    RenderTexture::onDrawSelf(matrix);
    if (mFirstRect >= 0) {
        drawStrokes(*state);
    }
}

/// What a sprite needs to draw. Without it the strokes would show what some other drawable left bound.
bool GraffitiNode::canDraw() {
    const Program* program = getProgram();
    return program != nullptr && program->getName() != 0 && getTexture(0) != nullptr;
}

/// Type and blend function are the same for all strokes, and the caches send them once: so a stroke after the
/// other can be one call.
void GraffitiNode::drawStrokes(RenderState& state) {
    getProgram()->setUniform1f(mLocations.drawingType, kStrokePass);
    state.setBlend(getBlendFunc());
    if (ConfigGL::getInstance()->supportVAO()) {
        drawFromBuffer(state);
    } else {
        drawFromMemory(state);
    }
    VertexUpload::unbind(state, {kPosition, kTexCoord});
}

void GraffitiNode::drawFromBuffer(RenderState& state) {
    static const StripRanges ranges;
    const auto first = static_cast<std::size_t>(mFirstRect);
    mStrips.bind(state, strips().data(), sizeof(Strips), sizeof(V2F_T2F), {kPosition, kTexCoord},
                 "graffiti strokes");
    glMultiDrawArrays(GL_TRIANGLE_STRIP, &ranges.first[first], &ranges.count[first],
                      mLastRect - mFirstRect + 1);
}

void GraffitiNode::drawFromMemory(RenderState& state) {
    state.bindVbo(GL_ARRAY_BUFFER, 0);  // with a buffer bound the pointers would be offsets
    for (std::int32_t i = mFirstRect; i <= mLastRect; ++i) {
        const V2F_T2F& corners = strips()[static_cast<std::size_t>(i)][0];
        state.vertexAttribPointer(AttribIndex::POSITION, 2, GL_FLOAT, GL_FALSE, sizeof(V2F_T2F),
                                  &corners.vertices);
        state.vertexAttribPointer(AttribIndex::TEXCOORD0, 2, GL_FLOAT, GL_FALSE, sizeof(V2F_T2F),
                                  &corners.texCoords);
        state.drawArrays(GL_TRIANGLE_STRIP, 0, kCorners);
    }
}

}  // namespace zv
