// yuv_compare CLIP.y4m RES: converts every frame of a 4:2:0 clip of even size to RGB and that back to I420,
// with the engine, with swscale and with libyuv, BT.601 video range. Prints the error against a computation
// in double precision, in steps of 255, and the time a frame.
#include <GL/glew.h>
#include <libyuv.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <functional>
#include <vector>

#include "core/FileUtil.h"
#include "effects/YUVSprite.h"
#include "effects/Yuv420RenderTexture.h"
#include "gl/FrameBuffer.h"
#include "gl/Texture2D.h"
#include "host/HeadlessContext.h"
#include "host/PlaneUploader.h"
#include "scene/ZVMediaEngine.h"
#include "zvfx/Stats.h"
#include "zvfx/Y4mReader.h"

extern "C" {
#include <libswscale/swscale.h>
}

namespace {

using Bytes = std::vector<unsigned char>;

struct Clip {
    int width = 0;
    int height = 0;
    std::vector<Bytes> frames;  // tight I420
};

struct Score {
    double seconds = 0;
    double largest = 0;
    double sum = 0;
    double samples = 0;

    void add(const Bytes& made, const std::vector<double>& wanted) {
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            const double error = std::abs(made[i] - wanted[i]);
            largest = std::max(largest, error);
            sum += error;
        }
        samples += static_cast<double>(wanted.size());
    }
    void print(const char* name, std::size_t frames) const {
        std::printf("  %-8s max %6.2f  mean %6.3f  %7.2f ms a frame\n", name, largest, sum / samples,
                    1000 * seconds / static_cast<double>(frames));
    }
};

double clampByte(double value) {
    return std::clamp(value, 0.0, 255.0);
}

/// A chroma sample between the four around a pixel: chroma lies amid its 2 x 2 pixels.
double chromaAt(const unsigned char* plane, int width, int height, int x, int y) {
    const double u = std::clamp((x - 0.5) / 2, 0.0, width - 1.0);
    const double v = std::clamp((y - 0.5) / 2, 0.0, height - 1.0);
    const int left = static_cast<int>(u);
    const int top = static_cast<int>(v);
    const int right = std::min(left + 1, width - 1);
    const int bottom = std::min(top + 1, height - 1);
    const double fx = u - left;
    const double fy = v - top;
    const auto at = [&](int column, int row) { return static_cast<double>(plane[row * width + column]); };
    return (at(left, top) * (1 - fx) + at(right, top) * fx) * (1 - fy) +
           (at(left, bottom) * (1 - fx) + at(right, bottom) * fx) * fy;
}

/// BT.601, video range, by its luma weights 0.299 and 0.114.
std::vector<double> exactRgb(const Clip& clip, const Bytes& frame) {
    const int w = clip.width / 2;
    const int h = clip.height / 2;
    const unsigned char* u = frame.data() + clip.width * clip.height;
    const unsigned char* v = u + w * h;
    std::vector<double> rgb;
    rgb.reserve(static_cast<std::size_t>(3 * clip.width * clip.height));
    for (int y = 0; y < clip.height; ++y) {
        for (int x = 0; x < clip.width; ++x) {
            const double luma = (frame[static_cast<std::size_t>(y * clip.width + x)] - 16) * (255.0 / 219);
            const double cb = (chromaAt(u, w, h, x, y) - 128) * (255.0 / 224);
            const double cr = (chromaAt(v, w, h, x, y) - 128) * (255.0 / 224);
            rgb.push_back(clampByte(luma + 1.402 * cr));
            rgb.push_back(clampByte(luma - (0.114 * 1.772 * cb + 0.299 * 1.402 * cr) / 0.587));
            rgb.push_back(clampByte(luma + 1.772 * cb));
        }
    }
    return rgb;
}

std::vector<double> exactI420(const Clip& clip, const Bytes& rgb) {
    const int w = clip.width;
    std::vector<double> planes[3];
    const auto lumaOf = [](const double* p) { return 0.299 * p[0] + 0.587 * p[1] + 0.114 * p[2]; };
    for (int y = 0; y < clip.height; ++y) {
        for (int x = 0; x < w; ++x) {
            const unsigned char* p = &rgb[static_cast<std::size_t>(3 * (y * w + x))];
            const double pixel[3] = {static_cast<double>(p[0]), static_cast<double>(p[1]),
                                     static_cast<double>(p[2])};
            planes[0].push_back(16 + lumaOf(pixel) * 219 / 255);
            if (x % 2 != 0 || y % 2 != 0) {
                continue;
            }
            double mean[3] = {};
            for (int c = 0; c < 3; ++c) {
                mean[c] = (p[c] + p[c + 3] + p[c + 3 * w] + p[c + 3 * w + 3]) / 4.0;
            }
            planes[1].push_back(128 + (mean[2] - lumaOf(mean)) / 1.772 * 224 / 255);
            planes[2].push_back(128 + (mean[0] - lumaOf(mean)) / 1.402 * 224 / 255);
        }
    }
    std::vector<double> all;
    for (const std::vector<double>& plane : planes) {
        all.insert(all.end(), plane.begin(), plane.end());
    }
    return all;
}

