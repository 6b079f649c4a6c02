#include "ZentoMedia/Ffmpeg/MovieEncoder.h"

#include "ZentoMedia/Ffmpeg/Failure.h"

#include <string>
#include <utility>

namespace zento::ffmpeg {

namespace {

constexpr const char* kWriting = "Could not write";

// The index of a movie grows by a duration (8 bytes), a size (4) and, where every picture is a
// chunk of its own, a chunk's offset (8) and description (12).
constexpr std::int64_t kIndexBytesPerFrame = 32;
constexpr std::int64_t kIndexBaseBytes = 16 << 10;

} // namespace

MovieEncoder::MovieEncoder(
    const std::filesystem::path& path,
    Container container,
    CodecHandle codec,
    std::int64_t frameDuration,
    int errorCode)
    : m_path(path)
    , m_container(container)
    , m_codec(std::move(codec))
    , m_frameDuration(frameDuration)
    , m_file(path)
{
    openFile(errorCode);
}

void MovieEncoder::openFile(int errorCode)
{
    AVFormatContext* output = nullptr;
    const int made = avformat_alloc_output_context2(
        &output,
        nullptr,
        m_container == Container::QuickTime ? "mov" : "mp4",
        fileUrl(m_path).c_str());
    if (made < 0)
        throw failure(kWriting, m_path, made, errorCode);
    m_output.reset(output);
    m_output->pb = m_file.io();
    m_output->flags |= AVFMT_FLAG_CUSTOM_IO;

    AVStream* stream = avformat_new_stream(output, nullptr);
    if (stream == nullptr)
        throw std::bad_alloc();
    const int copied = avcodec_parameters_from_context(stream->codecpar, m_codec.get());
    if (copied < 0)
        throw failure(kWriting, m_path, copied, errorCode);
    stream->time_base = m_codec->time_base;
    stream->avg_frame_rate = m_codec->framerate;
    stream->sample_aspect_ratio = m_codec->sample_aspect_ratio;

    Options options;
    // Left alone, the container doubles a timescale until it is 10000 or more.
    options.set("video_track_timescale", m_codec->time_base.den);
    if (m_container == Container::Mp4)
        options.set("movflags", "+faststart");
    const int written = avformat_write_header(output, options.address());
    m_file.check();
    if (written < 0)
        throw failure(kWriting, m_path, written, errorCode);
}

void MovieEncoder::encode(const AVFrame& frame, int errorCode)
{
    send(&frame, errorCode);
}

void MovieEncoder::drain(int errorCode)
{
    send(nullptr, errorCode);
}

void MovieEncoder::send(const AVFrame* frame, int errorCode)
{
    const int sent = avcodec_send_frame(m_codec.get(), frame);
    if (sent < 0)
        throw failure(kWriting, m_path, sent, errorCode);
    for (;;) {
        const int received = avcodec_receive_packet(m_codec.get(), m_packet.get());
        if (received == AVERROR(EAGAIN) || received == AVERROR_EOF)
            return;
        if (received < 0)
            throw failure(kWriting, m_path, received, errorCode);
        writePacket(errorCode);
    }
}

void MovieEncoder::writePacket(int errorCode)
{
    if (m_container == Container::QuickTime)
        m_file.keepRoom(
            m_packet->size + kIndexBaseBytes + kIndexBytesPerFrame * (m_framesWritten + 1));
    m_packet->stream_index = 0;
    m_packet->duration = m_frameDuration;
    av_packet_rescale_ts(m_packet.get(), m_codec->time_base, m_output->streams[0]->time_base);
    const int written = av_write_frame(m_output.get(), m_packet.get());
    av_packet_unref(m_packet.get());
    m_file.check();
    if (written < 0)
        throw failure(kWriting, m_path, written, errorCode);
    ++m_framesWritten;
}

void MovieEncoder::close(int errorCode)
{
    const int written = av_write_trailer(m_output.get());
    m_output.reset();
    m_file.close();
    if (written < 0)
        throw failure(kWriting, m_path, written, errorCode);
}

CodecHandle makeEncoder(
    const char* name,
    const std::filesystem::path& path,
    int width,
    int height,
    AVRational timeBase,
    int errorCode)
{
    silenceLog();
    if (width <= 0 || height <= 0 || width % 2 != 0 || height % 2 != 0)
        throw Error(
            errorCode,
            "Could not write " + path.string() + ": a movie cannot be " + std::to_string(width)
                + " × " + std::to_string(height) + " pixels");
    const AVCodec* encoder = avcodec_find_encoder_by_name(name);
    if (encoder == nullptr)
        throw Error(
            errorCode, "Could not write " + path.string() + ": no encoder " + std::string(name));
    auto codec = allocated(CodecHandle(avcodec_alloc_context3(encoder)));
    codec->width = width;
    codec->height = height;
    codec->time_base = timeBase;
    codec->sample_aspect_ratio = {1, 1};
    codec->color_primaries = AVCOL_PRI_BT709;
    codec->color_trc = AVCOL_TRC_BT709;
    codec->colorspace = AVCOL_SPC_BT709;
    codec->color_range = AVCOL_RANGE_MPEG;
    codec->chroma_sample_location = AVCHROMA_LOC_LEFT;
    codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    return codec;
}

void openEncoder(
    AVCodecContext& codec, const std::filesystem::path& path, Options& options, int errorCode)
{
    const int opened = avcodec_open2(&codec, nullptr, options.address());
    if (opened < 0)
        throw failure(kWriting, path, opened, errorCode);
}

} // namespace zento::ffmpeg
