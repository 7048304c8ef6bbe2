#include "effects/FaceShapeNode.h"

#include <GL/glew.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "core/RefCreate.h"
#include "effects/FaceGeometry.h"
#include "effects/FaceGrid.h"
#include "effects/FaceInput.h"
#include "effects/FaceWarp.h"
#include "gl/FrameBuffer.h"
#include "gl/Program.h"
#include "gl/RenderState.h"
#include "gl/Texture2D.h"

namespace zv {

namespace {

constexpr const char* kTypeNames[FACE_SHAPE_COUNT] = {"eyes", "slim",  "chin",    "short",
                                                      "nose", "mouth", "forehead"};

constexpr VertexMember kPosition = {AttribIndex::POSITION, 2, GL_FLOAT, false, offsetof(V2F_T2F, vertices)};
constexpr VertexMember kTexCoord = {AttribIndex::TEXCOORD0, 2, GL_FLOAT, false, offsetof(V2F_T2F, texCoords)};

bool isType(int type) {
    return type >= 0 && type < FACE_SHAPE_COUNT;
}

}  // namespace

FaceShapeNode::FaceShapeNode() : mFaces(std::make_unique<FaceInput>()), mGrid(std::make_unique<FaceGrid>()) {}

FaceShapeNode::~FaceShapeNode() = default;

FaceShapeNode* FaceShapeNode::create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                     PxFormat format) {
    return createRef<FaceShapeNode>(
        [&](FaceShapeNode& node) { return node.init(size, frameBuffer, format); });
}

bool FaceShapeNode::init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) {
    if (!RenderTexture::init(size, frameBuffer, format)) {
        return false;
    }
    mPlain.set(getProgram());
    mWarp.set(Program::createWithFile("ZvShaderTexturePosition.vert", "ZvFaceShape.frag"));
    mSizeLocation = mWarp.get() != nullptr ? mWarp.get()->getUniformLocation("u_size") : -1;
    return true;
}

void FaceShapeNode::updateFaceShape(int type, float value) {
    if (!isType(type)) {
        return;
    }
    // A value that is no number counts as none.
    mValues[static_cast<std::size_t>(type)] = value == value ? std::clamp(value, -1.0F, 1.0F) : 0.0F;
    mFaces->want(isActive());
}

float FaceShapeNode::getFaceShape(int type) const {
    return isType(type) ? mValues[static_cast<std::size_t>(type)] : 0.0F;
}

const char* FaceShapeNode::getTypeName(int type) {
    return isType(type) ? kTypeNames[type] : nullptr;
}

int FaceShapeNode::getTypeByName(const std::string& name) {
    const auto* const end = std::end(kTypeNames);
    const auto* const found = std::find(std::begin(kTypeNames), end, name);
    return found != end ? static_cast<int>(found - std::begin(kTypeNames)) : -1;
}

void FaceShapeNode::updateFaceLandmarks(kel_algorithm::AlgLandmarksList& faces) {
    mFaces->take(faces);
}

bool FaceShapeNode::isActive() const {
    return std::any_of(mValues.begin(), mValues.end(), [](float value) { return value != 0.0F; });
}

bool FaceShapeNode::MeshSource::operator==(const MeshSource& other) const {
    return faces == other.faces && values == other.values && clipEdge == other.clipEdge &&
           size == other.size && std::equal(std::begin(corners), std::end(corners), other.corners);
}

void FaceShapeNode::updateMesh() {
    const T2F_Quad coords = getTexCoords();
    const MeshSource source = {mFaces->stamp(),
                               mValues,
                               mClipEdge,
                               getSize(),
                               {coords.texCoords[1], coords.texCoords[3], coords.texCoords[0]}};
    if (!(source == mSource)) {
        mSource = source;
        fillMesh();
        mUpload.markDirty();
    }
}

/// The displacements of all faces, one after another.
struct FaceShapeNode::Warps {
    std::array<FaceWarp, FaceInput::kMostFaces> warps;
    std::array<FaceArea, FaceInput::kMostFaces> areas;
    std::size_t count = 0;

