#pragma once

#include <string>

#include "host/PlaneUploader.h"
#include "zvfx/Pipeline.h"
#include "zvfx/VideoFrame.h"

namespace zvfx {

/// The engine between YUV frames (or a picture that stays) and YUV frames. All sizes are brought to even ones
/// inside by repeating the last column and row, and the frames that come out are trimmed again, so that no
/// sample is invented or moved. Operations that can fail answer what went wrong, or nothing.
class VideoPipeline {
public:
    /// @param options outlives the pipeline
    explicit VideoPipeline(const Options& options) : mPipeline(options) {}

    /// @param still what is shown when the frames hold no picture; null: they do
    std::string open(const std::string& resources, const VideoFormat& input, const VideoFormat& output,
                     const Picture* still);

    /// Uploads a frame and draws it; a frame of a still picture only lets time pass.
    std::string draw(const VideoFrame& frame, float seconds);

    /// Starts to read the frame that was drawn and takes the one before it, so the first call takes nothing
    /// of worth and the last frame needs one call more. The time of the frame is the caller's.
    std::string read(VideoFrame& frame);

    Pipeline& pipeline() { return mPipeline; }

private:
    zv::Sprite* makeInput(const VideoFormat& input, const zv::Size16& size, const zv::Size16& shown,
                          std::string& wrong);
    zv::RenderTexture* makeOutput(const VideoFormat& output, const zv::Size16& size, std::string& wrong);

    // The uploader's textures go while the context is still there.
    Pipeline mPipeline;
    zv::host::PlaneUploader mUploader;
    FrameLayout mLayout;  // of what read() gives
    bool mStill = false;
};

}  // namespace zvfx
