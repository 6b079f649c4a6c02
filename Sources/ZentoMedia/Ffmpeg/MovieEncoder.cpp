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
    std::optional<std::int64_t> frameDuration,
    int errorCode)
    : m_path(path)
    , m_keepsRoom(container == Container::QuickTime)
    , m_codec(std::move(codec))
    , m_frameDuration(frameDuration)
    , m_file(path, container, errorCode)
{
    begin();
}

void MovieEncoder::begin()
{
    const auto parameters = allocated(ParametersHandle(avcodec_parameters_alloc()));
    if (avcodec_parameters_from_context(parameters.get(), m_codec.get()) < 0)
        throw std::bad_alloc();
    AVStream& track = m_file.addTrack(*parameters, m_codec->time_base);
    Options options;
    if (m_codec->codec_type == AVMEDIA_TYPE_VIDEO) {
        track.avg_frame_rate = m_codec->framerate;
        track.sample_aspect_ratio = m_codec->sample_aspect_ratio;
        // Left alone, the container doubles a timescale until it is 10000 or more.
        options.set("video_track_timescale", m_codec->time_base.den);
    }
    m_file.begin(options);
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
    m_file.setErrorCode(errorCode);
    const int sent = avcodec_send_frame(m_codec.get(), frame);
    if (sent < 0)
        throw failure(kWriting, m_path, sent, errorCode);
    for (;;) {
        const int received = avcodec_receive_packet(m_codec.get(), m_packet.get());
        if (received == AVERROR(EAGAIN) || received == AVERROR_EOF)
            return;
        if (received < 0)
            throw failure(kWriting, m_path, received, errorCode);
        writePacket();
    }
}

void MovieEncoder::writePacket()
{
    if (m_keepsRoom)
        m_file.keepRoom(
            m_packet->size + kIndexBaseBytes + kIndexBytesPerFrame * (m_framesWritten + 1));
    m_packet->duration = m_frameDuration.value_or(m_packet->duration);
    m_file.write(*m_packet, 0, m_codec->time_base);
    ++m_framesWritten;
}

void MovieEncoder::close(int errorCode)
{
    m_file.setErrorCode(errorCode);
    m_file.close();
}

CodecHandle
makeEncoder(const char* name, const std::filesystem::path& path, AVRational timeBase, int errorCode)
{
    silenceLog();
    const AVCodec* encoder = avcodec_find_encoder_by_name(name);
    if (encoder == nullptr)
        throw Error(
            errorCode, "Could not write " + path.string() + ": no encoder " + std::string(name));
    auto codec = allocated(CodecHandle(avcodec_alloc_context3(encoder)));
    codec->time_base = timeBase;
    codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    return codec;
}

CodecHandle makePictureEncoder(
    const char* name,
    const std::filesystem::path& path,
    int width,
    int height,
    AVRational timeBase,
    int errorCode)
{
    if (width <= 0 || height <= 0 || width % 2 != 0 || height % 2 != 0)
        throw Error(
            errorCode,
            "Could not write " + path.string() + ": a movie cannot be " + std::to_string(width)
                + " × " + std::to_string(height) + " pixels");
    CodecHandle codec = makeEncoder(name, path, timeBase, errorCode);
    codec->width = width;
    codec->height = height;
    codec->sample_aspect_ratio = {1, 1};
    codec->color_primaries = AVCOL_PRI_BT709;
    codec->color_trc = AVCOL_TRC_BT709;
    codec->colorspace = AVCOL_SPC_BT709;
    codec->color_range = AVCOL_RANGE_MPEG;
    codec->chroma_sample_location = AVCHROMA_LOC_LEFT;
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
