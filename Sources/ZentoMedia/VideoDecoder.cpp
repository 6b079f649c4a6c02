#include "ZentoMedia/VideoDecoder.h"

#include "ZentoCore/Error.h"
#include "ZentoMedia/Ffmpeg/Failure.h"
#include "ZentoMedia/Ffmpeg/Handles.h"
#include "ZentoMedia/Ffmpeg/PictureConverter.h"

#include <cstring>
#include <string>
#include <utility>

namespace zento {

using namespace ffmpeg;

namespace {

constexpr const char* kReading = "Could not read";

// Codecs that keep nothing from one packet to the next and give one picture for each, at once.
bool standsAlone(AVCodecID codec)
{
    return codec == AV_CODEC_ID_PRORES || codec == AV_CODEC_ID_MJPEG;
}

InputHandle openInput(const std::filesystem::path& path)
{
    Options options;
    options.set("protocol_whitelist", "file"); // a list of addresses is not a recording
    AVFormatContext* input = nullptr;
    const int opened =
        avformat_open_input(&input, fileUrl(path).c_str(), nullptr, options.address());
    if (opened < 0)
        throw failure(kReading, path, opened, ErrorCode::kReadingFailed);
    InputHandle handle(input);
    const int found = avformat_find_stream_info(input, nullptr);
    if (found < 0)
        throw failure(kReading, path, found, ErrorCode::kReadingFailed);
    return handle;
}

bool isPictures(const AVStream& stream)
{
    // The cover of a song is a video track of one picture to this library.
    return stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO
           && (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) == 0;
}

/// The first video track; all others are left unread.
AVStream* chooseStream(AVFormatContext& input, const std::filesystem::path& path)
{
    AVStream* chosen = nullptr;
    for (unsigned i = 0; i < input.nb_streams; ++i) {
        AVStream* stream = input.streams[i];
        if (chosen == nullptr && isPictures(*stream))
            chosen = stream;
        else
            stream->discard = AVDISCARD_ALL;
    }
    if (chosen == nullptr)
        throw Error(ErrorCode::kNoVideoTrack, "no video track in " + path.string());
    return chosen;
}

CodecHandle openDecoder(const AVStream& stream, const std::filesystem::path& path, int threads)
{
    const AVCodec* decoder = avcodec_find_decoder(stream.codecpar->codec_id);
    if (decoder == nullptr)
        throw failure(kReading, path, AVERROR_DECODER_NOT_FOUND, ErrorCode::kReadingFailed);
    auto codec = allocated(CodecHandle(avcodec_alloc_context3(decoder)));
    int result = avcodec_parameters_to_context(codec.get(), stream.codecpar);
    if (result >= 0) {
        codec->pkt_timebase = stream.time_base;
        codec->thread_count = threads;
        // Threads by frame hold pictures back, which a packet that is not sent must not wait for.
        if (standsAlone(codec->codec_id))
            codec->thread_type = FF_THREAD_SLICE;
        result = avcodec_open2(codec.get(), decoder, nullptr);
    }
    if (result < 0)
        throw failure(kReading, path, result, ErrorCode::kReadingFailed);
    return codec;
}

/// The next whole packet of a track. False at the end of what can be read.
bool readPacket(AVFormatContext& input, int streamIndex, AVPacket& packet)
{
    do {
        av_packet_unref(&packet);
        if (av_read_frame(&input, &packet) < 0)
            return false;
    } while (packet.stream_index != streamIndex);
    return (packet.flags & AV_PKT_FLAG_CORRUPT) == 0;
}

bool holdsSameBytes(const AVPacket& a, const AVPacket& b)
{
    const bool isPlain =
        a.side_data_elems == 0 && b.side_data_elems == 0
        && ((a.flags | b.flags) & (AV_PKT_FLAG_DISCARD | AV_PKT_FLAG_CORRUPT)) == 0;
    return isPlain && a.size > 0 && a.size == b.size
           && std::memcmp(a.data, b.data, static_cast<std::size_t>(a.size)) == 0;
}

} // namespace

struct VideoDecoder::State {
    enum class Phase { Reading, Draining, Ended };

