#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "algorithm/AlgTypes.h"
#include "core/TVec.h"
#include "core/ZVExport.h"
#include "gl/PxFormat.h"
#include "scene/RefHolder.h"
#include "scene/RenderTexture.h"
#include "scene/VertexUpload.h"

namespace zv {

class FaceGrid;
class FaceInput;

/// Smooths the skin of faces and nothing else: a mask made from a face's 106 points, the oval of the face
/// without eyes, brows and lips, all with soft borders, tells how much. How, the head of ZvFaceBuffing.frag
/// tells. Scales with the face, not with the picture.
/// - Input: what is in the front scene, any format, upright: the points of the faces are places in it.
/// - Output: the size and format it was made with; alpha passes through. Without a face the picture
/// unchanged.
/// - Cost: one pass at full size, one target, one draw. One fetch a pixel, 25 where a mask is. While faces
///   move, a mesh of some 2,000 vertices for one face, at most 100,000, is computed and streamed a frame.
/// - State: leaves its program in use. A node whose program somebody else has set, which is scaled or not in
///   fill mode shows its picture unchanged.
/// - Setters: see each; they take effect at the next draw. Faces come from the media engine's face business,
///   to which the node subscribes while the strength is not 0, or from the host. At most 16 are smoothed.
class ZV_API FaceBuffingNode : public RenderTexture {
public:
    FaceBuffingNode();
    ~FaceBuffingNode() override;

    /// @param frameBuffer retained; null for one of its own
    static FaceBuffingNode* create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                   PxFormat format);

    /// Strength, 0 (the picture as it is) to 1, cut to that; default 0.6.
    void setFaceBuffing(float strength);
    float getFaceBuffing() const { return mStrength; }

    /// Hands in the faces of the latest frame, in pixels of this node's picture with the origin bottom left;
    /// they stay until the next call. What the argument holds afterwards is memory to use again. For hosts
    /// that do not use the media engine's face business.
    void updateFaceLandmarks(kel_algorithm::AlgLandmarksList& faces);

    void onDrawSelf(const Mat4& matrix) override;

    using RenderTexture::init;

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
    /// What the mesh was made of.
    struct MeshSource {
        std::uint64_t faces = 0;
        TVec<2, unsigned short> size;
        TVec<2, float> corners[3];  ///< texture coordinates of bottom left, bottom right, top left

        bool operator==(const MeshSource& other) const;
    };

    void updateMesh();
    void fillMesh();
    void drawMesh();

    float mStrength = 0.6F;
    std::unique_ptr<FaceInput> mFaces;
    std::unique_ptr<FaceGrid> mGrid;
    MeshSource mSource;
    std::vector<Vertex> mMesh;
    VertexUpload mUpload;
    RefHolder<Program> mPlain;  ///< what the picture is drawn with unchanged
    RefHolder<Program> mSmooth;
    std::int32_t mStrengthLocation = -1;
};

}  // namespace zv
