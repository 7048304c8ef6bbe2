#include "effects/FaceMeshNode.h"

#include <GL/glew.h>

#include <algorithm>
#include <cmath>

#include "effects/FaceGrid.h"
#include "effects/FaceInput.h"
#include "gl/FrameBuffer.h"
#include "gl/Program.h"
#include "gl/RenderState.h"
#include "gl/Texture2D.h"

namespace zv {

FaceMeshNode::FaceMeshNode() : mFaces(std::make_unique<FaceInput>()), mGrid(std::make_unique<FaceGrid>()) {}

FaceMeshNode::~FaceMeshNode() = default;

bool FaceMeshNode::init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) {
    if (!RenderTexture::init(size, frameBuffer, format)) {
        return false;
    }
    mPlain.set(getProgram());
    return true;
}

void FaceMeshNode::setEffectProgram(Program* program) {
    mEffect.set(program);
}

Program* FaceMeshNode::getEffectProgram() const {
    return mEffect.get();
}

void FaceMeshNode::settingsChanged() {
    ++mSettings;
    mFaces->want(isActive());
}

void FaceMeshNode::updateFaceLandmarks(kel_algorithm::AlgLandmarksList& faces) {
    mFaces->take(faces);
}

Vec2f FaceMeshNode::clipCoordsAt(Vec2f pixel) const {
    return {2.0F * (pixel.x / static_cast<float>(mSource.size.x)) - 1.0F,
            2.0F * (pixel.y / static_cast<float>(mSource.size.y)) - 1.0F};
}

Vec2f FaceMeshNode::texCoordsAt(Vec2f pixel) const {
    const float x = pixel.x / static_cast<float>(mSource.size.x);
    const float y = pixel.y / static_cast<float>(mSource.size.y);
    const Vec2f& origin = mSource.corners[0];
    const Vec2f& right = mSource.corners[1];
    const Vec2f& top = mSource.corners[2];
    return {origin.x + x * (right.x - origin.x) + y * (top.x - origin.x),
            origin.y + x * (right.y - origin.y) + y * (top.y - origin.y)};
}

Vec2f FaceMeshNode::texCoordsPerPixel() const {
    const Vec2f origin = texCoordsAt({0.0F, 0.0F});
    const Vec2f right = texCoordsAt({1.0F, 0.0F});
    const Vec2f up = texCoordsAt({0.0F, 1.0F});
    return {std::abs(right.x - origin.x) + std::abs(up.x - origin.x),
            std::abs(right.y - origin.y) + std::abs(up.y - origin.y)};
}

bool FaceMeshNode::MeshSource::operator==(const MeshSource& other) const {
    return faces == other.faces && settings == other.settings && size == other.size &&
           std::equal(std::begin(corners), std::end(corners), other.corners);
}

void FaceMeshNode::updateMesh() {
    const T2F_Quad coords = getTexCoords();
    const MeshSource source = {mFaces->stamp(),
                               mSettings,
                               getSize(),
                               {coords.texCoords[1], coords.texCoords[3], coords.texCoords[0]}};
    if (!(source == mSource)) {
        mSource = source;
        mMesh = makeMesh();
        mUpload.markDirty();
    }
}

void FaceMeshNode::onDrawSelf(const Mat4& matrix) {
    const bool active = isActive();
    mFaces->want(active);
    const bool fillsViewPort = isFillMode() && getScale() == Vec2f(1.0F, 1.0F);
    const bool canDraw = mEffect.get() != nullptr && mEffect.get()->getName() != 0;
    if (active && fillsViewPort && canDraw && getProgram() == mPlain.get() && getTexture(0) != nullptr) {
        updateMesh();
    } else {
        mMesh = {};
        mSource = {};
    }
    if (drawsMesh()) {
        drawMesh();
    } else {
        RenderTexture::onDrawSelf(matrix);
    }
}

void FaceMeshNode::drawMesh() {
    RenderState* state = RenderState::getCurrent();
    if (state == nullptr) {
        return;
    }
    const VertexUpload::Layout layout = getLayout();
    const auto stride = static_cast<std::size_t>(mMesh.stride);
    mUpload.bind(*state, mMesh.vertices, mMesh.count * stride, mMesh.stride, layout, "face mesh");
    getTexture(0)->active(0);
    state->setBlend(getBlendFunc());
    const auto still = static_cast<int>(mMesh.still);
    if (still > 0) {
        state->useProgram(mPlain.get());
        mPlain.get()->setUniformsForBuiltins();
        if (isPixelForPixel()) {
            state->drawArraysUnfiltered(GL_TRIANGLE_STRIP, 0, still);
        } else {
            state->drawArrays(GL_TRIANGLE_STRIP, 0, still);
        }
    }
    state->useProgram(mEffect.get());
    mEffect.get()->setUniformsForBuiltins();
    sendUniforms();
    state->drawArrays(GL_TRIANGLE_STRIP, still, static_cast<int>(mMesh.count) - still);
    VertexUpload::unbind(*state, layout);
}

}  // namespace zv
