#include "ZentoMedia/Ffmpeg/PictureConverter.h"

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

#include <memory>
#include <utility>

namespace zento::ffmpeg {

namespace {

bool isTenBit(AVPixelFormat format)
{
    return format == AV_PIX_FMT_YUV420P10 || format == AV_PIX_FMT_YUV422P10;
}

bool isFullRangeFormat(AVPixelFormat format)
{
    return format == AV_PIX_FMT_YUVJ420P || format == AV_PIX_FMT_YUVJ422P
           || format == AV_PIX_FMT_YUVJ444P || format == AV_PIX_FMT_YUVJ440P
           || format == AV_PIX_FMT_YUVJ411P;
}

// What players agree on for a picture without tags: standard definition is BT.601.
AVColorSpace matrixBySize(int width, int height)
{
    return width > 1279 || height > 576 ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
}

AVPixelFormat targetFormat(AVPixelFormat format)
{
    const AVPixFmtDescriptor* descriptor = av_pix_fmt_desc_get(format);
    return descriptor->comp[0].depth > 8 ? AV_PIX_FMT_YUV422P10 : AV_PIX_FMT_YUV420P;
}

template <typename Sample>
Plane<const Sample> planeOf(const AVFrame& frame, int index, int width, int height)
{
    constexpr auto kSampleBytes = static_cast<std::ptrdiff_t>(sizeof(Sample));
    return {
        reinterpret_cast<const Sample*>(frame.data[index]),
        width,
        height,
        frame.linesize[index] / kSampleBytes};
}

template <typename Sample>
YuvPlanes<const Sample> planesOf(const AVFrame& frame)
{
    const auto* descriptor = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    const int chromaWidth = AV_CEIL_RSHIFT(frame.width, descriptor->log2_chroma_w);
    const int chromaHeight = AV_CEIL_RSHIFT(frame.height, descriptor->log2_chroma_h);
    return {
        planeOf<Sample>(frame, 0, frame.width, frame.height),
        planeOf<Sample>(frame, 1, chromaWidth, chromaHeight),
        planeOf<Sample>(frame, 2, chromaWidth, chromaHeight)};
}

// Positions are in 1/256 of a luma pixel: 0 on the first pixel of a pair, 128 between the two.
void setChromaSites(SwsContext* scaler, bool isSourceCentred)
{
    constexpr int kOnPixel = 0;
    constexpr int kBetween = 128;
    av_opt_set_int(scaler, "src_h_chr_pos", isSourceCentred ? kBetween : kOnPixel, 0);
    av_opt_set_int(scaler, "src_v_chr_pos", kBetween, 0);
    av_opt_set_int(scaler, "dst_h_chr_pos", kOnPixel, 0);
    av_opt_set_int(scaler, "dst_v_chr_pos", kBetween, 0);
}

} // namespace

PictureConverter::Encoding PictureConverter::encodingOf(const AVFrame& picture)
{
    Encoding encoding;
    encoding.width = picture.width;
    encoding.height = picture.height;
    encoding.format = static_cast<AVPixelFormat>(picture.format);
    encoding.matrix = picture.colorspace == AVCOL_SPC_UNSPECIFIED
                          ? matrixBySize(picture.width, picture.height)
                          : picture.colorspace;
    encoding.isFullRange =
        picture.color_range == AVCOL_RANGE_JPEG || isFullRangeFormat(encoding.format);
    encoding.isChromaCentred = picture.chroma_location == AVCHROMA_LOC_CENTER;
    return encoding;
}

bool PictureConverter::isAsWanted(const Encoding& encoding) const
{
    const bool hasLayout = isTenBit(encoding.format) || encoding.format == AV_PIX_FMT_YUV420P
                           || encoding.format == AV_PIX_FMT_YUV422P;
    return !m_size && hasLayout && encoding.matrix == AVCOL_SPC_BT709 && !encoding.isFullRange;
}

std::optional<VideoFrame>
PictureConverter::convert(FrameHandle picture, double time, std::uint64_t identity)
{
    const Encoding encoding = encodingOf(*picture);
    if (!isAsWanted(encoding)) {
        picture = scaled(*picture, encoding);
        if (!picture)
            return {};
    }
    const std::shared_ptr<const AVFrame> owner = std::move(picture);
    if (isTenBit(static_cast<AVPixelFormat>(owner->format)))
        return VideoFrame(planesOf<std::uint16_t>(*owner), owner, time, identity);
    return VideoFrame(planesOf<std::uint8_t>(*owner), owner, time, identity);
}

FrameHandle PictureConverter::scaled(const AVFrame& picture, const Encoding& encoding)
{
    const AVPixelFormat target = targetFormat(encoding.format);
    if (!prepareScaler(encoding, target))
        return {};
    auto result = makeFrame();
    result->format = target;
    const VideoSize size = m_size.value_or(VideoSize{encoding.width, encoding.height});
    result->width = size.width;
    result->height = size.height;
    if (av_frame_get_buffer(result.get(), 0) < 0)
        throw std::bad_alloc();
    const int rows = sws_scale(
        m_scaler.get(),
        picture.data,
        picture.linesize,
        0,
        encoding.height,
        result->data,
        result->linesize);
    return rows == size.height ? std::move(result) : FrameHandle();
}

bool PictureConverter::prepareScaler(const Encoding& encoding, AVPixelFormat target)
{
    if (m_scaler && m_scalerInput == encoding)
        return true;
    const VideoSize size = m_size.value_or(VideoSize{encoding.width, encoding.height});
    m_scaler = allocated(ScalerHandle(sws_alloc_context()));
    SwsContext* scaler = m_scaler.get();
    av_opt_set_int(scaler, "srcw", encoding.width, 0);
    av_opt_set_int(scaler, "srch", encoding.height, 0);
    av_opt_set_int(scaler, "src_format", encoding.format, 0);
    av_opt_set_int(scaler, "dstw", size.width, 0);
    av_opt_set_int(scaler, "dsth", size.height, 0);
    av_opt_set_int(scaler, "dst_format", target, 0);
    // Told here as well as below: of deeper pictures the later word is not heard.
    av_opt_set_int(scaler, "src_range", encoding.isFullRange ? 1 : 0, 0);
    av_opt_set_int(scaler, "dst_range", 0, 0);
    // Without full chroma input, R'G'B' would be averaged in pairs, half a pixel off the site.
    av_opt_set_int(scaler, "sws_flags", SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INP, 0);
    setChromaSites(scaler, encoding.isChromaCentred);
    if (sws_init_context(scaler, nullptr, nullptr) < 0) {
        m_scaler.reset();
        return false;
    }
    constexpr int kOne = 1 << 16; // contrast and saturation of 1
    sws_setColorspaceDetails(
        scaler,
        sws_getCoefficients(encoding.matrix),
        encoding.isFullRange ? 1 : 0,
        sws_getCoefficients(SWS_CS_ITU709),
        0,
        0,
        kOne,
        kOne);
    m_scalerInput = encoding;
    return true;
}

} // namespace zento::ffmpeg
