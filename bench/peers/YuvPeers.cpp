#include <libyuv.h>

#include <memory>

#include "bench/Frame.h"
#include "bench/peers/Peers.h"

extern "C" {
#include <libswscale/swscale.h>
}

namespace zv::bench {

std::vector<Peer> makeYuvPeers(const Frame& frame) {
    const int w = frame.width;
    const int h = frame.height;
    const auto out = std::make_shared<std::vector<unsigned char>>(frame.pixels() * 3 / 2);
    const std::size_t pixels = frame.pixels();
    const std::shared_ptr<SwsContext> scale(sws_getContext(w, h, AV_PIX_FMT_RGB24, w, h, AV_PIX_FMT_YUV420P,
                                                           SWS_BILINEAR, nullptr, nullptr, nullptr),
                                            sws_freeContext);
    const unsigned char* rgb = frame.rgb.data();
    const unsigned char* rgba = frame.rgba.data();
    return {{"swscale, RGB to I420",
             [=] {
                 const unsigned char* const source[1] = {rgb};
                 const int sourceStride[1] = {3 * w};
                 unsigned char* const y = out->data();
                 unsigned char* const target[3] = {y, y + pixels, y + pixels * 5 / 4};
                 const int targetStride[3] = {w, w / 2, w / 2};
                 sws_scale(scale.get(), source, sourceStride, 0, h, target, targetStride);
             }},
            // Its "ABGR" has red first in memory.
            {"libyuv, RGBA to I420", [=] {
                 unsigned char* const y = out->data();
                 libyuv::ABGRToI420(rgba, 4 * w, y, w, y + pixels, w / 2, y + pixels * 5 / 4, w / 2, w, h);
             }}};
}

}  // namespace zv::bench
