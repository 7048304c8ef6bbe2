#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

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

/// A stage that changes faces alone. Its picture is drawn as a mesh, dense over each face and coarse
/// elsewhere: the cells in which something changes with the effect's program, all others as they are, at the
/// price of a copy. Without a face, scaled, out of fill mode, or with a program that somebody else has set it
/// shows its picture unchanged, as any render texture.
/// Faces come from the media engine's face business, to which the node subscribes while the effect is on, or
/// from the host. At most 16 are changed.
class ZV_API FaceMeshNode : public RenderTexture {
public:
    ~FaceMeshNode() override;

    /// Hands in the faces of the latest frame, in pixels of this node's picture with the origin bottom left;
    /// they stay until the next call. What the argument holds afterwards is memory to use again. For hosts
    /// that do not use the media engine's face business.
    void updateFaceLandmarks(kel_algorithm::AlgLandmarksList& faces);

    void onDrawSelf(const Mat4& matrix) override;

    using RenderTexture::init;

protected:
    /// A triangle strip, the vertices of the cells that nothing changes first. None: nothing to change.
    struct Mesh {
        const void* vertices = nullptr;
        std::size_t count = 0;
        std::size_t still = 0;  ///< how many belong to cells that nothing changes
        int stride = 0;         ///< bytes
    };

    FaceMeshNode();

    bool init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) override;
    /// The program of the cells in which something changes.
    void setEffectProgram(Program* program);
    Program* getEffectProgram() const;

    /// Tells that a value that the mesh depends on, or whether the effect is on, has changed: the next draw
    /// makes a mesh anew.
    void settingsChanged();
    /// Whether the last draw found something to change.
    bool drawsMesh() const { return mMesh.still != mMesh.count; }
    const FaceInput& faces() const { return *mFaces; }
    FaceGrid& grid() { return *mGrid; }
    /// Of a place in pixels.
    Vec2f clipCoordsAt(Vec2f pixel) const;
    Vec2f texCoordsAt(Vec2f pixel) const;
    /// How far texture coordinates get in one pixel.
    Vec2f texCoordsPerPixel() const;

    virtual bool isActive() const = 0;
    /// Makes the mesh of the present faces and settings. The vertices stay the node's.
    virtual Mesh makeMesh() = 0;
    virtual VertexUpload::Layout getLayout() const = 0;
    /// Sends the effect's uniforms; its program is in use.
    virtual void sendUniforms() = 0;

private:
    /// What the mesh was made of.
    struct MeshSource {
        std::uint64_t faces = 0;
        std::uint64_t settings = 0;
        TVec<2, unsigned short> size;
        Vec2f corners[3];  ///< texture coordinates of bottom left, bottom right, top left

        bool operator==(const MeshSource& other) const;
    };

    void updateMesh();
    void drawMesh();

    std::unique_ptr<FaceInput> mFaces;
    std::unique_ptr<FaceGrid> mGrid;
    std::uint64_t mSettings = 1;
    MeshSource mSource;
    Mesh mMesh;
    VertexUpload mUpload;
    RefHolder<Program> mPlain;  ///< what the picture is drawn with unchanged
    RefHolder<Program> mEffect;
};

}  // namespace zv
