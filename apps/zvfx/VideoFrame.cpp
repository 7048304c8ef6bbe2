#include "zvfx/VideoFrame.h"

#include <algorithm>
#include <cstring>

#include "zvfx/PictureFile.h"

namespace zvfx {

namespace {

constexpr int kLargestSide = 65535;

int half(int size) {
    return (size + 1) / 2;
}

}  // namespace

bool VideoFormat::sizeInsideLimits() const {
    return width >= 1 && height >= 1 && width <= kLargestSide && height <= kLargestSide &&
           static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) * 3 <= kMostPictureBytes;
}

std::string VideoFormat::sizeComplaint() const {
    return "a video is 1 to 65535 pixels wide and high and 256 MiB a frame at most, this one is " +
           std::to_string(width) + " x " + std::to_string(height);
}

FrameLayout FrameLayout::tight(int width, int height, Chroma chroma) {
    FrameLayout layout;
    std::ptrdiff_t offset = 0;
    for (std::size_t i = 0; i < layout.planes.size(); ++i) {
        const bool halved = i > 0 && chroma == Chroma::C420;
        const int w = halved ? half(width) : width;
        const int h = halved ? half(height) : height;
        layout.planes[i] = {offset, w, 1, w, h};
        offset += static_cast<std::ptrdiff_t>(w) * h;
    }
    layout.bytes = static_cast<std::size_t>(offset);
    return layout;
}

FrameLayout FrameLayout::packed420(int width, int height) {
    const std::ptrdiff_t stride = (static_cast<std::ptrdiff_t>(evenUp(width)) + 3) / 4 * 4;
    const std::ptrdiff_t luma = stride * evenUp(height);
    const int w = half(width);
    const int h = half(height);
    FrameLayout layout;
    layout.planes[0] = {0, stride, 1, width, height};
    layout.planes[1] = {luma, w, 1, w, h};
    layout.planes[2] = {luma + static_cast<std::ptrdiff_t>(w) * h, w, 1, w, h};
    // The target is stride / 4 texels wide; its rows are luma's and half as many.
    layout.bytes = static_cast<std::size_t>(luma + luma / 2);
    return layout;
}

FrameLayout FrameLayout::packed444(int width, int height) {
    FrameLayout layout;
    const std::ptrdiff_t stride = std::ptrdiff_t{3} * width;
    for (std::size_t i = 0; i < layout.planes.size(); ++i) {
        layout.planes[i] = {stride * (height - 1) + static_cast<std::ptrdiff_t>(i), -stride, 3, width,
                            height};
    }
    layout.bytes = static_cast<std::size_t>(stride * height);
    return layout;
}

bool VideoFrame::prepare(const FrameLayout& wanted) {
    layout = wanted;
    if (bytes.size() != wanted.bytes) {
        bytes.resize(wanted.bytes);
    }
    return bytes.size() == wanted.bytes;
}

const unsigned char* VideoFrame::row(std::size_t plane, int y) const {
    const Plane& p = layout.planes[plane];
    return bytes.get(0) + p.offset + p.stride * y;
}

unsigned char* VideoFrame::row(std::size_t plane, int y) {
    const Plane& p = layout.planes[plane];
    return bytes.get(0) + p.offset + p.stride * y;
}

void copyRow(const VideoFrame& frame, std::size_t plane, int y, unsigned char* to, int width) {
    const Plane& p = frame.layout.planes[plane];
    const unsigned char* from = frame.row(plane, std::min(y, p.height - 1));
    const int there = std::min(width, p.width);
    if (p.step == 1) {
        std::memcpy(to, from, static_cast<std::size_t>(there));
    } else {
        for (int x = 0; x < there; ++x, from += p.step) {
            to[x] = *from;
        }
    }
    if (there < width) {
        std::memset(to + there, to[there - 1], static_cast<std::size_t>(width - there));
    }
}

}  // namespace zvfx
