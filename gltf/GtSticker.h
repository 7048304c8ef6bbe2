#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/Mat4.h"
#include "core/UniqueDataPtr.h"
#include "core/ZVExport.h"
#include "gltf/GtDrawCall.h"
#include "gltf/GtModel.h"
#include "scene/IBlend.h"
#include "scene/Node.h"

namespace kel_algorithm {
struct AlgBizFunc;
}

namespace zv {
class Program;
class RenderState;
class Texture2D;
}  // namespace zv

namespace zv::gltf {

/// Shows one sticker: a folder with a sticker.json, the glTF model that this names, and the model's buffers
/// and pictures. A screen sticker (type "foreground" or "frame") is drawn once over the view port; a face
/// sticker (any other type) once a face, with the matrices that face detection supplies. Its animation plays
/// index ranges and hides nodes. docs/stickers.md tells how artwork is made and what its units are.
///
/// Starts with BlendFunc::ALPHA_NON_PREMULTIPLIED. On an output with alpha, what is half transparent in the
/// sticker leaves the output less opaque than it was, since both channels blend alike.
/// Made, used and destroyed on the thread of its engine.
class ZV_API GtSticker : public Node, public virtual IBlend {
public:
    /// A face's matrices that are used; further ones are cut, which the log says once. As many as a vertex
    /// shader of GLSL 1.20 is sure to have room for beside "u_mvp".
    static constexpr unsigned int kMostBones = 31;

    GtSticker();
    GtSticker(const GtSticker&) = delete;
    GtSticker& operator=(const GtSticker&) = delete;
    /// A face sticker takes its subscription back, whether or not its engine is still there.
    ~GtSticker() override;

    /// Null when init() fails. Autoreleased.
    static GtSticker* create(const std::string& folder);
    static GtSticker* create(const std::string& folder, const std::string& gltfFile);

    using Node::init;
    /// Reads "sticker.json" in that folder and loads the model that it names. False, with the reason in the
    /// log, when either fails or there is no engine.
    bool init(const std::string& folder);
    /// The same without "sticker.json". The type stays empty, so this is a face sticker, but one that
    /// subscribes to nothing: hand it faces with updateFaceDetectMats().
    bool init(const std::string& folder, const std::string& gltfFile);

    /// Takes the type, and the path of the model, from the folder's "sticker.json". A face sticker subscribes
    /// to the sticker matrices of the current media engine's face business.
    /// @param folder gets a "/" at its end unless it has one
    /// @param gltfPath set on success only
    /// @return false when the file is missing, is no JSON or lacks the type or the model's name
    bool parserJson(std::string& folder, std::string& gltfPath);
    bool isFaceSticker() const { return mType != "foreground" && mType != "frame"; }

    /// Makes textures and buffers of the model that is loaded. A picture that does not load leaves the
    /// primitives that show it undrawn. False only without an engine.
    bool loadModelResources();
    /// Releases what loadModelResources() made.
    void clearAllResources();

    /// The program of this kind of sticker, made at the first call, which needs the GL context.
    Program* getUseProgram();
    /// GL name of the vertex array under that key (mesh x 100 + primitive), 0 when there is none. Meshes with
    /// 100 primitives or more share keys with the next mesh: there the primitive that comes first in the
    /// scene decides what both are drawn from. Below GL 3.0 there are no vertex arrays, and no such mix-up.
    unsigned int getVao(unsigned int key) const;

    /// Takes the faces of the latest frame: one list of matrices a face. They stay until the next call. What
    /// the argument holds afterwards is memory to use again.
    void updateFaceDetectMats(UniqueDataPtr<UniqueDataPtr<Mat4>>& mats);

    /// Seconds since the start; never negative.
    float getTime() const { return mTime; }

    /// Advances the animation. Counts once an update pass, however often the node is reached in it.
    void onUpdateSelf(float dt) override;
    /// Draws over the current view port: x from 0 to its width; y from 0 at the bottom to its height for a
    /// face sticker, from 0 at the top to minus its height for a screen sticker; depth from -1000 to 1000.
    void onDrawSelf(const Mat4& matrix) override;
    /// One drawing of all nodes of the model's default scene.
    /// @param faceMats the matrices of one face; null for a screen sticker
    void onDrawStep(const Mat4& projection, UniqueDataPtr<Mat4>* faceMats);

private:
    /// A program with the locations that every draw needs; -1 where it lacks the uniform.
    struct UsedProgram {
        Program* program = nullptr;  ///< retained
        std::int32_t mvp = -1;
        std::int32_t bones = -1;
    };

    UsedProgram& useProgram();
    bool loadModel(const std::string& folder, const std::string& gltfPath);
    void subscribe();
    void unsubscribe();
    void loadTextures();
    void loadBuffers(RenderState& state);
    void listDrawCalls();
    bool addDrawCall(int node, int mesh, int primitive,
                     std::unordered_map<unsigned int, std::size_t>& owners);
    unsigned int countBones(const UniqueDataPtr<Mat4>& mats);
    void draw(RenderState& state, GtDrawCall& call, const Mat4& projection,
              const UniqueDataPtr<Mat4>* faceMats);
    void bindLayout(RenderState& state, const GtDrawCall& layout);
    void unbindLayout(RenderState& state, const GtDrawCall& layout);

    GtModel mModel;
    std::vector<Texture2D*> mTextures;   ///< one an image, retained; null where the picture did not load
    std::vector<unsigned int> mBuffers;  ///< one a buffer view; 0 where the view leaves its buffer
    std::unordered_map<unsigned int, unsigned int> mVaos;
    std::unordered_map<int, GtAniNode> mAniNodes;  ///< entries stay and are reset, so that no frame allocates
    float mTime = 0.0F;
    UniqueDataPtr<UniqueDataPtr<Mat4>> mFaceMats;
    std::string mType;
    UsedProgram mProgram;
    UsedProgram mSkeletalProgram;
    std::vector<GtDrawCall> mDrawCalls;  ///< what can be drawn, in the order of drawing
    std::shared_ptr<kel_algorithm::AlgBizFunc> mSubscription;
    std::string mLabel;  ///< for log lines: the sticker's id, else its name, else its folder
    std::uint64_t mUpdateStamp = 0;
    bool mSaidBonesCut = false;
    bool mSaidIndicesOut = false;
};

}  // namespace zv::gltf