    Vec2f sourceOf(Vec2f pixel) const {
        for (std::size_t i = 0; i < count; ++i) {
            if (areas[i].holds(pixel)) {
                pixel = warps[i].sourceOf(pixel);
            }
        }
        return pixel;
    }
};

void FaceShapeNode::gather(Warps& warps) const {
    for (std::size_t i = 0; i < mFaces->count(); ++i) {
        FaceGeometry face;
        FaceWarp& warp = warps.warps[warps.count];
        if (face.set((*mFaces)[i]) && warp.set(face, mValues.data())) {
            warp.keepBorder(getSize(), mClipEdge);
            warps.areas[warps.count++] = warp.area();
        }
    }
}

void FaceShapeNode::movePlaces(Vec2f* places, std::size_t count) const {
    constexpr int kMostSteps = 60;
    constexpr float kNear = 0.01F;  // pixels
    // Along its line a field moves the source by up to three times what the place moves: larger steps swing.
    constexpr float kStep = 0.6F;
    Warps warps;
    gather(warps);
    for (std::size_t i = 0; i < count; ++i) {
        const Vec2f wanted = places[i];
        Vec2f& place = places[i];
        for (int step = 0; step < kMostSteps; ++step) {
            const Vec2f source = warps.sourceOf(place);
            const Vec2f off(wanted.x - source.x, wanted.y - source.y);
            if (std::abs(off.x) < kNear && std::abs(off.y) < kNear) {
                break;
            }
            place = {place.x + kStep * off.x, place.y + kStep * off.y};
        }
    }
}

void FaceShapeNode::fillMesh() {
    Warps warps;
    gather(warps);
    mMesh.clear();
    if (warps.count == 0) {
        return;
    }
    mGrid->lay(getSize(), warps.areas.data(), warps.count);
    const Vec2f size(static_cast<float>(getSize().x), static_cast<float>(getSize().y));
    const Vec2f origin = mSource.corners[0];
    const Vec2f across(mSource.corners[1].x - origin.x, mSource.corners[1].y - origin.y);
    const Vec2f up(mSource.corners[2].x - origin.x, mSource.corners[2].y - origin.y);
    mGrid->strip(mMesh, [&](Vec2f pixel) {
        V2F_T2F vertex;
        vertex.vertices = {2.0F * (pixel.x / size.x) - 1.0F, 2.0F * (pixel.y / size.y) - 1.0F};
        pixel = warps.sourceOf(pixel);
        const Vec2f part(pixel.x / size.x, pixel.y / size.y);
        vertex.texCoords = {origin.x + part.x * across.x + part.y * up.x,
                            origin.y + part.x * across.y + part.y * up.y};
        return vertex;
    });
}

void FaceShapeNode::onDrawSelf(const Mat4& matrix) {
    const bool active = isActive();
    mFaces->want(active);
    const bool fillsViewPort = isFillMode() && getScale() == Vec2f(1.0F, 1.0F);
    const bool canWarp = mWarp.get() != nullptr && mWarp.get()->getName() != 0;
    if (active && fillsViewPort && canWarp && getProgram() == mPlain.get() && getTexture(0) != nullptr) {
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

void FaceShapeNode::drawMesh() {
    RenderState* state = RenderState::getCurrent();
    if (state == nullptr) {
        return;
    }
    Texture2D* texture = getTexture(0);
    Program* program = mWarp.get();
    state->useProgram(program);
    program->setUniformsForBuiltins();
    const float size[2] = {static_cast<float>(texture->getSize().x),
                           static_cast<float>(texture->getSize().y)};
    program->setUniform2fv(mSizeLocation, size, 1);
    mUpload.bind(*state, mMesh.data(), mMesh.size() * sizeof(V2F_T2F), sizeof(V2F_T2F),
                 {kPosition, kTexCoord}, "face shape mesh");
    texture->active(0);
    state->setBlend(getBlendFunc());
    state->drawArrays(GL_TRIANGLE_STRIP, 0, static_cast<int>(mMesh.size()));
    VertexUpload::unbind(*state, {kPosition, kTexCoord});
}

}  // namespace zv