    InputHandle input;
    AVStream* stream = nullptr;
    CodecHandle codec;
    PictureConverter converter;
    PacketHandle packet = makePacket();
    PacketHandle lastPacket = makePacket(); // the one `lastFrame` was decoded from
    std::optional<VideoFrame> lastFrame;
    std::uint64_t lastIdentity = 0;
    Phase phase = Phase::Reading;

    double seconds(std::int64_t ticks) const
    {
        return static_cast<double>(ticks) * stream->time_base.num / stream->time_base.den;
    }

    std::optional<VideoFrame> decoded();
    std::optional<VideoFrame> feed();
    std::optional<VideoFrame> repeated() const;
    void drain();
};

VideoDecoder::VideoDecoder(const std::filesystem::path& path, int threads)
    : m_state(std::make_unique<State>())
{
    silenceLog();
    m_state->input = openInput(path);
    m_state->stream = chooseStream(*m_state->input, path);
    m_state->codec = openDecoder(*m_state->stream, path, threads);
}

VideoDecoder::~VideoDecoder() = default;
VideoDecoder::VideoDecoder(VideoDecoder&&) noexcept = default;
VideoDecoder& VideoDecoder::operator=(VideoDecoder&&) noexcept = default;

VideoSize VideoDecoder::naturalSize() const
{
    return {m_state->stream->codecpar->width, m_state->stream->codecpar->height};
}

double VideoDecoder::declaredDuration() const
{
    if (m_state->stream->duration != AV_NOPTS_VALUE)
        return m_state->seconds(m_state->stream->duration);
    const std::int64_t whole = m_state->input->duration;
    return whole == AV_NOPTS_VALUE ? 0 : static_cast<double>(whole) / AV_TIME_BASE;
}

std::optional<VideoFrame> VideoDecoder::next()
{
    while (m_state->phase != State::Phase::Ended) {
        if (auto frame = m_state->decoded())
            return frame;
        if (m_state->phase == State::Phase::Reading) {
            if (auto frame = m_state->feed())
                return frame;
        }
    }
    return {};
}

/// A picture the decoder has ready. Nothing if it wants a packet first, or at the end.
std::optional<VideoFrame> VideoDecoder::State::decoded()
{
    auto picture = makeFrame();
    const int received = avcodec_receive_frame(codec.get(), picture.get());
    if (received == AVERROR(EAGAIN) && phase == Phase::Reading)
        return {};
    const bool isDamaged =
        picture->decode_error_flags != 0 || (picture->flags & AV_FRAME_FLAG_CORRUPT) != 0;
    if (received < 0 || isDamaged) {
        phase = Phase::Ended;
        return {};
    }
    double time = lastFrame ? lastFrame->time() : 0;
    if (picture->best_effort_timestamp != AV_NOPTS_VALUE)
        time = seconds(picture->best_effort_timestamp);
    lastFrame = converter.convert(std::move(picture), time, ++lastIdentity);
    if (!lastFrame)
        phase = Phase::Ended;
    return lastFrame;
}

/// Gives the decoder one packet, or the picture of the one before if it would only say the same.
std::optional<VideoFrame> VideoDecoder::State::feed()
{
    if (!readPacket(*input, stream->index, *packet)) {
        drain();
        return {};
    }
    if (auto frame = repeated())
        return frame;
    if (avcodec_send_packet(codec.get(), packet.get()) < 0) {
        drain();
        return {};
    }
    av_packet_unref(lastPacket.get());
    av_packet_move_ref(lastPacket.get(), packet.get());
    if (standsAlone(codec->codec_id))
        lastFrame.reset();
    return {};
}

std::optional<VideoFrame> VideoDecoder::State::repeated() const
{
    const bool isRepeat = standsAlone(codec->codec_id) && lastFrame && packet->pts != AV_NOPTS_VALUE
                          && holdsSameBytes(*packet, *lastPacket);
    if (!isRepeat)
        return {};
    return lastFrame->retimed(seconds(packet->pts));
}

void VideoDecoder::State::drain()
{
    phase = Phase::Draining;
    avcodec_send_packet(codec.get(), nullptr);
}

} // namespace zento