std::array<const unsigned char*, 3> planesOf(const Clip& clip, const unsigned char* frame) {
    const int luma = clip.width * clip.height;
    return {frame, frame + luma, frame + luma + luma / 4};
}

/// Converts a frame; what it needs it has been given.
using Convert = std::function<void(const Bytes& from, Bytes& to)>;

Convert swscale(const Clip& clip, bool toRgb) {
    const AVPixelFormat from = toRgb ? AV_PIX_FMT_YUV420P : AV_PIX_FMT_RGB24;
    const AVPixelFormat to = toRgb ? AV_PIX_FMT_RGB24 : AV_PIX_FMT_YUV420P;
    SwsContext* context =
        sws_getContext(clip.width, clip.height, from, clip.width, clip.height, to,
                       SWS_BILINEAR | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT, nullptr, nullptr, nullptr);
    return [=](const Bytes& in, Bytes& out) {
        const auto source = planesOf(clip, in.data());
        const auto target = planesOf(clip, out.data());
        const int rgb[3] = {3 * clip.width, 0, 0};
        const int yuv[3] = {clip.width, clip.width / 2, clip.width / 2};
        unsigned char* targets[3] = {const_cast<unsigned char*>(target[0]),
                                     const_cast<unsigned char*>(target[1]),
                                     const_cast<unsigned char*>(target[2])};
        sws_scale(context, source.data(), toRgb ? yuv : rgb, 0, clip.height, targets, toRgb ? rgb : yuv);
    };
}

// libyuv's "RAW" has red first in memory.
Convert libyuvRgb(const Clip& clip) {
    return [=](const Bytes& in, Bytes& out) {
        const auto p = planesOf(clip, in.data());
        const int half = clip.width / 2;
        libyuv::I420ToRAW(p[0], clip.width, p[1], half, p[2], half, out.data(), 3 * clip.width, clip.width,
                          clip.height);
    };
}

Convert libyuvI420(const Clip& clip) {
    return [=](const Bytes& in, Bytes& out) {
        const int luma = clip.width * clip.height;
        const int half = clip.width / 2;
        unsigned char* u = out.data() + luma;
        libyuv::RAWToI420(in.data(), 3 * clip.width, out.data(), clip.width, u, half, u + luma / 4, half,
                          clip.width, clip.height);
    };
}

/// Draws and reads at once: the second read brings what the first one has started.
void drawAndRead(zv::ZVMediaEngine& engine, zv::UniqueDataPtr<unsigned char>& bytes) {
    engine.update(0);
    engine.render();
    engine.getLastRenderTexture()->getOutData(bytes);
    engine.getLastRenderTexture()->getOutData(bytes);
}

zv::Size16 sizeOf(const Clip& clip) {
    return {static_cast<unsigned short>(clip.width), static_cast<unsigned short>(clip.height)};
}

Convert engineRgb(const Clip& clip, zv::ZVMediaEngine& engine, zv::host::PlaneUploader& uploader) {
    const int w = clip.width;
    const int h = clip.height;
    uploader.init({{w, h, 1, true}, {w / 2, h / 2, 1, true}, {w / 2, h / 2, 1, true}});
    auto* sprite = zv::YUVSprite::create(uploader.name(0), uploader.name(1), uploader.name(2), sizeOf(clip));
    sprite->setColorConversion(zv::COLOR_CONVERSION_601_VIDEO);
    engine.init(sprite, sizeOf(clip), nullptr, false);
    return [&, w, h](const Bytes& in, Bytes& out) {
        const auto p = planesOf(clip, in.data());
        const zv::host::PlaneUploader::Samples samples[3] = {
            {p[0], w, w, h}, {p[1], w / 2, w / 2, h / 2}, {p[2], w / 2, w / 2, h / 2}};
        uploader.upload(samples);
        zv::UniqueDataPtr<unsigned char> bytes(out.size());
        drawAndRead(engine, bytes);
        // GL's rows start at the bottom.
        for (int y = 0; y < h; ++y) {
            std::copy_n(bytes.get(static_cast<std::size_t>(3 * w * (h - 1 - y))), 3 * w,
                        out.begin() + 3 * w * y);
        }
    };
}

