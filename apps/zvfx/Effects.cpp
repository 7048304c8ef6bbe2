#include "zvfx/Effects.h"

#include <algorithm>

#include "effects/BeautyShapeChain.h"
#include "effects/ColorFilter.h"
#include "effects/Effect70SNode.h"
#include "effects/FaceBuffingNode.h"
#include "effects/FaceShapeNode.h"
#include "effects/GraffitiNode.h"
#include "effects/HsvNode.h"
#include "effects/JitterNode.h"
#include "effects/SkinBuffingNode.h"
#include "effects/SkinWhitingNode.h"
#include "effects/SoulstuffNode.h"
#include "zvfx/LutFile.h"

namespace zvfx {

namespace {

constexpr const char* kCannotMake = " cannot be made";
constexpr int kBehindTheColorTable = 60;  // a local Z order; the chain's own stages end at 50

std::string addSmoothing(const Options& options, const zv::Size16& size, zv::PxFormat format,
                         zv::BeautyShapeChain& chain) {
    if (!options.smooth) {
        return {};
    }
    auto* stage = zv::SkinBuffingNode::create(size, chain.getFrameBuffer(), format);
    if (stage == nullptr) {
        return std::string("the smoothing") + kCannotMake;
    }
    stage->setSkinBuffing(*options.smooth);
    if (options.sharpen) {
        stage->setSharpen(*options.sharpen);
    }
    stage->setName("smooth");
    chain.setSkinBuffing(stage);
    return {};
}

std::string addHsv(const Options& options, const zv::Size16& size, zv::PxFormat format,
                   zv::BeautyShapeChain& chain) {
    if (!options.hsv) {
        return {};
    }
    auto* stage = zv::HsvNode::create(size, chain.getFrameBuffer(), format);
    if (stage == nullptr) {
        return std::string("the HSV effect") + kCannotMake;
    }
    stage->setHue(options.hsv->hue);
    stage->setSaturation(options.hsv->saturation);
    stage->setValue(options.hsv->value);
    stage->setName("hsv");
    chain.setHsv(stage);
    return {};
}

std::string addWhitening(const Options& options, const zv::Size16& size, zv::PxFormat format,
                         zv::BeautyShapeChain& chain) {
    if (!options.whiten) {
        return {};
    }
    auto* stage = zv::SkinWhitingNode::create(size, chain.getFrameBuffer(), format);
    if (stage == nullptr) {
        return std::string("the whitening") + kCannotMake;
    }
    if (stage->getTexture(1) == nullptr) {
        return "the whitening needs zv_res/lookups/kel_white.png, which does not load";
    }
    stage->setSkinWhitening(*options.whiten);
    stage->setName("whiten");
    chain.setSkinWhiting(stage);
    return {};
}

std::string addColorTable(const Options& options, const zv::Size16& size, const std::string& resources,
                          zv::BeautyShapeChain& chain) {
    if (!options.lut) {
        return {};
    }
    std::string path;
    std::string wrong = findLut(options.lut->file, resources, path);
    if (wrong.empty()) {
        wrong = checkLutFile(path);
    }
    if (!wrong.empty()) {
        return wrong;
    }
    auto* stage = zv::ColorFilter::create(size, chain.getFrameBuffer(), path);
    if (stage == nullptr) {
        return path + ": a colour table is an RGB or RGBA .png, or a .bmp of 24 bits a pixel";
    }
    const std::string extension = path.substr(path.size() - std::min<std::size_t>(path.size(), 4));
    stage->setImageDirection(extension == ".bmp");  // stored bottom row first
    stage->setIntensity(options.lut->amount);
    stage->setName("lut");
    chain.setFilter(stage);
    return {};
}

std::string addFaceEffects(const Options& options, const zv::Size16& size, zv::PxFormat format,
                           zv::BeautyShapeChain& chain) {
    if (options.faceSmooth) {
        auto* stage = zv::FaceBuffingNode::create(size, chain.getFrameBuffer(), format);
        if (stage == nullptr) {
            return std::string("the smoothing of faces") + kCannotMake;
        }
        stage->setFaceBuffing(*options.faceSmooth);
        stage->setName("face-smooth");
        chain.setFaceBuffingNode(stage);
    }
    if (!options.shapes.empty()) {
        auto* stage = zv::FaceShapeNode::create(size, chain.getFrameBuffer(), format);
        if (stage == nullptr) {
            return std::string("the reshaping of faces") + kCannotMake;
        }
        for (const auto& [type, value] : options.shapes) {
            stage->updateFaceShape(type, value);
        }
        stage->setName("shape");
        chain.setFaceShape(stage);
    }
    return {};
}

std::string addAnimatedLook(const Options& options, const zv::Size16& size, zv::PxFormat format,
                            zv::BeautyShapeChain& chain) {
    if (options.effect.empty()) {
        return {};
    }
    zv::FrameBuffer* frameBuffer = chain.getFrameBuffer();
    zv::RenderTexture* stage = nullptr;
    if (options.effect == "70s") {
        stage = zv::Effect70SNode::create(size, frameBuffer, format);
    } else if (options.effect == "graffiti") {
        stage = zv::GraffitiNode::create(size, frameBuffer, format);
    } else if (options.effect == "jitter") {
        stage = zv::JitterNode::create(size, frameBuffer, format);
    } else if (options.effect == "soul") {
        stage = zv::SoulstuffNode::create(size, frameBuffer, format);
    }
    if (stage == nullptr) {
        return "the effect " + options.effect + kCannotMake;
    }
    // Over all the rest, and not in the chain's own place for an effect, which lies before the colour table.
    stage->setLocalZOrder(kBehindTheColorTable);
    stage->setName("effect");
    chain.add(stage, true, true);
    return {};
}

}  // namespace

std::string makeEffects(const Options& options, const zv::Size16& size, int channels,
                        const std::string& resources, zv::FrameBuffer* frameBuffer,
                        zv::RenderTextureChain*& chain) {
    chain = nullptr;
    if (!options.hasEffects()) {
        return {};
    }
    const zv::PxFormat format = channels == 4 ? zv::PXFORMAT_RGBA8888 : zv::PXFORMAT_RGB888;
    auto* stages = zv::BeautyShapeChain::create(size, frameBuffer);
    if (stages == nullptr) {
        return std::string("the chain of effects") + kCannotMake;
    }
    std::string wrong = addSmoothing(options, size, format, *stages);
    if (wrong.empty()) {
        wrong = addHsv(options, size, format, *stages);
    }
    if (wrong.empty()) {
        wrong = addWhitening(options, size, format, *stages);
    }
    if (wrong.empty()) {
        wrong = addColorTable(options, size, resources, *stages);
    }
    if (wrong.empty()) {
        wrong = addFaceEffects(options, size, format, *stages);
    }
    if (wrong.empty()) {
        wrong = addAnimatedLook(options, size, format, *stages);
    }
    chain = stages;
    return wrong;
}

}  // namespace zvfx
