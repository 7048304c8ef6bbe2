#pragma once

#include <cstdint>
#include <vector>

#include "core/TVec.h"
#include "core/ZVExport.h"
#include "effects/FaceMeshNode.h"
#include "gl/PxFormat.h"

namespace zv {

/// Smooths the skin of faces and nothing else: a mask made from a face's 106 points, the oval of the face
/// without eyes, brows and lips, all with soft borders, tells how much. How, the head of ZvFaceBuffing.frag
/// tells. Scales with the face, not with the picture.
/// - Input: what is in the front scene, any format, upright: the points of the faces are places in it.
/// - Output: the size and format it was made with; alpha passes through. Without a face the picture
///   unchanged.
/// - Cost: one pass at full size, one target, two draws. One fetch a pixel, 25 where a mask is. While faces
///   move, a mesh of some 2,000 vertices for one face, at most 100,000, is computed and streamed a frame.
/// - State: leaves its program in use. A node whose program somebody else has set, which is scaled or not in
///   fill mode shows its picture unchanged.
/// - Setters: see each; they take effect at the next draw. Faces come from the media engine's face business,
///   to which the node subscribes while the strength is not 0, or from the host. At most 16 are smoothed.
class ZV_API FaceBuffingNode : public FaceMeshNode {
public:
    FaceBuffingNode();
    ~FaceBuffingNode() override;

    /// @param frameBuffer retained; null for one of its own
    static FaceBuffingNode* create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                   PxFormat format);

    /// Strength, 0 (the picture as it is) to 1, cut to that; default 0.6.
    void setFaceBuffing(float strength);
    float getFaceBuffing() const { return mStrength; }

    using FaceMeshNode::init;

protected:
    bool init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) override;

private:
    /// A vertex of the mesh: clip coordinates, texture coordinates, how much is smoothed (0 to 1) and the
    /// eye distance of the face as a part of the picture's width and height.
    struct Vertex {
        TVec<2, float> place;
        TVec<2, float> texCoord;
        float mask = 0.0F;
        TVec<2, float> reach;
    };
    bool isActive() const override;
    Mesh makeMesh() override;
    VertexUpload::Layout getLayout() const override;
    void sendUniforms() override;

    float mStrength = 0.6F;
    std::vector<Vertex> mPoints;
    std::vector<Vertex> mStrip;
    std::int32_t mStrengthLocation = -1;
};

}  // namespace zv
