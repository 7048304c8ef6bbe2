#include "zvfx/Pipeline.h"

#include <GL/glew.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "core/FileUtil.h"
#include "gl/FrameBuffer.h"
#include "gl/Program.h"
#include "gl/Texture2D.h"
#include "host/HeadlessContext.h"
#include "scene/RenderTexture.h"
#include "scene/RenderTextureChain.h"
#include "scene/Sprite.h"
#include "scene/ZVMediaEngine.h"
#include "zvfx/Effects.h"

namespace zvfx {

namespace {

constexpr zv::TexParams kNearest = {GL_NEAREST, GL_NEAREST, GL_CLAMP_TO_EDGE, GL_CLAMP_TO_EDGE};

zv::PxFormat formatOf(int channels) {
    return channels == 4 ? zv::PXFORMAT_RGBA8888 : zv::PXFORMAT_RGB888;
}

zv::Size16 toSize(int width, int height) {
    return {static_cast<unsigned short>(width), static_cast<unsigned short>(height)};
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
            folder = candidate.lexically_normal().generic_u8string();
            return {};
        }
    }
    return "cannot find the shaders: give the folder that holds zv_res with --res";
}

Pipeline::Pipeline() = default;

Pipeline::~Pipeline() = default;

std::string Pipeline::open(const Options& options, const std::string& resources, const Picture& input) {
    mWidth = options.size ? options.size->width : input.width;
    mHeight = options.size ? options.size->height : input.height;
    mChannels = input.channels;
    const std::uint64_t bytes = static_cast<std::uint64_t>(mWidth) * static_cast<std::uint64_t>(mHeight) *
                                static_cast<std::uint64_t>(mChannels);
    if (bytes > kMostPictureBytes) {
        return "the output may hold 256 MiB, " + std::to_string(mWidth) + " x " + std::to_string(mHeight) +
               " is more";
    }
    std::string failure = openContext(options.core);
    if (!failure.empty()) {
        return failure;
    }
    GLint largest = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
    if (std::max({mWidth, mHeight, input.width, input.height}) > largest) {
        return "this machine's GL takes pictures up to " + std::to_string(largest) + " pixels wide and high";
    }
    mEngine = std::make_unique<zv::ZVMediaEngine>(mContext);
    // Time is what the command line says, not what the clock shows.
    mEngine->setAutoUpdate(false);
    failure = openInput(input);
    if (failure.empty()) {
        failure = openEffects(options, resources);
    }
    if (failure.empty() && glGetError() != GL_NO_ERROR) {
        failure = "GL refused to set up the picture; it may be too large for this machine";
    }
    mPixels = zv::UniqueDataPtr<unsigned char>(static_cast<std::size_t>(bytes));
    return failure.empty() && mPixels.size() != bytes ? "not enough memory" : failure;
}

std::string Pipeline::openContext(bool core) {
    using Kind = zv::host::HeadlessContext::Kind;
    std::string error;
    mContext = zv::host::HeadlessContext::create(core ? Kind::Core : Kind::Compatibility, &error);
    return error;
}

std::string Pipeline::openInput(const Picture& input) {
    auto* texture = new zv::Texture2D;
    texture->autorelease();
    if (!texture->init(input.pixels.data(), input.pixels.size(), formatOf(mChannels),
                       toSize(input.width, input.height))) {
        return "the picture cannot be uploaded";
    }
    if (input.width == mWidth && input.height == mHeight) {
        // Texel centres meet pixel centres, and no rounding of a filter can touch the values.
        texture->setTexParameters(kNearest, true);
    }
    auto* sprite = new zv::Sprite;
    sprite->autorelease();
    if (!sprite->init(texture, false) || sprite->getProgram() == nullptr) {
        return "the picture cannot be shown";
    }
    // The engine's own output has no alpha; a picture that has it brings an output that keeps it.
    zv::RenderTexture* output = nullptr;
    if (mChannels == 4) {
        output = zv::RenderTexture::create(toSize(mWidth, mHeight), zv::FrameBuffer::create(), formatOf(4));
        if (output == nullptr) {
            return "the output cannot be made";
        }
    }
    mEngine->init(sprite, toSize(mWidth, mHeight), output, false);
    mOutput = mEngine->getLastRenderTexture();
    return {};
}

std::string Pipeline::openEffects(const Options& options, const std::string& resources) {
    zv::RenderTextureChain* chain = nullptr;
    std::string wrong =
        makeEffects(options, toSize(mWidth, mHeight), mChannels, resources, mEngine->getFrameBuffer(), chain);
    mEngine->setRenderChain(chain);
    return wrong;
}

void Pipeline::frame(float seconds) {
    mEngine->update(seconds);
    mEngine->render();
}

void Pipeline::read() {
    mOutput->getOutData(mPixels);
}

Picture Pipeline::finish() {
    // Read-back is one call behind: this call takes what the last read() started.
    read();
    Picture picture;
    picture.width = mWidth;
    picture.height = mHeight;
    picture.channels = mChannels;
    picture.pixels.assign(mPixels.get(0), mPixels.get(0) + mPixels.size());
    return picture;
}

std::string Pipeline::renderer() const {
    return glText(GL_RENDERER);
}

std::string Pipeline::version() const {
    return glText(GL_VERSION);
}

}  // namespace zvfx
