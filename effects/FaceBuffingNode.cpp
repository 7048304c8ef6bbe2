#include "effects/FaceBuffingNode.h"

#include <GL/glew.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "core/RefCreate.h"
#include "core/VertexFormats.h"
#include "effects/FaceGeometry.h"
#include "effects/FaceGrid.h"
#include "effects/FaceInput.h"
#include "effects/FaceMask.h"
#include "gl/FrameBuffer.h"
#include "gl/Program.h"
#include "gl/RenderState.h"
#include "gl/Texture2D.h"

namespace zv {

FaceBuffingNode::FaceBuffingNode()
    : mFaces(std::make_unique<FaceInput>()), mGrid(std::make_unique<FaceGrid>()) {}

FaceBuffingNode::~FaceBuffingNode() = default;

FaceBuffingNode* FaceBuffingNode::create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                         PxFormat format) {
    return createRef<FaceBuffingNode>(
        [&](FaceBuffingNode& node) { return node.init(size, frameBuffer, format); });
}

bool FaceBuffingNode::init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) {
    if (!RenderTexture::init(size, frameBuffer, format)) {
        return false;
    }
    mPlain.set(getProgram());
    mSmooth.set(Program::createWithFile("ZvFaceBuffing.vert", "ZvFaceBuffing.frag"));
    mStrengthLocation = mSmooth.get() != nullptr ? mSmooth.get()->getUniformLocation("u_strength") : -1;
    mFaces->want(mStrength > 0.0F);
    return true;
}

void FaceBuffingNode::setFaceBuffing(float strength) {
    mStrength = strength > 0.0F ? std::min(strength, 1.0F) : 0.0F;
    mFaces->want(mStrength > 0.0F);
}

void FaceBuffingNode::updateFaceLandmarks(kel_algorithm::AlgLandmarksList& faces) {
    mFaces->take(faces);
}

bool FaceBuffingNode::MeshSource::operator==(const MeshSource& other) const {
    return faces == other.faces && size == other.size &&
           std::equal(std::begin(corners), std::end(corners), other.corners);
}

void FaceBuffingNode::updateMesh() {
    const T2F_Quad coords = getTexCoords();
    const MeshSource source = {
        mFaces->stamp(), getSize(), {coords.texCoords[1], coords.texCoords[3], coords.texCoords[0]}};
    if (!(source == mSource)) {
        mSource = source;
        fillMesh();
        mUpload.markDirty();
    }
}

void FaceBuffingNode::fillMesh() {
    std::array<FaceMask, FaceInput::kMostFaces> masks;
    std::array<FaceArea, FaceInput::kMostFaces> areas;
    std::size_t count = 0;
    for (std::size_t i = 0; i < mFaces->count(); ++i) {
        FaceGeometry face;
        if (face.set((*mFaces)[i]) && masks[count].set(face)) {
            areas[count] = masks[count].area();
            ++count;
        }
    }
    mMesh.clear();
    if (count == 0) {
        return;
    }
    mGrid->lay(getSize(), areas.data(), count);
    const Vec2f size(static_cast<float>(getSize().x), static_cast<float>(getSize().y));
    const Vec2f origin = mSource.corners[0];
    const Vec2f across(mSource.corners[1].x - origin.x, mSource.corners[1].y - origin.y);
    const Vec2f up(mSource.corners[2].x - origin.x, mSource.corners[2].y - origin.y);
    const Vec2f perPixel(std::abs(across.x) / size.x + std::abs(up.x) / size.y,
                         std::abs(across.y) / size.x + std::abs(up.y) / size.y);
    mGrid->strip(mMesh, [&](Vec2f pixel) {
        Vertex vertex;
        const Vec2f part(pixel.x / size.x, pixel.y / size.y);
        vertex.place = {2.0F * part.x - 1.0F, 2.0F * part.y - 1.0F};
        vertex.texCoord = {origin.x + part.x * across.x + part.y * up.x,
                           origin.y + part.x * across.y + part.y * up.y};
        for (std::size_t i = 0; i < count; ++i) {
            const float mask = areas[i].holds(pixel) ? masks[i].at(pixel) : 0.0F;
            if (areas[i].holds(pixel) && (mask > vertex.mask || vertex.reach.x == 0.0F)) {
                vertex.mask = mask;
                vertex.reach = {masks[i].unit() * perPixel.x, masks[i].unit() * perPixel.y};
            }
        }
        return vertex;
    });
}

void FaceBuffingNode::onDrawSelf(const Mat4& matrix) {
    const bool active = mStrength > 0.0F;
    mFaces->want(active);
    const bool fillsViewPort = isFillMode() && getScale() == Vec2f(1.0F, 1.0F);
    const bool canSmooth = mSmooth.get() != nullptr && mSmooth.get()->getName() != 0;
    if (active && fillsViewPort && canSmooth && getProgram() == mPlain.get() && getTexture(0) != nullptr) {
        updateMesh();
    } else {
        mMesh.clear();
        mSource = {};
    }
    if (mMesh.empty()) {
        RenderTexture::onDrawSelf(matrix);
    } else {
        drawMesh();
    }
}

void FaceBuffingNode::drawMesh() {
    static const VertexUpload::Layout layout = {
        {AttribIndex::POSITION, 2, GL_FLOAT, false, offsetof(Vertex, place)},
        {AttribIndex::TEXCOORD0, 2, GL_FLOAT, false, offsetof(Vertex, texCoord)},
        {AttribIndex::TEXCOORD1, 1, GL_FLOAT, false, offsetof(Vertex, mask)},
        {AttribIndex::TEXCOORD2, 2, GL_FLOAT, false, offsetof(Vertex, reach)}};
    RenderState* state = RenderState::getCurrent();
    if (state == nullptr) {
        return;
    }
    Program* program = mSmooth.get();
    state->useProgram(program);
    program->setUniformsForBuiltins();
    program->setUniform1f(mStrengthLocation, mStrength);
    mUpload.bind(*state, mMesh.data(), mMesh.size() * sizeof(Vertex), sizeof(Vertex), layout,
                 "face smoothing mesh");
    getTexture(0)->active(0);
    state->setBlend(getBlendFunc());
    state->drawArrays(GL_TRIANGLE_STRIP, 0, static_cast<int>(mMesh.size()));
    VertexUpload::unbind(*state, layout);
}

}  // namespace zv
