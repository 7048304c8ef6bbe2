#include "zvfx/ffmpeg/FFmpegWriter.h"

#include <algorithm>
#include <string_view>

#include "zvfx/ffmpeg/FFmpegReader.h"

namespace zvfx {

namespace {

constexpr const char* kH264Quality = "18";      // constant rate factor: hardly to be told from the original
constexpr const char* kH264Preset = "fast";     // of the usual ones that which keeps up with the effects
constexpr int kMpeg4Quality = 3;                // quantiser, 1 is the best
constexpr int kLargestTimeDenominator = 60000;  // MPEG-4 takes 16 bits; whole in all usual frame rates

bool takes(const AVCodec& codec, AVPixelFormat format) {
    for (const AVPixelFormat* f = codec.pix_fmts; f != nullptr && *f != AV_PIX_FMT_NONE; ++f) {
        if (*f == format) {
            return true;
        }
    }
    return false;
}

}  // namespace

FFmpegWriter::FFmpegWriter(const std::string& path) : mTarget(path), mPath(path) {}

FFmpegWriter::~FFmpegWriter() {
    if (mFile != nullptr) {
        avio_closep(&mFile->pb);
        avformat_free_context(mFile);
    }
}

std::string FFmpegWriter::say(int error) const {
    return mPath + ": cannot be written (" + avError(error) + ")";
}

std::string FFmpegWriter::open(VideoFormat& format, FFmpegReader* reader) {
    av_log_set_level(AV_LOG_QUIET);
    mPacket.reset(av_packet_alloc());
    mPicture.reset(av_frame_alloc());
    // The final name selects the container; the temporary one does not end like it.
    int result = avformat_alloc_output_context2(&mFile, nullptr, nullptr, mPath.c_str());
    if (result < 0 || mPacket == nullptr || mPicture == nullptr) {
        return say(result);
    }
    std::string wrong = openEncoder(format, reader);
    if (wrong.empty()) {
        wrong = addVideo(reader);
    }
    if (wrong.empty() && reader != nullptr) {
        wrong = addAudio(*reader);
    }
    return wrong.empty() ? begin() : wrong;
}

const AVCodec* FFmpegWriter::chooseEncoder(Chroma& chroma) const {
    const AVCodecID own = mFile->oformat->video_codec;
    // This container takes H.264, but FFmpeg has no list of what it takes.
    const bool transport = std::string_view(mFile->oformat->name) == "mpegts";
    const auto fits = [&](AVCodecID id) {
        return avformat_query_codec(mFile->oformat, id, FF_COMPLIANCE_NORMAL) == 1 ||
               (transport && id == AV_CODEC_ID_H264);
    };
    const AVCodec* codecs[] = {
        fits(AV_CODEC_ID_H264) ? avcodec_find_encoder_by_name("libx264") : nullptr,
        fits(AV_CODEC_ID_MPEG4) ? avcodec_find_encoder(AV_CODEC_ID_MPEG4) : nullptr,
        own != AV_CODEC_ID_NONE ? avcodec_find_encoder(own) : nullptr,
    };
    for (const AVCodec* codec : codecs) {
        if (codec != nullptr && chroma == Chroma::C444 && takes(*codec, AV_PIX_FMT_YUV444P)) {
            return codec;
        }
        if (codec != nullptr && takes(*codec, AV_PIX_FMT_YUV420P)) {
            chroma = Chroma::C420;
            return codec;
        }
    }
    return nullptr;
}

std::string FFmpegWriter::openEncoder(VideoFormat& format, const FFmpegReader* reader) {
    const AVCodec* codec = chooseEncoder(format.chroma);
    if (codec == nullptr) {
        return mPath + ": there is no encoder for this kind of file";
    }
    mEncoder.reset(avcodec_alloc_context3(codec));
    if (mEncoder == nullptr) {
        return say(AVERROR(ENOMEM));
    }
    const bool full = format.chroma == Chroma::C444;
    mEncoder->width = full ? format.width : evenUp(format.width);
    mEncoder->height = full ? format.height : evenUp(format.height);
    mEncoder->pix_fmt = full ? AV_PIX_FMT_YUV444P : AV_PIX_FMT_YUV420P;
    mTimeBase = toAv(format.timeBase);
    mEncoder->framerate = toAv(format.rate);
    mEncoder->time_base = mTimeBase;
    if ((mFile->oformat->flags & AVFMT_VARIABLE_FPS) == 0 || codec->id == AV_CODEC_ID_MPEG1VIDEO ||
        codec->id == AV_CODEC_ID_MPEG2VIDEO) {
        // Such a container or codec counts frames and knows no times.
        mEncoder->time_base = av_inv_q(mEncoder->framerate);
    } else if (codec->id == AV_CODEC_ID_MPEG4 && mTimeBase.den > kLargestTimeDenominator) {
        mEncoder->time_base = {1, kLargestTimeDenominator};
    }
    mEncoder->sample_aspect_ratio = toAv(format.aspect);
    mEncoder->thread_count = 0;
    if ((mFile->oformat->flags & AVFMT_GLOBALHEADER) != 0) {
        mEncoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }
    setColours(format, reader);
    setQuality();
    const int result = avcodec_open2(mEncoder.get(), codec, nullptr);
    if (result < 0) {
        return mPath + ": the encoder " + codec->name + " refuses " + std::to_string(mEncoder->width) +
               " x " + std::to_string(mEncoder->height) + " pixels (" + avError(result) + ")";
    }
    mPicture->format = mEncoder->pix_fmt;
    mPicture->width = mEncoder->width;
    mPicture->height = mEncoder->height;
    return av_frame_get_buffer(mPicture.get(), 0) < 0 ? say(AVERROR(ENOMEM)) : std::string();
}

void FFmpegWriter::setColours(const VideoFormat& format, const FFmpegReader* reader) {
    mEncoder->color_range = format.matrix == Matrix::Bt601Full ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    mEncoder->colorspace = format.matrix == Matrix::Bt709 ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    mEncoder->chroma_sample_location = format.leftSited ? AVCHROMA_LOC_LEFT : AVCHROMA_LOC_CENTER;
    if (reader != nullptr) {
        mEncoder->color_primaries = reader->stream().codecpar->color_primaries;
        mEncoder->color_trc = reader->stream().codecpar->color_trc;
    }
}

void FFmpegWriter::setQuality() {
    if (mEncoder->codec_id == AV_CODEC_ID_H264) {
        av_opt_set(mEncoder->priv_data, "crf", kH264Quality, 0);
        av_opt_set(mEncoder->priv_data, "preset", kH264Preset, 0);
    } else {
        mEncoder->flags |= AV_CODEC_FLAG_QSCALE;
        mEncoder->global_quality = kMpeg4Quality * FF_QP2LAMBDA;
    }
}

std::string FFmpegWriter::addVideo(const FFmpegReader* reader) {
    mVideo = avformat_new_stream(mFile, nullptr);
    if (mVideo == nullptr) {
        return say(AVERROR(ENOMEM));
    }
    mVideo->time_base = mEncoder->time_base;
    mVideo->avg_frame_rate = mEncoder->framerate;
    mVideo->sample_aspect_ratio = mEncoder->sample_aspect_ratio;
    int result = avcodec_parameters_from_context(mVideo->codecpar, mEncoder.get());
    if (reader == nullptr || result < 0) {
        return result < 0 ? say(result) : std::string();
    }
    av_dict_copy(&mFile->metadata, reader->file().metadata, 0);
    std::size_t bytes = 0;
    if (const std::uint8_t* matrix =
            av_stream_get_side_data(&reader->stream(), AV_PKT_DATA_DISPLAYMATRIX, &bytes)) {
        std::uint8_t* copy = av_stream_new_side_data(mVideo, AV_PKT_DATA_DISPLAYMATRIX, bytes);
        if (copy == nullptr) {
            return say(AVERROR(ENOMEM));
        }
        std::copy(matrix, matrix + bytes, copy);
    }
    return {};
}

std::string FFmpegWriter::addAudio(FFmpegReader& reader) {
    const AVFormatContext& origin = reader.file();
    mAudioStreams.resize(origin.nb_streams);
    for (unsigned int i = 0; i < origin.nb_streams; ++i) {
        const AVStream& from = *origin.streams[i];
        if (from.codecpar->codec_type != AVMEDIA_TYPE_AUDIO) {
            continue;
        }
        const AVCodecID id = from.codecpar->codec_id;
        if (avformat_query_codec(mFile->oformat, id, FF_COMPLIANCE_NORMAL) == 0) {
            return mPath + ": this kind of file cannot hold the input's audio (" + avcodec_get_name(id) +
                   "); a .mkv file can";
        }
        AVStream* to = avformat_new_stream(mFile, nullptr);
        if (to == nullptr || avcodec_parameters_copy(to->codecpar, from.codecpar) < 0) {
            return say(AVERROR(ENOMEM));
        }
        // A tag is the container's own number for a codec.
        to->codecpar->codec_tag = 0;
        to->time_base = from.time_base;
        to->disposition = from.disposition;
        av_dict_copy(&to->metadata, from.metadata, 0);
        mAudioStreams[i] = {to->index, from.time_base};
        mAudio = &reader.startAudio();
    }
    return {};
}

std::string FFmpegWriter::begin() {
    int result = avio_open(&mFile->pb, mTarget.writePath().u8string().c_str(), AVIO_FLAG_WRITE);
    if (result >= 0) {
        result = avformat_write_header(mFile, nullptr);
    }
    return result < 0 ? say(result) : std::string();
}

bool FFmpegWriter::fillPicture(const VideoFrame& frame) {
    if (av_frame_make_writable(mPicture.get()) < 0) {
        return false;
    }
    const FrameLayout layout =
        FrameLayout::tight(mEncoder->width, mEncoder->height,
                           mEncoder->pix_fmt == AV_PIX_FMT_YUV444P ? Chroma::C444 : Chroma::C420);
    for (std::size_t i = 0; i < layout.planes.size(); ++i) {
        for (int y = 0; y < layout.planes[i].height; ++y) {
            copyRow(frame, i, y, mPicture->data[i] + std::ptrdiff_t{y} * mPicture->linesize[i],
                    layout.planes[i].width);
        }
    }
    return true;
}

std::string FFmpegWriter::write(const VideoFrame& frame) {
    if (!fillPicture(frame)) {
        return say(AVERROR(ENOMEM));
    }
    const std::int64_t time = av_rescale_q(frame.time, mTimeBase, mEncoder->time_base);
    // Coarser units than the input's may put two frames on one.
    mPicture->pts = mAny ? std::max(time, mLastTime + 1) : time;
    mLastTime = mPicture->pts;
    mAny = true;
    int result = writeAudio();
    if (result >= 0) {
        result = encode(mPicture.get());
    }
    return result < 0 ? say(result) : std::string();
}

std::string FFmpegWriter::finish() {
    int result = writeAudio();
    if (result >= 0) {
        result = encode(nullptr);
    }
    if (result >= 0) {
        result = av_write_trailer(mFile);
    }
    if (result >= 0) {
        result = avio_closep(&mFile->pb);
    }
    if (result < 0) {
        return say(result);
    }
    return mTarget.commit() ? std::string() : mPath + ": cannot be written";
}

int FFmpegWriter::encode(const AVFrame* picture) {
    int result = avcodec_send_frame(mEncoder.get(), picture);
    while (result >= 0) {
        result = avcodec_receive_packet(mEncoder.get(), mPacket.get());
        if (result >= 0) {
            if (mPacket->duration == 0) {
                mPacket->duration = av_rescale_q(1, av_inv_q(mEncoder->framerate), mEncoder->time_base);
            }
            av_packet_rescale_ts(mPacket.get(), mEncoder->time_base, mVideo->time_base);
            mPacket->stream_index = mVideo->index;
            result = av_interleaved_write_frame(mFile, mPacket.get());
        }
    }
    return result == AVERROR(EAGAIN) || result == AVERROR_EOF ? 0 : result;
}

int FFmpegWriter::writeAudio() {
    if (mAudio == nullptr) {
        return 0;
    }
    mAudio->take(mAudioPackets);
    int result = 0;
    for (const AvPacket& packet : mAudioPackets) {
        const auto from = static_cast<std::size_t>(packet->stream_index);
        // A stream that shows up late in the file has no place in the output.
        if (result < 0 || from >= mAudioStreams.size() || mAudioStreams[from].index < 0) {
            continue;
        }
        packet->stream_index = mAudioStreams[from].index;
        packet->pos = -1;
        av_packet_rescale_ts(packet.get(), mAudioStreams[from].timeBase,
                             mFile->streams[packet->stream_index]->time_base);
        result = av_interleaved_write_frame(mFile, packet.get());
    }
    mAudioPackets.clear();
    return result;
}

}  // namespace zvfx
