// The host guide's list of what a frame changes, beside what it does change.
#include <set>

#include "effects/BeautyTest.h"
#include "effects/Effect70SNode.h"
#include "effects/HsvNode.h"
#include "effects/SkinWhitingNode.h"
#include "effects/YUVSprite.h"
#include "effects/Yuv420RenderTexture.h"
#include "gltf/GtSticker.h"
#include "scene/PoisonousHost.h"
#include "support/TempDir.h"

namespace zv::test {

namespace {

constexpr std::pair<const char*, GLenum> kNames[] = {
#define ZV_NAME(name) \
    { #name, name }
    ZV_NAME(GL_CURRENT_PROGRAM),
    ZV_NAME(GL_ACTIVE_TEXTURE),
    ZV_NAME(GL_TEXTURE_BINDING_2D),
    ZV_NAME(GL_TEXTURE_BINDING_RECTANGLE),
    ZV_NAME(GL_SAMPLER_BINDING),
    ZV_NAME(GL_ARRAY_BUFFER_BINDING),
    ZV_NAME(GL_VERTEX_ARRAY_BINDING),
    ZV_NAME(GL_ELEMENT_ARRAY_BUFFER_BINDING),
    ZV_NAME(GL_VERTEX_ATTRIB_ARRAY_ENABLED),
    ZV_NAME(GL_VERTEX_ATTRIB_ARRAY_STRIDE),
    ZV_NAME(GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING),
    ZV_NAME(GL_BLEND),
    ZV_NAME(GL_BLEND_SRC_RGB),
    ZV_NAME(GL_BLEND_DST_RGB),
    ZV_NAME(GL_BLEND_SRC_ALPHA),
    ZV_NAME(GL_BLEND_DST_ALPHA),
    ZV_NAME(GL_VIEWPORT),
    ZV_NAME(GL_READ_FRAMEBUFFER_BINDING),
    ZV_NAME(GL_UNPACK_ALIGNMENT),
    ZV_NAME(GL_PACK_ALIGNMENT),
    ZV_NAME(GL_PIXEL_PACK_BUFFER_BINDING),
#undef ZV_NAME
};

using Names = std::set<std::string>;

/// What the guide names, of what this kind of context has.
Names listed() {
    const std::string guide = readFile(ZV_TEST_DATA_DIR "/../docs/host-guide.md");
    const std::size_t start = guide.find("| State | GL's names for it |"), end = guide.find("\n\n", start);
    const std::string table = start != std::string::npos ? guide.substr(start, end - start) : std::string();
    Names names;
    for (std::size_t at = table.find("`GL_"); at != std::string::npos; at = table.find("`GL_", at + 1)) {
        const std::string name = table.substr(at + 1, table.find('`', at + 1) - at - 1);
        const bool isOfAttributes = name.find("VERTEX_ATTRIB") != std::string::npos;
        const bool isLater = name == "GL_VERTEX_ARRAY_BINDING" || name == "GL_SAMPLER_BINDING";
        if (hasVersion(330) ? !isOfAttributes : !isLater) {
            names.insert(name);
        }
    }
    return names;
}

/// All that a host can have set and we can reach.
Snapshot wholeState() {
    Snapshot state = snapshot();
    for (int number : {GL_COLOR_CLEAR_VALUE, GL_DEPTH_CLEAR_VALUE, GL_STENCIL_CLEAR_VALUE, GL_DEPTH_FUNC,
                       GL_DEPTH_WRITEMASK, GL_STENCIL_FUNC, GL_STENCIL_WRITEMASK, GL_CULL_FACE_MODE,
                       GL_FRONT_FACE, GL_SCISSOR_BOX, GL_RENDERBUFFER_BINDING, GL_DITHER, GL_DRAW_BUFFER,
                       GL_LOGIC_OP_MODE, GL_MULTISAMPLE, GL_POLYGON_OFFSET_FILL}) {
        const auto name = static_cast<GLenum>(number);
        glGetIntegerv(name, state[{name, 0}].data());
    }
    return state;
}

/// The attributes belong to the vertex array that is bound, so where there are such only the binding counts.
bool isAttribute(GLenum name) {
    return name == GL_VERTEX_ATTRIB_ARRAY_ENABLED || name == GL_VERTEX_ATTRIB_ARRAY_STRIDE ||
           name == GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING;
}

class HostList : public BeautyTest {
protected:
    /// Frames from a poisoned state, in the middle of which pixels are uploaded and read.
    void play() {
        for (int i = 0; i < 2; ++i) {
            media->update(0.04F);
            PoisonousHost host(screen);
            glClearColor(0.25F, 0.5F, 0.75F, 0.5F);
            glClearDepth(0.5);
            glClearStencil(3);
            const Snapshot before = wholeState();
            media->render();
            glGetError();  // a host's odd unpack buffer may make GL refuse an upload
            media->getLastRenderTexture()->getOutData();
            note(differences(wholeState(), before));
        }
        glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
        glClearDepth(1.0);
        glClearStencil(0);
    }
    void note(const Snapshot& changed) {
        for (const auto& [key, values] : changed) {
            if (hasVersion(300) && isAttribute(key.first)) {
                continue;
            }
            const auto* known = std::find_if(std::begin(kNames), std::end(kNames),
                                             [&](const auto& name) { return name.second == key.first; });
            seen.insert(known != std::end(kNames) ? known->first : std::to_string(key.first));
        }
    }

    Names seen;
};

TEST_F(HostList, OfTheGuideIsWhatAFrameChanges) {
    const Picture picture = Picture::noise(kWidth, kHeight);
    startSkin(picture);
    chain->setHsv(HsvNode::create(kSize, nullptr, PXFORMAT_RGBA8888));
    chain->setSkinWhiting(SkinWhitingNode::create(kSize, nullptr, PXFORMAT_RGBA8888));
    chain->setEffect(Effect70SNode::create(kSize, nullptr, PXFORMAT_RGBA8888));
    media->addSticker(gltf::GtSticker::create(ZV_TEST_RES_DIR "/zv_res/stickers/confetti"));
    media->setRenderToScreen(true);
    play();
    media->removeAllSticker();
    media->removeRenderChain();
    media->init(YUVSprite::create(makeTexture(picture), makeTexture(picture), makeTexture(picture)), kSize,
                Yuv420RenderTexture::create(kSize, nullptr), false);
    play();
    auto* sprite = new Sprite;
    sprite->autorelease();
    Texture2D* rectangle = makeTexture(picture);
    unsigned int name = 0;
    glGenTextures(1, &name);
    rectangle->updateTextureId(static_cast<int>(name), GL_TEXTURE_RECTANGLE, PXFORMAT_RGBA8888, true);
    sprite->init(rectangle, false);
    media->init(sprite, kSize, nullptr, false);
    play();
    EXPECT_EQ(seen, listed());
}

}  // namespace

}  // namespace zv::test
