#include "effects/FaceBuffingNode.h"

#include <GL/glew.h>

#include <algorithm>
#include <array>
#include <cstddef>

#include "core/RefCreate.h"
#include "effects/FaceGeometry.h"
#include "effects/FaceGrid.h"
#include "effects/FaceInput.h"
#include "effects/FaceMask.h"
#include "gl/FrameBuffer.h"
#include "gl/Program.h"

namespace zv {

FaceBuffingNode::FaceBuffingNode() = default;

FaceBuffingNode::~FaceBuffingNode() = default;

FaceBuffingNode* FaceBuffingNode::create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                         PxFormat format) {
    return createRef<FaceBuffingNode>(
        [&](FaceBuffingNode& node) { return node.init(size, frameBuffer, format); });
}

bool FaceBuffingNode::init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) {
    if (!FaceMeshNode::init(size, frameBuffer, format)) {
        return false;
    }
    Program* program = Program::createWithFile("ZvFaceBuffing.vert", "ZvFaceBuffing.frag");
    setEffectProgram(program);
    mStrengthLocation = program != nullptr ? program->getUniformLocation("u_strength") : -1;
    settingsChanged();
    return true;
}

void FaceBuffingNode::setFaceBuffing(float strength) {
    const float cut = strength > 0.0F ? std::min(strength, 1.0F) : 0.0F;
    const bool wasActive = isActive();
    mStrength = cut;
    if (isActive() != wasActive) {  // how strong it is is a uniform: the mesh stays
        settingsChanged();
    }
}

bool FaceBuffingNode::isActive() const {
    return mStrength > 0.0F;
}

FaceMeshNode::Mesh FaceBuffingNode::makeMesh() {
    std::array<FaceMask, FaceInput::kMostFaces> masks;
    std::array<FaceArea, FaceInput::kMostFaces> areas;
    std::size_t count = 0;
    for (std::size_t i = 0; i < faces().count(); ++i) {
        FaceGeometry face;
        if (face.set(faces()[i]) && masks[count].set(face)) {
            areas[count] = masks[count].area();
            ++count;
        }
    }
    if (count == 0) {
        return {};
    }
    grid().lay(getSize(), areas.data(), count);
    const Vec2f perPixel = texCoordsPerPixel();
    const std::size_t still = grid().strip(mPoints, mStrip, [&](Vec2f pixel, bool& changes) {
        Vertex vertex;
        vertex.place = clipCoordsAt(pixel);
        vertex.texCoord = texCoordsAt(pixel);
        for (std::size_t i = 0; i < count; ++i) {
            const float mask = areas[i].holds(pixel) ? masks[i].at(pixel) : 0.0F;
            if (areas[i].holds(pixel) && (mask > vertex.mask || vertex.reach.x == 0.0F)) {
                vertex.mask = mask;
                vertex.reach = {masks[i].unit() * perPixel.x, masks[i].unit() * perPixel.y};
            }
        }
        changes = vertex.mask > 0.0F;
        return vertex;
    });
    return {mStrip.data(), mStrip.size(), still, sizeof(Vertex)};
}

VertexUpload::Layout FaceBuffingNode::getLayout() const {
    static const VertexUpload::Layout layout = {
        {AttribIndex::POSITION, 2, GL_FLOAT, false, offsetof(Vertex, place)},
        {AttribIndex::TEXCOORD0, 2, GL_FLOAT, false, offsetof(Vertex, texCoord)},
        {AttribIndex::TEXCOORD1, 1, GL_FLOAT, false, offsetof(Vertex, mask)},
        {AttribIndex::TEXCOORD2, 2, GL_FLOAT, false, offsetof(Vertex, reach)}};
    return layout;
}

void FaceBuffingNode::sendUniforms() {
    getEffectProgram()->setUniform1f(mStrengthLocation, mStrength);
}

}  // namespace zv
