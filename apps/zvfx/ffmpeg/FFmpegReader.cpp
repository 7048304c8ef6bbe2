#include "zvfx/ffmpeg/FFmpegReader.h"

#include <algorithm>
#include <cmath>

#include "zvfx/Interrupt.h"

namespace zvfx {

namespace {

bool isOneOf(AVPixelFormat format, std::initializer_list<AVPixelFormat> formats) {
    return std::find(formats.begin(), formats.end(), format) != formats.end();
}

bool is420(AVPixelFormat format) {
    return isOneOf(format, {AV_PIX_FMT_YUV420P, AV_PIX_FMT_YUVJ420P});
}

bool is444(AVPixelFormat format) {
    return isOneOf(format, {AV_PIX_FMT_YUV444P, AV_PIX_FMT_YUVJ444P});
}

bool isFullRange(const AVCodecContext& decoder) {
    return decoder.color_range == AVCOL_RANGE_JPEG ||
           isOneOf(decoder.pix_fmt, {AV_PIX_FMT_YUVJ420P, AV_PIX_FMT_YUVJ422P, AV_PIX_FMT_YUVJ444P,
                                     AV_PIX_FMT_YUVJ440P, AV_PIX_FMT_YUVJ411P});
}

Ratio fromAv(AVRational ratio) {
    return {ratio.num, ratio.den};
}

}  // namespace

FFmpegReader::~FFmpegReader() {
    sws_freeContext(mScaler);
}

std::string FFmpegReader::open(const std::string& path, const Matrix* matrix) {
    av_log_set_level(AV_LOG_QUIET);
    // A playlist from somebody else must not make this machine open addresses.
    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "file,crypto,data", 0);
    AVFormatContext* file = nullptr;
    int result = avformat_open_input(&file, path.c_str(), nullptr, &options);
    av_dict_free(&options);
    if (result < 0) {
        return path + ": cannot be opened as a video (" + avError(result) + ")";
    }
    mFile.reset(file);
    result = avformat_find_stream_info(file, nullptr);
    const AVCodec* codec = nullptr;
    const int video = result < 0 ? result : av_find_best_stream(file, AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    if (video < 0 || codec == nullptr) {
        return path + ": holds no video that can be decoded";
    }
    mVideo = static_cast<unsigned int>(video);
    if ((stream().disposition & AV_DISPOSITION_ATTACHED_PIC) != 0) {
        return path + ": holds a cover picture but no video";
    }
    for (unsigned int i = 0; i < file->nb_streams; ++i) {
        const bool audio = file->streams[i]->codecpar->codec_type == AVMEDIA_TYPE_AUDIO;
        file->streams[i]->discard = i == mVideo || audio ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
    std::string wrong = openDecoder(codec);
    if (wrong.empty()) {
        describe();
        const bool known = chooseMatrix();
        if (matrix != nullptr) {
            mFormat.matrix = *matrix;
        }
        wrong = mFormat.sizeInsideLimits() ? openScaler(matrix, known) : mFormat.sizeComplaint();
    }
    return wrong.empty() ? wrong : path + ": " + wrong;
}

std::string FFmpegReader::openDecoder(const AVCodec* codec) {
    mDecoder.reset(avcodec_alloc_context3(codec));
    mPacket.reset(av_packet_alloc());
    mPicture.reset(av_frame_alloc());
    if (mDecoder == nullptr || mPacket == nullptr || mPicture == nullptr) {
        return "needs more memory than there is";
    }
    int result = avcodec_parameters_to_context(mDecoder.get(), stream().codecpar);
    mDecoder->pkt_timebase = stream().time_base;
    mDecoder->thread_count = 0;
    if (result >= 0) {
        result = avcodec_open2(mDecoder.get(), codec, nullptr);
    }
    if (result >= 0 && mDecoder->pix_fmt == AV_PIX_FMT_NONE) {
        return "holds a video that cannot be decoded";
    }
    return result < 0 ? "cannot be decoded (" + avError(result) + ")" : std::string();
}

void FFmpegReader::describe() {
    const AVStream& video = stream();
    mPixels = mDecoder->pix_fmt;
    mFormat.width = mDecoder->width;
    mFormat.height = mDecoder->height;
    const AVRational rate = av_guess_frame_rate(mFile.get(), mFile->streams[mVideo], nullptr);
    if (rate.num > 0 && rate.den > 0) {
        mFormat.rate = fromAv(rate);
    }
    mFormat.timeBase = fromAv(video.time_base);
    const AVRational aspect = av_guess_sample_aspect_ratio(mFile.get(), mFile->streams[mVideo], nullptr);
    if (aspect.num > 0 && aspect.den > 0) {
        mFormat.aspect = fromAv(aspect);
    }
    const AVPixFmtDescriptor* pixels = av_pix_fmt_desc_get(mDecoder->pix_fmt);
    const bool full = pixels->log2_chroma_w == 0 && pixels->log2_chroma_h == 0 && pixels->nb_components > 2;
    mFormat.chroma = full ? Chroma::C444 : Chroma::C420;
    mFormat.rgb = (pixels->flags & AV_PIX_FMT_FLAG_RGB) != 0;
    mFormat.leftSited = mDecoder->chroma_sample_location == AVCHROMA_LOC_LEFT ||
                        (mDecoder->chroma_sample_location == AVCHROMA_LOC_UNSPECIFIED &&
                         isOneOf(mDecoder->pix_fmt, {AV_PIX_FMT_YUV420P}));
    mFrameCount = video.nb_frames;
    if (mFrameCount <= 0 && mFile->duration > 0) {
        mFrameCount =
            std::llround(static_cast<double>(mFile->duration) / AV_TIME_BASE * mFormat.rate.value());
    }
}

/// @return whether the stream's colours are of a kind that the engine has
bool FFmpegReader::chooseMatrix() {
    const bool full = isFullRange(*mDecoder);
    switch (mDecoder->colorspace) {
        case AVCOL_SPC_RGB:
            mFormat.matrix = Matrix::Bt601;
            return true;
        case AVCOL_SPC_UNSPECIFIED:
        case AVCOL_SPC_BT470BG:
        case AVCOL_SPC_SMPTE170M:
            mFormat.matrix = full ? Matrix::Bt601Full : Matrix::Bt601;
            return true;
        default:
            mFormat.matrix = Matrix::Bt709;
            return mDecoder->colorspace == AVCOL_SPC_BT709 && !full;
    }
}

std::string FFmpegReader::openScaler(const Matrix* matrix, bool matrixKnown) {
    mLayout = FrameLayout::tight(mFormat.width, mFormat.height, mFormat.chroma);
    const bool direct = is420(mDecoder->pix_fmt) || is444(mDecoder->pix_fmt);
    if (direct && (matrixKnown || matrix != nullptr)) {
        return {};
    }
    const AVPixelFormat wanted = mFormat.chroma == Chroma::C444 ? AV_PIX_FMT_YUV444P : AV_PIX_FMT_YUV420P;
    mScaler = sws_getContext(mFormat.width, mFormat.height, mDecoder->pix_fmt, mFormat.width, mFormat.height,
                             wanted, SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT, nullptr, nullptr,
                             nullptr);
    if (mScaler == nullptr) {
        return "has pictures of a kind that cannot be converted";
    }
    mConverted.reset(av_frame_alloc());
    if (mConverted != nullptr) {
        mConverted->format = wanted;
        mConverted->width = mFormat.width;
        mConverted->height = mFormat.height;
    }
    if (mConverted == nullptr || av_frame_get_buffer(mConverted.get(), 0) < 0) {
        return "needs more memory than there is";
    }
    const int target = mFormat.matrix == Matrix::Bt709 ? SWS_CS_ITU709 : SWS_CS_ITU601;
    // SWS_CS_* are the numbers of AVColorSpace.
    const int origin =
        matrixKnown || matrix != nullptr || mFormat.rgb ? target : static_cast<int>(mDecoder->colorspace);
    const bool fullOut = mFormat.matrix == Matrix::Bt601Full;
    const bool fullIn = matrix != nullptr && !mFormat.rgb ? fullOut : isFullRange(*mDecoder) || mFormat.rgb;
    constexpr int kUnchanged = 1 << 16;
    sws_setColorspaceDetails(mScaler, sws_getCoefficients(origin), fullIn ? 1 : 0,
                             sws_getCoefficients(target), fullOut ? 1 : 0, 0, kUnchanged, kUnchanged);
    return {};
}

PacketQueue& FFmpegReader::startAudio() {
    mAudioWanted = true;
    return mAudio;
}

int FFmpegReader::feed() {
    const int result = av_read_frame(mFile.get(), mPacket.get());
    if (result == AVERROR_EOF) {
        return avcodec_send_packet(mDecoder.get(), nullptr);
    }
    if (result < 0) {
        return result;
    }
    int sent = 0;
    if (mPacket->stream_index == static_cast<int>(mVideo)) {
        sent = avcodec_send_packet(mDecoder.get(), mPacket.get());
    } else if (mAudioWanted) {
        AvPacket copy(av_packet_clone(mPacket.get()));
        sent = copy != nullptr ? 0 : AVERROR(ENOMEM);
        if (copy != nullptr) {
            mAudio.push(std::move(copy));
        }
    }
    av_packet_unref(mPacket.get());
    return sent;
}

int FFmpegReader::decode() {
    int result = avcodec_receive_frame(mDecoder.get(), mPicture.get());
    while (result == AVERROR(EAGAIN)) {
        const int fed = stopRequested() ? AVERROR_EOF : feed();
        if (fed < 0) {
            return fed;
        }
        result = avcodec_receive_frame(mDecoder.get(), mPicture.get());
    }
    return result;
}

VideoSource::Result FFmpegReader::read(VideoFrame& frame, std::string& wrong) {
    const int result = stopRequested() ? AVERROR_EOF : decode();
    if (result == AVERROR_EOF) {
        return Result::End;
    }
    if (result < 0) {
        wrong = "cannot be decoded at frame " + std::to_string(mRead + 1) + " (" + avError(result) + ")";
        return Result::Failed;
    }
    if (mPicture->width != mFormat.width || mPicture->height != mFormat.height || !hasTheKindOfTheFirst()) {
        wrong = "changes its size or kind of pictures at frame " + std::to_string(mRead + 1);
        return Result::Failed;
    }
    if (!frame.prepare(mLayout)) {
        wrong = "needs more memory than there is";
        return Result::Failed;
    }
    copyPicture(frame);
    const std::int64_t time = mPicture->best_effort_timestamp;
    frame.time = mRead == 0 && time != AV_NOPTS_VALUE ? time : std::max(time, mNextTime);
    // Where the file says nothing, a frame lasts as long as most do; no two frames have the same time.
    const double lasts = 1 / (mFormat.rate.value() * mFormat.timeBase.value());
    const std::int64_t step = time == AV_NOPTS_VALUE ? std::llround(lasts) : 1;
    mNextTime = frame.time + std::max<std::int64_t>(step, 1);
    ++mRead;
    av_frame_unref(mPicture.get());
    return Result::Frame;
}

/// The decoder may change its mind with every picture, and the planes of another kind have other sizes.
bool FFmpegReader::hasTheKindOfTheFirst() const {
    const auto now = static_cast<AVPixelFormat>(mPicture->format);
    const bool samePlanes = (is420(now) && is420(mPixels)) || (is444(now) && is444(mPixels));
    return now == mPixels || (mScaler == nullptr && samePlanes);
}

void FFmpegReader::copyPicture(VideoFrame& frame) {
    const AVFrame* from = mPicture.get();
    if (mScaler != nullptr) {
        // Not into the tight planes: its vector code wants aligned rows and writes past their ends.
        sws_scale(mScaler, mPicture->data, mPicture->linesize, 0, mFormat.height, mConverted->data,
                  mConverted->linesize);
        from = mConverted.get();
    }
    for (std::size_t i = 0; i < frame.layout.planes.size(); ++i) {
        const Plane& plane = frame.layout.planes[i];
        av_image_copy_plane(frame.row(i, 0), static_cast<int>(plane.stride), from->data[i], from->linesize[i],
                            plane.width, plane.height);
    }
}

}  // namespace zvfx
