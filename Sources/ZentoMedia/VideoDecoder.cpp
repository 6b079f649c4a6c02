#include "ZentoMedia/VideoDecoder.h"

#include "ZentoCore/Error.h"
#include "ZentoMedia/Ffmpeg/FrameBuffers.h"
#include "ZentoMedia/Ffmpeg/Handles.h"
#include "ZentoMedia/Ffmpeg/Input.h"
#include "ZentoMedia/Ffmpeg/PictureConverter.h"

#include <cstring>
#include <string>
#include <utility>

namespace zento {

using namespace ffmpeg;

namespace {

// Codecs that keep nothing from one packet to the next and give one picture for each, at once.
bool standsAlone(AVCodecID codec)
{
    return codec == AV_CODEC_ID_PRORES || codec == AV_CODEC_ID_MJPEG;
}

/// The first video track; all others are left unread.
AVStream* choosePictures(AVFormatContext& input, const std::filesystem::path& path)
{
    AVStream* chosen = chooseTrack(input, isPictures);
    if (chosen == nullptr)
        throw Error(ErrorCode::kNoVideoTrack, "no video track in " + path.string());
    return chosen;
}

CodecHandle openPictureDecoder(
    const AVStream& stream, const std::filesystem::path& path, int threads, FrameBuffers& buffers)
{
    CodecHandle codec = makeDecoder(stream, path);
    codec->thread_count = threads;
    // Threads by frame hold pictures back, which a packet that is not sent must not wait for.
    if (standsAlone(codec->codec_id)) {
        codec->thread_type = FF_THREAD_SLICE;
        codec->opaque = &buffers;
        codec->get_buffer2 = takeBuffer;
    }
    openDecoder(*codec, path);
    return codec;
}

/// The next whole packet. False at the end of what can be read.
bool readWholePacket(AVFormatContext& input, int streamIndex, AVPacket& packet)
{
    return readPacket(input, streamIndex, packet) && (packet.flags & AV_PKT_FLAG_CORRUPT) == 0;
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
    FrameBuffers buffers;
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
    m_state->input = openInput(path);
    m_state->stream = choosePictures(*m_state->input, path);
    m_state->codec = openPictureDecoder(*m_state->stream, path, threads, m_state->buffers);
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
    if (!readWholePacket(*input, stream->index, *packet)) {
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
