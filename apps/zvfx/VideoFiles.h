#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "zvfx/VideoFrame.h"

namespace zvfx {

class ByteWriter;
struct Options;

/// Where frames come from. Made on one thread, then read on one other.
class VideoSource {
public:
    enum class Result { Frame, End, Failed };

    virtual ~VideoSource() = default;
    VideoSource() = default;
    VideoSource(const VideoSource&) = delete;
    VideoSource& operator=(const VideoSource&) = delete;

    /// Fills the next frame, with the memory that it has if that fits. Once asked to stop (see Interrupt.h)
    /// it answers End.
    /// @param wrong what went wrong when the answer is Failed
    virtual Result read(VideoFrame& frame, std::string& wrong) = 0;

    const VideoFormat& format() const { return mFormat; }
    /// How many frames there probably are; 0 when nobody knows.
    std::int64_t frameCount() const { return mFrameCount; }

protected:
    VideoFormat mFormat;
    std::int64_t mFrameCount = 0;
};

/// Where frames go. What was not finished leaves no file.
class VideoSink {
public:
    virtual ~VideoSink() = default;
    VideoSink() = default;
    VideoSink(const VideoSink&) = delete;
    VideoSink& operator=(const VideoSink&) = delete;

    /// @return what went wrong, or nothing
    virtual std::string write(const VideoFrame& frame) = 0;
    /// Writes what is left and gives the file its name.
    /// @return what went wrong, or nothing
    virtual std::string finish() = 0;
};

/// The kind of a file, told by its name.
enum class FileKind { Picture, Y4m, RawI420, VideoFile, Unknown };

/// "-" is Y4M.
FileKind inputKind(const std::string& path);
FileKind outputKind(const std::string& path);

/// What the build reads and writes, for messages: "reads .png ... and writes ...".
std::string supportedKinds();

/// Opens a video to be read: Y4M from a file or, with "-", from standard input, or a video file.
/// @return what went wrong, or nothing
std::string openVideo(const Options& options, std::unique_ptr<VideoSource>& source);

/// What comes out for frames of `input`: size and matrix as asked for, chroma as input and output have it.
VideoFormat outputFormat(const Options& options, const VideoFormat& input);

/// Opens the output. `source` may be one of openVideo(), whose audio then comes along; null for none.
/// @param format in: what outputFormat() said; out: with what the file's encoder makes of it
/// @param standardOutput used when the output is "-"; outlives the sink
/// @return what went wrong, or nothing
std::string createVideo(const Options& options, VideoSource* source, VideoFormat& format,
                        ByteWriter& standardOutput, std::unique_ptr<VideoSink>& sink);

}  // namespace zvfx
