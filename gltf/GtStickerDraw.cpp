// The GL side of GtSticker: what it loads, and how it draws.
#include <GL/glew.h>

#include "core/FileUtil.h"
#include "core/RefCreate.h"
#include "core/ZVLog.h"
#include "gl/ConfigGL.h"
#include "gl/DebugLabel.h"
#include "gl/Program.h"
#include "gl/RenderState.h"
#include "gl/Texture2D.h"
#include "gltf/GtSticker.h"

namespace zv::gltf {

namespace {

// A model is a file from anywhere and may name the same bytes, pictures and meshes again and again. What goes
// beyond these is left undrawn.
constexpr std::size_t kMostDrawCalls = 16384;
constexpr std::size_t kMostBuffers = 65536;
constexpr std::uint64_t kMostBufferBytes = GtModel::MAX_MODEL_BYTES;
constexpr std::uint64_t kMostTextureBytes = 512ULL * 1024 * 1024;

bool hasVertexArrays() {
    return ConfigGL::getInstance()->supportVAO();
}

/// GL takes an offset into the bound buffer where it took a pointer once.
const void* bufferOffset(std::int64_t bytes) {
    return reinterpret_cast<const void*>(
        static_cast<std::intptr_t>(bytes));  // NOLINT(performance-no-int-to-ptr)
}

/// Textures have one level, so of a filter with mipmaps the part inside a level is left.
int filterOf(int filter) {
    switch (filter) {
        case GL_NEAREST:
        case GL_NEAREST_MIPMAP_NEAREST:
        case GL_NEAREST_MIPMAP_LINEAR:
            return GL_NEAREST;
        default:
            return GL_LINEAR;
    }
}

/// What a sampler leaves out repeats, as the format has it.
int wrapOf(int wrap) {
    return wrap == GL_CLAMP_TO_EDGE || wrap == GL_MIRRORED_REPEAT ? wrap : GL_REPEAT;
}

/// The values of joints and weights for vertices that have none: the last joint, the first and last weight.
void setMissingBones(float lastJoint, float firstWeight, float lastWeight) {
    glVertexAttrib4f(AttribIndex::JOINT, 0.0F, 0.0F, 0.0F, lastJoint);
    glVertexAttrib4f(AttribIndex::WEIGHT, firstWeight, 0.0F, 0.0F, lastWeight);
}

/// Null when the file is missing: looked for first, because a reader of bitmaps would wait for it.
Texture2D* loadTexture(const std::string& path) {
    FileUtil* files = FileUtil::getInstance();
    if (path.empty() || !files || !files->fileExist(files->getFullFilePath(path))) {
        return nullptr;
    }
    return createRef<Texture2D>([&](Texture2D& texture) { return texture.init(path); });
}

/// Bytes on the GPU, at most.
std::uint64_t bytesOf(const Texture2D& texture) {
    return std::uint64_t{4} * texture.getSize().x * texture.getSize().y;
}

}  // namespace

bool GtSticker::loadModelResources() {
    clearAllResources();
    RenderState* state = RenderState::getCurrent();
    if (!state) {
        return false;
    }
    loadTextures();
    loadBuffers(*state);
    listDrawCalls();
    return true;
}

void GtSticker::clearAllResources() {
    for (Texture2D* texture : mTextures) {
        if (texture) {
            texture->release();
        }
    }
    for (const unsigned int buffer : mBuffers) {
        if (buffer != 0) {
            glDeleteBuffers(1, &buffer);
        }
    }
    RenderState* state = RenderState::getCurrent();
    for (const auto& entry : mVaos) {
        if (state) {
            state->collectVao(entry.second);
        } else {
            glDeleteVertexArrays(1, &entry.second);
        }
    }
    mTextures.clear();
    mBuffers.clear();
    mVaos.clear();
    mDrawCalls.clear();
    mAniNodes.clear();
}

void GtSticker::loadTextures() {
    std::uint64_t bytes = 0;
    std::size_t missing = 0;
    mTextures.assign(mModel.images.size(), nullptr);
    for (std::size_t i = 0; i < mTextures.size(); ++i) {
        Texture2D* texture = bytes <= kMostTextureBytes ? loadTexture(mModel.images[i]) : nullptr;
        if (texture) {
            bytes += bytesOf(*texture);
            texture->retain();
            mTextures[i] = texture;
            setDebugLabel(GL_TEXTURE, texture->getName(), "sticker " + mModel.images[i]);
        } else if (missing++ == 0) {
            zvLog("sticker %s: cannot show the picture %s", mLabel.c_str(), mModel.images[i].c_str());
        }
    }
    // An image has one GL texture: where several textures of the model share it, the first one's sampler
    // holds.
    std::vector<bool> sampled(mTextures.size(), false);
    for (std::size_t i = 0; i < mModel.textures.size(); ++i) {
        const auto source = static_cast<std::size_t>(mModel.textures[i].source);
        const auto sampler = static_cast<std::size_t>(mModel.textures[i].sampler);
        if (source < mTextures.size() && mTextures[source] && !sampled[source] &&
            sampler < mModel.samplers.size()) {
            const GtSampler& from = mModel.samplers[sampler];
            sampled[source] = true;
            mTextures[source]->setTexParameters(
                {filterOf(from.minFilter), filterOf(from.magFilter), wrapOf(from.wrapS), wrapOf(from.wrapT)},
                true);
        }
    }
}

void GtSticker::loadBuffers(RenderState& state) {
    mBuffers.assign(mModel.bufferViews.size(), 0);
    // The binding of indices belongs to the vertex array that is bound: not to the host's, then.
    const unsigned int vao = state.genAndBindVao();
    std::uint64_t bytes = 0;
    for (std::size_t i = 0; i < mBuffers.size() && i < kMostBuffers; ++i) {
        const GtBufferView& view = mModel.bufferViews[i];
        bytes += view.byteLength;
        if (!isViewInside(mModel, static_cast<std::int64_t>(i)) || bytes > kMostBufferBytes) {
            bytes -= view.byteLength;
            continue;
        }
        const unsigned int target =
            view.target == GL_ELEMENT_ARRAY_BUFFER ? GL_ELEMENT_ARRAY_BUFFER : GL_ARRAY_BUFFER;
        const unsigned char* data =
            mModel.buffers[static_cast<std::size_t>(view.buffer)].get(view.byteOffset);
        mBuffers[i] = state.genVbo(target, view.byteLength, data, GL_STATIC_DRAW);
        setDebugLabel(GL_BUFFER, mBuffers[i], "sticker buffer view");
        GLint held = 0;
        glGetBufferParameteriv(target, GL_BUFFER_SIZE, &held);
        if (static_cast<std::uint64_t>(held) != view.byteLength) {
            glDeleteBuffers(1, &mBuffers[i]);  // GL had no memory, and a draw must not read what is not there
            mBuffers[i] = 0;
        }
    }
    state.bindVbo(GL_ELEMENT_ARRAY_BUFFER, 0);
    state.unBindVaoVbo();
    state.collectVao(vao);
}

void GtSticker::listDrawCalls() {
    const auto scene = static_cast<std::size_t>(mModel.scene);
    if (scene >= mModel.scenes.size()) {
        return;
    }
    std::unordered_map<unsigned int, std::size_t> owners;
    std::size_t left = kMostDrawCalls;
    std::size_t undrawn = 0;
    const UniqueDataPtr<int>& nodes = mModel.scenes[scene].nodes;
    for (std::size_t n = 0; n < nodes.size() && left > 0; ++n) {
        const auto node = static_cast<std::size_t>(nodes[n]);
        const int mesh = node < mModel.nodes.size() ? mModel.nodes[node].mesh : -1;
        if (mesh < 0 || static_cast<std::uint64_t>(mesh) >= mModel.meshes.size()) {
            continue;
        }
        const std::size_t primitives = mModel.meshes[static_cast<std::size_t>(mesh)].primitives.size();
        for (std::size_t p = 0; p < primitives && left > 0; ++p, --left) {
            undrawn += addDrawCall(nodes[n], mesh, static_cast<int>(p), owners) ? 0 : 1;
        }
    }
    if (undrawn > 0 || left == 0) {
        zvLog("sticker %s: %zu primitives cannot be drawn%s", mLabel.c_str(), undrawn,
              left == 0 ? ", and there are too many" : "");
    }
}

bool GtSticker::addDrawCall(int node, int mesh, int primitive,
                            std::unordered_map<unsigned int, std::size_t>& owners) {
    GtDrawCall call;
    bool isDrawn =
        call.lookUp(mModel, mesh, primitive) && mTextures[call.image] && mBuffers[call.indexView] != 0;
    for (std::uint32_t i = 0; i < call.attributeCount; ++i) {
        isDrawn = isDrawn && mBuffers[call.attributes[i].view] != 0;
    }
    if (!isDrawn) {
        return false;
    }
    call.node = node;
    call.layout = mDrawCalls.size();
    if (hasVertexArrays()) {
        call.layout = owners.emplace(call.key, mDrawCalls.size()).first->second;
    }
    mDrawCalls.push_back(call);
    return true;
}

void GtSticker::onDrawSelf(const Mat4&) {
    RenderState* state = RenderState::getCurrent();
    if (!state || mDrawCalls.empty()) {
        return;
    }
    const auto width = static_cast<float>(state->getCurViewPort().size.x);
    const auto height = static_cast<float>(state->getCurViewPort().size.y);
    if (width <= 0.0F || height <= 0.0F) {
        return;
    }
    constexpr float kNear = -1000.0F;
    constexpr float kFar = 1000.0F;
    if (!isFaceSticker()) {
        onDrawStep(Mat4::createOrthographicOffCenter(0.0F, width, -height, 0.0F, kNear, kFar), nullptr);
        return;
    }
    const Mat4 projection = Mat4::createOrthographicOffCenter(0.0F, width, 0.0F, height, kNear, kFar);
    for (std::size_t i = 0; i < mFaceMats.size(); ++i) {
        onDrawStep(projection, mFaceMats.get(i));
    }
}

void GtSticker::onDrawStep(const Mat4& projection, UniqueDataPtr<Mat4>* faceMats) {
    RenderState* state = RenderState::getCurrent();
    Program* program = getUseProgram();
    const bool hasBones = !isFaceSticker() || (faceMats && faceMats->size() > 0);
    // With program 0 GL would decide what appears.
    if (!state || !program || program->getName() == 0 || !hasBones) {
        return;
    }
    for (GtDrawCall& call : mDrawCalls) {
        draw(*state, call, projection, isFaceSticker() ? faceMats : nullptr);
    }
}

unsigned int GtSticker::countBones(const UniqueDataPtr<Mat4>& mats) {
    if (mats.size() <= kMostBones) {
        return static_cast<unsigned int>(mats.size());
    }
    if (!mSaidBonesCut) {
        mSaidBonesCut = true;
        zvLog("sticker %s: a face has %llu matrices, of which the first %u are used", mLabel.c_str(),
              static_cast<unsigned long long>(mats.size()), kMostBones);
    }
    return kMostBones;
}

void GtSticker::draw(RenderState& state, GtDrawCall& call, const Mat4& projection,
                     const UniqueDataPtr<Mat4>* faceMats) {
    std::int64_t offset = call.indexOffset;
    const auto entry = mAniNodes.find(call.node);
    if (entry != mAniNodes.end()) {
        if (entry->second.visible == 0) {
            return;
        }
        if (entry->second.byteOffset != GtAniNode::NO_OFFSET) {
            offset = entry->second.byteOffset;
        }
    }
    const GtDrawCall& layout = mDrawCalls[call.layout];
    if (!call.indicesFit(mModel, layout, offset)) {
        if (!mSaidIndicesOut) {
            mSaidIndicesOut = true;
            zvLog(
                "sticker %s: a primitive of node %d is not drawn, its indices from byte %lld on leave "
                "their buffer or the vertices",
                mLabel.c_str(), call.node, static_cast<long long>(offset));
        }
        return;
    }
    const UsedProgram& used = useProgram();
    bindLayout(state, layout);
    mTextures[call.image]->active(0);
    state.setBlend(getBlendFunc());
    state.useProgram(used.program);
    used.program->setUniform(used.mvp, projection);
    if (faceMats) {
        used.program->setUniformMatrix4fv(used.bones, faceMats->get(0)->m, countBones(*faceMats));
    }
    const bool isRigid = faceMats && !(layout.has(GtPrimitive::Attribute::JOINTS_0) &&
                                       layout.has(GtPrimitive::Attribute::WEIGHTS_0));
    if (isRigid) {
        setMissingBones(0.0F, 1.0F, 0.0F);
    }
    state.drawElements(call.mode, call.indexCount, call.indexType, bufferOffset(offset));
    if (isRigid) {
        setMissingBones(1.0F, 0.0F, 1.0F);  // GL's defaults
    }
    unbindLayout(state, layout);
}

void GtSticker::bindLayout(RenderState& state, const GtDrawCall& layout) {
    if (const unsigned int vao = getVao(layout.key)) {
        state.bindVao(vao);
        return;
    }
    if (const unsigned int vao = state.genAndBindVao()) {
        mVaos[layout.key] = vao;
        setDebugLabel(GL_VERTEX_ARRAY, vao, "sticker primitive");
    }
    for (std::uint32_t i = 0; i < layout.attributeCount; ++i) {
        const GtDrawCall::Attribute& attribute = layout.attributes[i];
        state.bindVbo(GL_ARRAY_BUFFER, mBuffers[attribute.view]);
        state.vertexAttribPointer(static_cast<AttribIndex::Enum>(attribute.location), attribute.components,
                                  attribute.type, GL_FALSE, attribute.stride, bufferOffset(attribute.offset));
    }
    state.bindVbo(GL_ELEMENT_ARRAY_BUFFER, mBuffers[layout.indexView]);
}

void GtSticker::unbindLayout(RenderState& state, const GtDrawCall& layout) {
    if (!hasVertexArrays()) {
        // Left enabled, they would point into this sticker's buffers after it is gone.
        for (std::uint32_t i = 0; i < layout.attributeCount; ++i) {
            glDisableVertexAttribArray(layout.attributes[i].location);
        }
    }
    state.unBindVaoVbo();
    state.bindVbo(GL_ELEMENT_ARRAY_BUFFER, 0);
}

}  // namespace zv::gltf
