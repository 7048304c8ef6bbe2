#include "zvfx/VideoFiles.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <utility>

#include "zvfx/ByteStream.h"
#include "zvfx/Options.h"
#include "zvfx/OutputFile.h"
#include "zvfx/Y4mReader.h"
#include "zvfx/Y4mWriter.h"

#if defined(ZVFX_FFMPEG)
#include "zvfx/ffmpeg/FFmpegReader.h"
#include "zvfx/ffmpeg/FFmpegWriter.h"
#endif

namespace zvfx {

namespace {

std::string lowerExtension(const std::string& path) {
    std::string extension = std::filesystem::u8path(path).extension().u8string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return extension;
}

/// Whether FFmpeg can make a video file of that name; one picture a file is none.
bool isVideoFileName([[maybe_unused]] const std::string& path) {
#if defined(ZVFX_FFMPEG)
    const AVOutputFormat* format = av_guess_format(nullptr, path.c_str(), nullptr);
    return format != nullptr && format->video_codec != AV_CODEC_ID_NONE &&
           (format->flags & AVFMT_NOFILE) == 0;
#else
    return false;
#endif
}

/// A Y4M stream with the bytes that it reads.
class Y4mFile : public VideoSource {
public:
    std::string open(const std::string& path, const Matrix* matrix) {
        mName = path == "-" ? "standard input" : path;
        std::string wrong = mBytes.open(path);
        if (!wrong.empty()) {
            return wrong;
        }
        wrong = mReader.open(mBytes.size());
        mFormat = mReader.format();
        mFrameCount = mReader.frameCount();
        if (matrix != nullptr) {
            mFormat.matrix = *matrix;
        }
        return wrong.empty() ? wrong : mName + ": " + wrong;
    }

    Result read(VideoFrame& frame, std::string& wrong) override {
        const Result result = mReader.read(frame, wrong);
        if (result == Result::Failed) {
            wrong.insert(0, mName + ": ");
        }
        return result;
    }

private:
    FileReader mBytes;
    Y4mReader mReader{mBytes};
    std::string mName;
};

/// A Y4M or raw file with the writer of its bytes.
class PlaneFile : public VideoSink {
public:
    PlaneFile(const std::string& path, ByteWriter& standardOutput, const VideoFormat& format, bool headers)
        : mName(path == "-" ? "standard output" : path),
          mFile(path == "-" ? nullptr : std::make_unique<FileWriter>(path)),
          mWriter(mFile != nullptr ? *mFile : standardOutput, format, headers) {}

    std::string write(const VideoFrame& frame) override { return named(mWriter.write(frame)); }
    std::string finish() override { return named(mWriter.finish()); }

private:
    std::string named(const std::string& wrong) const { return wrong.empty() ? wrong : mName + " " + wrong; }

    std::string mName;
    std::unique_ptr<FileWriter> mFile;
    Y4mWriter mWriter;
};

}  // namespace

FileKind inputKind(const std::string& path) {
    const std::string extension = lowerExtension(path);
    constexpr std::array pictures = {".png", ".bmp", ".jpg", ".jpeg"};
    if (std::find(pictures.begin(), pictures.end(), extension) != pictures.end()) {
        return FileKind::Picture;
    }
    if (path == "-" || extension == ".y4m") {
        return FileKind::Y4m;
    }
#if defined(ZVFX_FFMPEG)
    return FileKind::VideoFile;
#else
    return FileKind::Unknown;
#endif
}

FileKind outputKind(const std::string& path) {
    const std::string extension = lowerExtension(path);
    if (path == "-" || extension == ".y4m") {
        return FileKind::Y4m;
    }
    if (extension == ".png" || extension == ".yuv") {
        return extension == ".png" ? FileKind::Picture : FileKind::RawI420;
    }
    return isVideoFileName(path) ? FileKind::VideoFile : FileKind::Unknown;
}

std::string supportedKinds() {
#if defined(ZVFX_FFMPEG)
    return "zvfx reads .png, .bmp, .jpg, .y4m, - and video files, and writes .png, .y4m, .yuv, - and video "
           "files";
#else
    return "this zvfx was built without FFmpeg: it reads .png, .bmp, .jpg, .y4m and -, and writes "
           ".png, .y4m, .yuv and -";
#endif
}

std::string openVideo(const Options& options, std::unique_ptr<VideoSource>& source) {
    const Matrix* matrix = options.matrix ? &*options.matrix : nullptr;
#if defined(ZVFX_FFMPEG)
    if (inputKind(options.input) == FileKind::VideoFile) {
        // FFmpeg's own words for a missing file name no file.
        FileReader there;
        if (std::string wrong = there.open(options.input); !wrong.empty()) {
            return wrong;
        }
        auto reader = std::make_unique<FFmpegReader>();
        std::string wrong = reader->open(options.input, matrix);
        source = std::move(reader);
        return wrong;
    }
#endif
    auto file = std::make_unique<Y4mFile>();
    std::string wrong = file->open(options.input, matrix);
    source = std::move(file);
    return wrong;
}

VideoFormat outputFormat(const Options& options, const VideoFormat& input) {
    VideoFormat format = input;
    if (options.size) {
        format.width = options.size->width;
        format.height = options.size->height;
    }
    const FileKind kind = outputKind(options.output);
    if (kind == FileKind::RawI420 || (kind == FileKind::VideoFile && input.rgb)) {
        format.chroma = Chroma::C420;
    }
    return format;
}

std::string createVideo(const Options& options, [[maybe_unused]] VideoSource* source, VideoFormat& format,
                        ByteWriter& standardOutput, std::unique_ptr<VideoSink>& sink) {
    const FileKind kind = outputKind(options.output);
#if defined(ZVFX_FFMPEG)
    if (kind == FileKind::VideoFile) {
        auto writer = std::make_unique<FFmpegWriter>(options.output);
        std::string wrong = writer->open(format, dynamic_cast<FFmpegReader*>(source));
        sink = std::move(writer);
        return wrong;
    }
#endif
    sink = std::make_unique<PlaneFile>(options.output, standardOutput, format, kind != FileKind::RawI420);
    return {};
}

}  // namespace zvfx
