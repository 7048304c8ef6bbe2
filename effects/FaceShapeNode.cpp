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
#include "gl/Texture2D.h"

namespace zv {

namespace {

constexpr const char* kTypeNames[FACE_SHAPE_COUNT] = {"eyes", "slim",  "chin",    "short",
                                                      "nose", "mouth", "forehead"};

bool isType(int type) {
    return type >= 0 && type < FACE_SHAPE_COUNT;
}

}  // namespace

FaceShapeNode::FaceShapeNode() = default;

FaceShapeNode::~FaceShapeNode() = default;

FaceShapeNode* FaceShapeNode::create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                     PxFormat format) {
    return createRef<FaceShapeNode>(
        [&](FaceShapeNode& node) { return node.init(size, frameBuffer, format); });
}

bool FaceShapeNode::init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) {
    if (!FaceMeshNode::init(size, frameBuffer, format)) {
        return false;
    }
    Program* program = Program::createWithFile("ZvShaderTexturePosition.vert", "ZvFaceShape.frag");
    setEffectProgram(program);
    mSizeLocation = program != nullptr ? program->getUniformLocation("u_size") : -1;
    return true;
}

void FaceShapeNode::updateFaceShape(int type, float value) {
    if (!isType(type)) {
        return;
    }
    // A value that is no number counts as none.
    const float cut = value == value ? std::clamp(value, -1.0F, 1.0F) : 0.0F;
    float& kept = mValues[static_cast<std::size_t>(type)];
    if (cut != kept) {
        kept = cut;
        settingsChanged();
    }
}

void FaceShapeNode::setClipEdge(float pixels) {
    if (pixels != mClipEdge) {
        mClipEdge = pixels;
        settingsChanged();
    }
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

bool FaceShapeNode::isActive() const {
    return std::any_of(mValues.begin(), mValues.end(), [](float value) { return value != 0.0F; });
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
    for (std::size_t i = 0; i < faces().count(); ++i) {
        FaceGeometry face;
        FaceWarp& warp = warps.warps[warps.count];
        if (face.set(faces()[i]) && warp.set(face, mValues.data())) {
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

FaceMeshNode::Mesh FaceShapeNode::makeMesh() {
    Warps warps;
    gather(warps);
    mStrip.clear();
    if (warps.count == 0) {
        return {};
    }
    grid().lay(getSize(), warps.areas.data(), warps.count);
    const std::size_t still = grid().strip(mPoints, mStrip, [&](Vec2f pixel, bool& changes) {
        const Vec2f source = warps.sourceOf(pixel);
        changes = !(source == pixel);
        V2F_T2F vertex;
        vertex.vertices = clipCoordsAt(pixel);
        vertex.texCoords = texCoordsAt(source);
        return vertex;
    });
    return {mStrip.data(), mStrip.size(), still, sizeof(V2F_T2F)};
}

VertexUpload::Layout FaceShapeNode::getLayout() const {
    static const VertexUpload::Layout layout = {
        {AttribIndex::POSITION, 2, GL_FLOAT, false, offsetof(V2F_T2F, vertices)},
        {AttribIndex::TEXCOORD0, 2, GL_FLOAT, false, offsetof(V2F_T2F, texCoords)}};
    return layout;
}

void FaceShapeNode::sendUniforms() {
    const Texture2D* texture = getTexture(0);
    const float size[2] = {static_cast<float>(texture->getSize().x),
                           static_cast<float>(texture->getSize().y)};
    getEffectProgram()->setUniform2fv(mSizeLocation, size, 1);
}

}  // namespace zv