Convert engineI420(const Clip& clip, zv::ZVMediaEngine& engine) {
    auto* texture = new zv::Texture2D;
    texture->autorelease();
    texture->init(nullptr, 0, zv::PXFORMAT_RGB888, sizeOf(clip));
    auto* sprite = new zv::Sprite;
    sprite->autorelease();
    sprite->init(texture, false);
    auto* packed = zv::Yuv420RenderTexture::create(sizeOf(clip), zv::FrameBuffer::create());
    engine.init(sprite, sizeOf(clip), packed, false);
    return [&, texture](const Bytes& in, Bytes& out) {
        texture->updateWithData(in.data(), in.size());
        zv::UniqueDataPtr<unsigned char> bytes(zvfx::FrameLayout::packed420(clip.width, clip.height).bytes);
        drawAndRead(engine, bytes);
        zvfx::VideoFrame frame;
        frame.bytes = std::move(bytes);
        frame.layout = zvfx::FrameLayout::packed420(clip.width, clip.height);
        unsigned char* to = out.data();
        for (std::size_t plane = 0; plane < 3; ++plane) {
            const zvfx::Plane& p = frame.layout.planes[plane];
            for (int y = 0; y < p.height; ++y, to += p.width) {
                zvfx::copyRow(frame, plane, y, to, p.width);
            }
        }
    };
}

template <class Exact>
void compare(const char* name, const Clip& clip, const std::vector<Bytes>& frames, std::size_t outBytes,
             const std::vector<std::pair<const char*, Convert>>& ways, Exact&& exact) {
    std::printf("%s, %zu frames of %d x %d\n", name, frames.size(), clip.width, clip.height);
    std::vector<Score> scores(ways.size());
    Bytes out(outBytes);
    for (const auto& way : ways) {
        way.second(frames[0], out);  // what the first frame costs more is not counted
    }
    for (const Bytes& frame : frames) {
        const std::vector<double> wanted = exact(frame);
        for (std::size_t i = 0; i < ways.size(); ++i) {
            zvfx::StopWatch watch;
            ways[i].second(frame, out);
            scores[i].seconds += watch.lap();
            scores[i].add(out, wanted);
        }
    }
    for (std::size_t i = 0; i < ways.size(); ++i) {
        scores[i].print(ways[i].first, frames.size());
    }
}

bool load(const char* path, Clip& clip) {
    zvfx::FileReader bytes;
    zvfx::Y4mReader reader(bytes);
    if (!bytes.open(path).empty() || !reader.open(0).empty()) {
        return false;
    }
    clip.width = reader.format().width;
    clip.height = reader.format().height;
    zvfx::VideoFrame frame;
    std::string wrong;
    while (reader.read(frame, wrong) == zvfx::VideoSource::Result::Frame) {
        clip.frames.emplace_back(frame.bytes.get(0), frame.bytes.get(0) + frame.bytes.size());
    }
    return reader.format().chroma == zvfx::Chroma::C420 && clip.width % 2 == 0 && clip.height % 2 == 0 &&
           !clip.frames.empty();
}

}  // namespace

int main(int argc, char** argv) {
    Clip clip;
    if (argc != 3 || !load(argv[1], clip)) {
        std::fprintf(stderr, "yuv_compare: give a 4:2:0 .y4m of even size and the folder of zv_res\n");
        return 2;
    }
    zv::FileUtil::getInstance()->setZvRoot(argv[2]);
    auto context = zv::host::HeadlessContext::create(zv::host::HeadlessContext::Kind::Core);
    if (context == nullptr) {
        std::fprintf(stderr, "yuv_compare: no GL context\n");
        return 1;
    }
    std::vector<Bytes> rgb;
    for (const Bytes& frame : clip.frames) {
        rgb.emplace_back();
        for (const double value : exactRgb(clip, frame)) {
            rgb.back().push_back(static_cast<unsigned char>(std::lround(value)));
        }
    }
    const std::size_t rgbBytes = rgb[0].size();
    {
        zv::ZVMediaEngine engine(context);
        zv::host::PlaneUploader uploader;
        engine.setAutoUpdate(false);
        std::printf("GL: %s\n", reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
        compare("I420 to RGB", clip, clip.frames, rgbBytes,
                {{"engine", engineRgb(clip, engine, uploader)},
                 {"swscale", swscale(clip, true)},
                 {"libyuv", libyuvRgb(clip)}},
                [&](const Bytes& frame) { return exactRgb(clip, frame); });
    }
    zv::ZVMediaEngine engine(context);
    engine.setAutoUpdate(false);
    compare("RGB to I420", clip, rgb, clip.frames[0].size(),
            {{"engine", engineI420(clip, engine)},
             {"swscale", swscale(clip, false)},
             {"libyuv", libyuvI420(clip)}},
            [&](const Bytes& frame) { return exactI420(clip, frame); });
    return 0;
}
