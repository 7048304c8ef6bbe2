#include "zvfx/VideoPipeline.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "effects/YUVSprite.h"
#include "effects/Yuv420RenderTexture.h"
#include "effects/Yuv444RenderTexture.h"
#include "gl/FrameBuffer.h"
#include "gl/Texture2D.h"

namespace zvfx {

namespace {

/// The size inside: that of the format, even where 4:2:0 goes in or comes out.
zv::Size16 insideSize(const VideoFormat& format, bool even) {
    return even ? toSize(evenUp(format.width), evenUp(format.height)) : toSize(format.width, format.height);
}

bool hasHalfChroma(const VideoFormat& format) {
    return format.chroma == Chroma::C420;
}

/// The picture over black, with its last column and row repeated where `size` has one more.
Picture opaque(const Picture& picture, const zv::Size16& size) {
    Picture result;
    result.width = size.x;
    result.height = size.y;
    result.pixels.resize(std::size_t{3} * size.x * size.y);
    std::uint8_t* to = result.pixels.data();
    for (int y = 0; y < result.height; ++y) {
        for (int x = 0; x < result.width; ++x) {
            const std::size_t at = static_cast<std::size_t>(std::min(y, picture.height - 1)) *
                                       static_cast<std::size_t>(picture.width) +
                                   static_cast<std::size_t>(std::min(x, picture.width - 1));
            const std::uint8_t* from = &picture.pixels[at * static_cast<std::size_t>(picture.channels)];
            const int alpha = picture.channels == 4 ? from[3] : 255;
            for (int c = 0; c < 3; ++c) {
                *to++ = static_cast<std::uint8_t>((from[c] * alpha + 127) / 255);
            }
        }
    }
    return result;
}

}  // namespace

std::string VideoPipeline::open(const std::string& resources, const VideoFormat& input,
                                const VideoFormat& output, const Picture* still) {
    mStill = still != nullptr;
    const bool even = hasHalfChroma(input) || hasHalfChroma(output);
    const zv::Size16 size = insideSize(output, even);
    if (!output.sizeInsideLimits()) {
        return output.sizeComplaint();
    }
    std::string wrong = mPipeline.open(resources);
    if (wrong.empty()) {
        // The packed target is half as high again as the picture.
        const int height = evenUp(output.height);
        wrong = mPipeline.checkSize(evenUp(std::max(input.width, output.width)),
                                    std::max(evenUp(input.height), height + height / 2));
    }
    if (!wrong.empty()) {
        return wrong;
    }
    zv::RenderTexture* target = makeOutput(output, size, wrong);
    if (target == nullptr) {
        return wrong;
    }
    zv::Sprite* sprite = nullptr;
    if (mStill) {
        const bool same = input.width == output.width && input.height == output.height;
        const zv::Size16 shown = same ? size : toSize(input.width, input.height);
        sprite = makePictureSprite(opaque(*still, shown), same, wrong);
    } else {
        sprite = makeInput(input, insideSize(input, even), size, wrong);
    }
    return sprite != nullptr ? mPipeline.link(sprite, size, target, 3) : wrong;
}

zv::Sprite* VideoPipeline::makeInput(const VideoFormat& input, const zv::Size16& size,
                                     const zv::Size16& shown, std::string& wrong) {
    const int halving = hasHalfChroma(input) ? 2 : 1;
    const bool same = size == shown;
    const bool nearestChroma = same && halving == 1;
    // Where pixel meets pixel no rounding of a filter can touch the values.
    const std::vector<zv::host::PlaneUploader::Texture> planes = {
        {size.x, size.y, 1, !same},
        {size.x / halving, size.y / halving, 1, !nearestChroma},
        {size.x / halving, size.y / halving, 1, !nearestChroma}};
    if (!mUploader.init(planes)) {
        wrong = "GL refuses the textures for the video";
        return nullptr;
    }
    std::array<zv::Texture2D*, 3> textures{};
    for (std::size_t i = 0; i < planes.size(); ++i) {
        textures[i] = new zv::Texture2D;
        textures[i]->autorelease();
        textures[i]->init(mUploader.name(i), toSize(planes[i].width, planes[i].height), zv::PXFORMAT_GRAY8,
                          false);
    }
    zv::YUVSprite* sprite = zv::YUVSprite::create(textures[0], textures[1], textures[2]);
    if (sprite == nullptr) {
        wrong = "the video cannot be shown";
        return nullptr;
    }
    sprite->setColorConversion(static_cast<zv::YUVSprite::ColorConversion>(input.matrix));
    return sprite;
}

zv::RenderTexture* VideoPipeline::makeOutput(const VideoFormat& output, const zv::Size16& size,
                                             std::string& wrong) {
    zv::RenderTexture* target = nullptr;
    if (hasHalfChroma(output)) {
        mLayout = FrameLayout::packed420(output.width, output.height);
        auto* packed = zv::Yuv420RenderTexture::create(size, zv::FrameBuffer::create(), -1);
        if (packed != nullptr) {
            packed->setColorConversion(static_cast<zv::YUVSprite::ColorConversion>(output.matrix));
        }
        target = packed;
    } else {
        mLayout = FrameLayout::packed444(output.width, output.height);
        auto* full = zv::Yuv444RenderTexture::create(size, zv::FrameBuffer::create());
        if (full != nullptr) {
            full->setColorConversion(static_cast<zv::YUVSprite::ColorConversion>(output.matrix));
        }
        target = full;
    }
    if (target == nullptr) {
        wrong = "the output cannot be made";
    }
    return target;
}

std::string VideoPipeline::draw(const VideoFrame& frame, float seconds) {
    if (!mStill) {
        std::array<zv::host::PlaneUploader::Samples, 3> samples{};
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const Plane& plane = frame.layout.planes[i];
            samples[i] = {frame.row(i, 0), plane.stride, plane.width, plane.height};
        }
        if (!mUploader.upload(samples.data())) {
            return "GL has no memory for the video's frames";
        }
    }
    mPipeline.frame(seconds, false);
    return {};
}

std::string VideoPipeline::read(VideoFrame& frame) {
    if (!frame.prepare(mLayout)) {
        return "not enough memory";
    }
    mPipeline.output()->getOutData(frame.bytes);
    return {};
}

}  // namespace zvfx
