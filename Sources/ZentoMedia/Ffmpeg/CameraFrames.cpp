#include "ZentoMedia/Ffmpeg/CameraFrames.h"

#include "ZentoCore/Error.h"

#include <cstring>

namespace zento::ffmpeg {

namespace {

AVPixelFormat formatOf(CameraPixels pixels)
{
    switch (pixels) {
    case CameraPixels::Bgrx:
        return AV_PIX_FMT_BGR0;
    case CameraPixels::Rgbx:
        return AV_PIX_FMT_RGB0;
    case CameraPixels::Xbgr:
        return AV_PIX_FMT_0BGR;
    case CameraPixels::Xrgb:
        return AV_PIX_FMT_0RGB;
    case CameraPixels::Bgr:
        return AV_PIX_FMT_BGR24;
    case CameraPixels::Rgb:
        return AV_PIX_FMT_RGB24;
    case CameraPixels::Yuy2:
        return AV_PIX_FMT_YUYV422;
    case CameraPixels::Uyvy:
        return AV_PIX_FMT_UYVY422;
    case CameraPixels::Nv12:
        return AV_PIX_FMT_NV12;
    case CameraPixels::I420:
        return AV_PIX_FMT_YUV420P;
    case CameraPixels::Grey:
        return AV_PIX_FMT_GRAY8;
    case CameraPixels::Jpeg:
        break;
    }
    return AV_PIX_FMT_NONE;
}

CodecHandle openJpegDecoder()
{
    const AVCodec* decoder = avcodec_find_decoder(AV_CODEC_ID_MJPEG);
    if (decoder == nullptr)
        throw Error(ErrorCode::kReadingFailed, "no decoder for a camera's compressed pictures");
    auto codec = allocated(CodecHandle(avcodec_alloc_context3(decoder)));
    codec->thread_count = 1; // more would hold pictures back
    if (avcodec_open2(codec.get(), decoder, nullptr) < 0)
        throw std::bad_alloc();
    return codec;
}

} // namespace

FrameHandle CameraFrames::frame(const CameraPicture& picture)
{
    if (picture.pixels == CameraPixels::Jpeg)
        return decoded(picture);
    auto frame = makeFrame();
    frame->format = formatOf(picture.pixels);
    frame->width = picture.width;
    frame->height = picture.height;
    frame->color_range = picture.range == CameraRange::Full ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    frame->colorspace =
        picture.matrix == CameraMatrix::Bt709 ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    for (std::size_t i = 0; i < picture.planes.size(); ++i) {
        // Only ever read: the library's type lacks a const.
        frame->data[i] = const_cast<std::uint8_t*>(picture.planes[i].data);
        frame->linesize[i] = picture.planes[i].stride;
    }
    return frame;
}

FrameHandle CameraFrames::decoded(const CameraPicture& picture)
{
    if (!m_decoder)
        m_decoder = openJpegDecoder();
    // The decoder reads beyond the end, so it gets a copy with room behind.
    if (av_new_packet(m_packet.get(), static_cast<int>(picture.size)) < 0)
        throw std::bad_alloc();
    std::memcpy(m_packet->data, picture.planes[0].data, picture.size);
    const int sent = avcodec_send_packet(m_decoder.get(), m_packet.get());
    av_packet_unref(m_packet.get());
    auto frame = makeFrame();
    const bool isWhole = sent >= 0 && avcodec_receive_frame(m_decoder.get(), frame.get()) >= 0
                         && frame->decode_error_flags == 0;
    return isWhole ? std::move(frame) : FrameHandle();
}

void cropToShape(AVFrame& frame, int width, int height)
{
    constexpr int kWholePairs = ~1; // chroma is cut with the luma it belongs to
    const int keptWidth =
        static_cast<int>(std::int64_t{frame.height} * width / height) & kWholePairs;
    const int keptHeight =
        static_cast<int>(std::int64_t{frame.width} * height / width) & kWholePairs;
    if (keptWidth > 0 && keptWidth < frame.width) {
        const int left = (frame.width - keptWidth) / 2 & kWholePairs;
        frame.crop_left = static_cast<std::size_t>(left);
        frame.crop_right = static_cast<std::size_t>(frame.width - keptWidth - left);
    } else if (keptHeight > 0 && keptHeight < frame.height) {
        const int top = (frame.height - keptHeight) / 2 & kWholePairs;
        frame.crop_top = static_cast<std::size_t>(top);
        frame.crop_bottom = static_cast<std::size_t>(frame.height - keptHeight - top);
    }
    av_frame_apply_cropping(&frame, AV_FRAME_CROP_UNALIGNED);
}

} // namespace zento::ffmpeg
