#include <memory>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/ximgproc/edge_filter.hpp>

#include "bench/Frame.h"
#include "bench/peers/Peers.h"

namespace zv::bench {

std::vector<Peer> makeOpenCvPeers(const Frame& frame) {
    constexpr int kThreads = 2;
    constexpr int kDiameter = 9;
    constexpr double kSigma = 75;
    constexpr double kEpsilon = 25.5 * 25.5;  // a tenth of the range, squared
    cv::setNumThreads(kThreads);
    const auto in = std::make_shared<cv::Mat>(
        cv::Mat(frame.height, frame.width, CV_8UC3, const_cast<unsigned char*>(frame.rgb.data())).clone());
    const auto out = std::make_shared<cv::Mat>();
    // As far as our own blur reaches: a box of a 48th of the width.
    const int radius = frame.width / 96;
    return {{"OpenCV bilateral, d 9, sigma 75, 2 threads",
             [=] { cv::bilateralFilter(*in, *out, kDiameter, kSigma, kSigma); }},
            {"OpenCV guided filter, r " + std::to_string(radius) + ", 2 threads",
             [=] { cv::ximgproc::guidedFilter(*in, *in, *out, radius, kEpsilon); }}};
}

}  // namespace zv::bench
