#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/TVec.h"
#include "core/VertexFormats.h"
#include "core/ZVExport.h"
#include "effects/FaceMeshNode.h"
#include "gl/PxFormat.h"

namespace zv {

/// What FaceShapeNode changes, and what a positive value does; a negative one does the opposite.
enum FaceShapeType : std::int32_t {
    FACE_SHAPE_EYES = 0,  ///< "eyes": larger
    FACE_SHAPE_SLIM,      ///< "slim": cheeks and jaw narrower
    FACE_SHAPE_CHIN,      ///< "chin": narrower
    FACE_SHAPE_SHORT,     ///< "short": chin and mouth higher, the face shorter
    FACE_SHAPE_NOSE,      ///< "nose": narrower
    FACE_SHAPE_MOUTH,     ///< "mouth": larger
    FACE_SHAPE_FOREHEAD,  ///< "forehead": higher
    FACE_SHAPE_COUNT,
};

/// Reshapes faces: where the node is drawn, its picture is drawn as a mesh, dense over each face and coarse
/// elsewhere, that shows every place of the picture a little displaced. The displacement is a chain of smooth
/// fields built from a face's 106 points, each of which is one to one by itself; so the picture never folds,
/// whatever the values, the points or the number of faces. Outside of a face's ring, a rectangle turned with
/// the face (docs/face-effects.md), nothing moves, to the byte.
/// - Input: what is in the front scene, any format, upright: the points of the faces are places in it.
/// - Output: the size and format it was made with; alpha moves with the picture.
/// - Cost: one pass at full size, one target, two draws. One fetch a pixel, five where the picture moves.
///   While faces move, a mesh of some 10,000 vertices for one face, at most 100,000, is computed and streamed
///   a frame.
/// - State: leaves its program in use. A node whose program somebody else has set, which is scaled or not in
///   fill mode shows its picture unchanged.
/// - Setters: see each; they take effect at the next draw. Faces come from the media engine's face business,
///   to which the node subscribes while any value is not 0, or from the host. At most 16 are reshaped.
class ZV_API FaceShapeNode : public FaceMeshNode {
public:
    FaceShapeNode();
    ~FaceShapeNode() override;

    /// @param frameBuffer retained; null for one of its own
    static FaceShapeNode* create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                 PxFormat format);

    /// @param type a FaceShapeType; others change nothing
    /// @param value -1 to 1, cut to that; 0, the default, leaves the picture as it is
    void updateFaceShape(int type, float value);
    /// 0 for an unknown type.
    float getFaceShape(int type) const;
    /// The word for a type, as FaceShapeType tells it; null for an unknown type.
    static const char* getTypeName(int type);
    /// -1 for an unknown word.
    static int getTypeByName(const std::string& name);

    /// Distance from the border of the picture, in pixels, within which nothing is moved, so that the border
    /// stays straight; default 30. What lies further in moves by at most 0.35 of its distance from there.
    void setClipEdge(float pixels);
    float getClipEdge() const { return mClipEdge; }

    /// Moves places of the picture to where the node shows them, for what is drawn over reshaped faces; as
    /// the latest faces and the values are; to a hundredth of a pixel, half a pixel where much moves.
    /// @param places in pixels of this node's picture, origin bottom left
    void movePlaces(Vec2f* places, std::size_t count) const;

    /// A copy of the triangle strip that the last draw used, in clip and texture coordinates; empty when the
    /// picture was drawn unchanged.
    std::vector<V2F_T2F> getMesh() const { return drawsMesh() ? mStrip : std::vector<V2F_T2F>(); }

    using FaceMeshNode::init;

protected:
    bool init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) override;

private:
    struct Warps;

    bool isActive() const override;
    void gather(Warps& warps) const;
    Mesh makeMesh() override;
    VertexUpload::Layout getLayout() const override;
    void sendUniforms() override;

    std::array<float, FACE_SHAPE_COUNT> mValues{};
    float mClipEdge = 30.0F;
    std::vector<V2F_T2F> mPoints;
    std::vector<V2F_T2F> mStrip;
    std::int32_t mSizeLocation = -1;
};

}  // namespace zv
