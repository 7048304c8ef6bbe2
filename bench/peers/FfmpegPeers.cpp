#include <algorithm>
#include <cstdio>
#include <memory>
#include <string_view>

#include "bench/Frame.h"
#include "bench/peers/Peers.h"

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/frame.h>
#include <libavutil/pixfmt.h>
}

namespace zv::bench {

namespace {

constexpr int kLevels = 64;
constexpr std::string_view kDefaultInterpolation = "tetrahedral";

/// A table of 64 levels that darkens a little, as Adobe's .cube text.
bool writeTable(const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "w");
    if (file == nullptr) {
        return false;
    }
    std::fprintf(file, "LUT_3D_SIZE %d\n", kLevels);
    for (int i = 0; i < kLevels * kLevels * kLevels; ++i) {
        const int levels[3] = {i % kLevels, i / kLevels % kLevels, i / kLevels / kLevels};
        for (const int level : levels) {
            const double value = level / (kLevels - 1.0);
            std::fprintf(file, "%.6f ", value * (0.9 + 0.1 * value));
        }
        std::fputc('\n', file);
    }
    return std::fclose(file) == 0;
}

/// A filter between a source and a sink of pictures.
class Graph {
public:
    Graph(const Frame& frame, const std::string& filter)
        : mGraph(avfilter_graph_alloc()), mIn(av_frame_alloc()) {
        mGraph->nb_threads = 2;
        const std::string source = "video_size=" + std::to_string(frame.width) + "x" +
                                   std::to_string(frame.height) +
                                   ":pix_fmt=" + std::to_string(AV_PIX_FMT_RGB24) + ":time_base=1/25";
        AVFilterContext* middle = nullptr;
        mGood = avfilter_graph_create_filter(&mSource, avfilter_get_by_name("buffer"), "in", source.c_str(),
                                             nullptr, mGraph) >= 0 &&
                avfilter_graph_create_filter(&middle, avfilter_get_by_name("lut3d"), "table", filter.c_str(),
                                             nullptr, mGraph) >= 0 &&
                avfilter_graph_create_filter(&mSink, avfilter_get_by_name("buffersink"), "out", nullptr,
                                             nullptr, mGraph) >= 0 &&
                avfilter_link(mSource, 0, middle, 0) >= 0 && avfilter_link(middle, 0, mSink, 0) >= 0 &&
                avfilter_graph_config(mGraph, nullptr) >= 0;
        mIn->width = frame.width;
        mIn->height = frame.height;
        mIn->format = AV_PIX_FMT_RGB24;
        mGood = mGood && av_frame_get_buffer(mIn, 0) >= 0;
        for (int y = 0; mGood && y < frame.height; ++y) {
            std::copy_n(frame.rgb.begin() + 3 * y * frame.width, 3 * frame.width,
                        mIn->data[0] + y * mIn->linesize[0]);
        }
    }
    ~Graph() {
        av_frame_free(&mIn);
        avfilter_graph_free(&mGraph);
    }
    Graph(const Graph&) = delete;
    Graph& operator=(const Graph&) = delete;

    bool isGood() const { return mGood; }
    void run() {
        AVFrame* out = av_frame_alloc();
        mGood = av_buffersrc_add_frame_flags(mSource, mIn, AV_BUFFERSRC_FLAG_KEEP_REF) >= 0 &&
                av_buffersink_get_frame(mSink, out) >= 0;
        av_frame_free(&out);
    }

private:
    AVFilterGraph* mGraph;
    AVFilterContext* mSource = nullptr;
    AVFilterContext* mSink = nullptr;
    AVFrame* mIn;
    bool mGood = false;
};

}  // namespace

std::vector<Peer> makeFfmpegPeers(const Frame& frame, const std::string& folder) {
    const std::string path = folder + "/table.cube";
    std::vector<Peer> peers;
    for (const char* kind : {"trilinear", "tetrahedral"}) {
        if (!writeTable(path)) {
            break;
        }
        const auto graph = std::make_shared<Graph>(frame, "file='" + path + "':interp=" + kind);
        graph->run();
        if (graph->isGood()) {
            const bool isDefault = kind == kDefaultInterpolation;
            peers.push_back({std::string("FFmpeg lut3d 64, ") + kind + (isDefault ? " (its default)" : "") +
                                 ", 2 threads",
                             [graph] { graph->run(); }, isDefault});
        }
    }
    std::remove(path.c_str());
    return peers;
}

}  // namespace zv::bench
