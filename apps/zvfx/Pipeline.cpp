#include "zvfx/Pipeline.h"

#include <GL/glew.h>

#include <algorithm>
#include <filesystem>

#include "core/FileUtil.h"
#include "gl/Program.h"
#include "gl/Texture2D.h"
#include "host/HeadlessContext.h"
#include "scene/RenderTexture.h"
#include "scene/RenderTextureChain.h"
#include "scene/Sprite.h"
#include "scene/ZVMediaEngine.h"
#include "zvfx/Effects.h"
#include "zvfx/FaceOverlay.h"
#include "zvfx/Stickers.h"

namespace zvfx {

namespace {

constexpr zv::TexParams kNearest = {GL_NEAREST, GL_NEAREST, GL_CLAMP_TO_EDGE, GL_CLAMP_TO_EDGE};

zv::PxFormat formatOf(int channels) {
    return channels == 4 ? zv::PXFORMAT_RGBA8888 : zv::PXFORMAT_RGB888;
}

std::string glText(GLenum name) {
    const auto* text = reinterpret_cast<const char*>(glGetString(name));
    return text != nullptr ? text : "";
}

bool hasShaders(const std::filesystem::path& folder) {
    std::error_code error;
    return std::filesystem::is_directory(folder / "zv_res" / "shaders", error);
}

}  // namespace

std::string findResources(const std::string& given, std::string& folder) {
    if (!given.empty()) {
        folder = given;
        return hasShaders(std::filesystem::u8path(given)) ? std::string()
                                                          : given + ": holds no zv_res/shaders";
    }
    const std::filesystem::path program = std::filesystem::u8path(zv::FileUtil::getInstance()->getExeDir());
    for (const auto& candidate :
         {program / "res", program / ".." / ZVFX_INSTALLED_RES, std::filesystem::u8path(ZVFX_SOURCE_RES)}) {
        if (hasShaders(candidate)) {
            // On Windows a path from the build's own shell has no drive yet.
            std::error_code error;
            folder = std::filesystem::absolute(candidate, error).lexically_normal().generic_u8string();
            return {};
        }
    }
    return "cannot find the shaders: give the folder that holds zv_res with --res";
}

zv::Size16 toSize(int width, int height) {
    return {static_cast<unsigned short>(width), static_cast<unsigned short>(height)};
}

zv::Sprite* makePictureSprite(const Picture& picture, bool same, std::string& wrong) {
    auto* texture = new zv::Texture2D;
    texture->autorelease();
    if (!texture->init(picture.pixels.data(), picture.pixels.size(), formatOf(picture.channels),
                       toSize(picture.width, picture.height))) {
        wrong = "the picture cannot be uploaded";
        return nullptr;
    }
    if (same) {
        texture->setTexParameters(kNearest, true);
    }
    auto* sprite = new zv::Sprite;
    sprite->autorelease();
    if (!sprite->init(texture, false) || sprite->getProgram() == nullptr) {
        wrong = "the picture cannot be shown";
        return nullptr;
    }
    return sprite;
}

Pipeline::Pipeline(const Options& options) : mOptions(options) {}

Pipeline::~Pipeline() = default;

std::string Pipeline::open(const std::string& resources) {
    using Kind = zv::host::HeadlessContext::Kind;
    mResources = resources;
    zv::FileUtil::getInstance()->setZvRoot(resources);
    std::string wrong;
    mContext = zv::host::HeadlessContext::create(mOptions.core ? Kind::Core : Kind::Compatibility, &wrong);
    if (wrong.empty()) {
        mEngine = std::make_unique<zv::ZVMediaEngine>(mContext);
        // Time is what the command line or the video says, not what the clock shows.
        mEngine->setAutoUpdate(false);
    }
    return wrong;
}

std::string Pipeline::checkSize(int width, int height) const {
    GLint largest = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
    return std::max(width, height) <= largest ? std::string()
                                              : "this machine's GL takes pictures up to " +
                                                    std::to_string(largest) + " pixels wide and high";
}

std::string Pipeline::link(zv::Sprite* input, const zv::Size16& size, zv::RenderTexture* output,
                           int channels) {
    mEngine->init(input, size, output, false);
    zv::RenderTextureChain* chain = nullptr;
    std::string wrong = makeEffects(mOptions, size, channels, mResources, mEngine->getFrameBuffer(), chain);
    mEngine->setRenderChain(chain);
    if (wrong.empty()) {
        wrong = addStickers(mOptions.stickers, mOptions.faces, static_cast<float>(mOptions.fps), mResources,
                            size, *mEngine);
    }
    if (wrong.empty() && mOptions.debugFaces) {
        FaceOverlay::addTo(*mEngine, size);
    }
    if (wrong.empty() && glGetError() != GL_NO_ERROR) {
        wrong = "GL refused to set up the picture; it may be too large for this machine";
    }
    return wrong;
}

void Pipeline::frame(float seconds, bool wait) {
    mEngine->setFinishAfterRender(wait);
    mEngine->update(seconds);
    mEngine->render();
}

std::vector<EffectCost> Pipeline::effectCosts() {
    return measureEffects(mEngine->getRenderChain(), [this] { frame(0, true); });
}

zv::RenderTexture* Pipeline::output() const {
    return mEngine->getLastRenderTexture();
}

std::string Pipeline::renderer() const {
    return glText(GL_RENDERER);
}

std::string Pipeline::version() const {
    return glText(GL_VERSION);
}

}  // namespace zvfx
