#include "ZentoMedia/VideoSeeker.h"

#include "ZentoCore/Error.h"
#include "ZentoMedia/Ffmpeg/Handles.h"
#include "ZentoMedia/Ffmpeg/Input.h"
#include "ZentoMedia/Ffmpeg/PictureConverter.h"
#include "ZentoMedia/PictureTimes.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace zento {

using namespace ffmpeg;

namespace {

/// Where the pictures of a track lie, as its container's index tells.
struct PictureIndex {
    std::vector<std::int64_t> ticks; // of every picture, ascending
    bool standAlone = false;         // every one can be decoded by itself
};

PictureIndex readIndex(AVStream& track)
{
    const int count = avformat_index_get_entries_count(&track);
    PictureIndex index;
    // A movie in fragments is indexed as far as it was read.
    index.standAlone = count > 0 && count == track.nb_frames && track.codecpar->video_delay == 0;
    for (int i = 0; i < count && index.standAlone; ++i) {
        const AVIndexEntry* entry = avformat_index_get_entry(&track, i);
        index.standAlone = (entry->flags & AVINDEX_KEYFRAME) != 0
                           && (index.ticks.empty() || entry->timestamp > index.ticks.back());
        index.ticks.push_back(entry->timestamp);
    }
    return index;
}

} // namespace

struct VideoSeeker::State {
    InputHandle input;
    AVStream* stream = nullptr;
    CodecHandle codec;
    PictureConverter converter;
    PacketHandle packet = makePacket();
    PictureIndex index;
    std::optional<VideoFrame> current;
    std::optional<VideoFrame>
        ahead;                    // decoded, not yet due; only of pictures that do not stand alone
    std::size_t currentEntry = 0; // of `current` in the index
    std::size_t nextEntry = 0;    // of the packet the file gives next
    bool isPlaced = false;        // `nextEntry` and the decoder are where they say
    bool isAheadKnown = false;    // whether `ahead` was looked for
    bool isDrained = false;
    std::uint64_t lastIdentity = 0;

    double seconds(std::int64_t ticks) const
    {
        return static_cast<double>(ticks) * stream->time_base.num / stream->time_base.den;
    }

    std::optional<VideoFrame> standingAlone(double t);
    std::optional<VideoFrame> decodeEntry(std::size_t entry);
    std::optional<VideoFrame> played(double t);
    std::optional<VideoFrame> nearby(double t);
    bool isAhead(double t) const;
    void seek(double t);
    void lookAhead();
    void advance();
    std::optional<VideoFrame> receive();
    std::optional<VideoFrame> decodeNext();
};

VideoSeeker::VideoSeeker(const std::filesystem::path& path)
    : m_state(std::make_unique<State>())
{
    m_state->input = openInput(path);
    m_state->stream = chooseTrack(*m_state->input, isPictures);
    if (m_state->stream == nullptr)
        throw Error(ErrorCode::kNoVideoTrack, "no video track in " + path.string());
    m_state->index = readIndex(*m_state->stream);
    m_state->codec = makeDecoder(*m_state->stream, path);
    m_state->codec->thread_count = 1; // threads by frame would hold a picture back
    openDecoder(*m_state->codec, path);
}

VideoSeeker::~VideoSeeker() = default;
VideoSeeker::VideoSeeker(VideoSeeker&&) noexcept = default;
VideoSeeker& VideoSeeker::operator=(VideoSeeker&&) noexcept = default;

VideoSize VideoSeeker::naturalSize() const
{
    return {m_state->stream->codecpar->width, m_state->stream->codecpar->height};
}

std::optional<VideoSeeker::Span> VideoSeeker::span() const
{
    const PictureIndex& index = m_state->index;
    if (!index.standAlone)
        return std::nullopt;
    return Span{
        .first = m_state->seconds(index.ticks.front()),
        .last = m_state->seconds(index.ticks.back()),
        .pictures = index.ticks.size()};
}

std::optional<VideoFrame> VideoSeeker::frame(double t, Accuracy accuracy)
{
    if (m_state->index.standAlone)
        return m_state->standingAlone(t);
    return accuracy == Accuracy::Exact ? m_state->played(t) : m_state->nearby(t);
}

std::optional<VideoFrame> VideoSeeker::State::standingAlone(double t)
{
    const auto later = std::ranges::upper_bound(
        index.ticks, t + kRoundingAllowance, {}, [this](std::int64_t ticks) {
            return seconds(ticks);
        });
    const auto entry =
        static_cast<std::size_t>(std::max<std::ptrdiff_t>(later - index.ticks.begin() - 1, 0));
    if (current && currentEntry == entry)
        return current;
    current = decodeEntry(entry);
    currentEntry = entry;
    return current;
}

std::optional<VideoFrame> VideoSeeker::State::decodeEntry(std::size_t entry)
{
    const bool isNext = isPlaced && nextEntry == entry;
    isPlaced = false;
    if (!isNext
        && av_seek_frame(input.get(), stream->index, index.ticks[entry], AVSEEK_FLAG_BACKWARD) < 0)
        return std::nullopt;
    if (!readPacket(*input, stream->index, *packet))
        return std::nullopt;
    // The decoder gives the picture at once when it is told that no other follows.
    avcodec_flush_buffers(codec.get());
    if (avcodec_send_packet(codec.get(), packet.get()) < 0
        || avcodec_send_packet(codec.get(), nullptr) < 0)
        return std::nullopt;
    auto picture = receive();
    isPlaced = true;
    nextEntry = entry + 1;
    return picture;
}

/// A picture the decoder has ready; nothing also for a damaged one.
std::optional<VideoFrame> VideoSeeker::State::receive()
{
    auto picture = makeFrame();
    if (avcodec_receive_frame(codec.get(), picture.get()) < 0)
        return std::nullopt;
    if (picture->decode_error_flags != 0 || (picture->flags & AV_FRAME_FLAG_CORRUPT) != 0)
        return std::nullopt;
    const std::int64_t ticks = picture->best_effort_timestamp;
    const double time = ticks == AV_NOPTS_VALUE ? 0 : seconds(ticks);
    return converter.convert(std::move(picture), time, ++lastIdentity);
}

/// As a player would: from the last whole picture on.
std::optional<VideoFrame> VideoSeeker::State::played(double t)
{
    if (!isAhead(t))
        seek(t);
    lookAhead();
    while (ahead && ahead->time() <= t + kRoundingAllowance)
        advance();
    return current;
}

std::optional<VideoFrame> VideoSeeker::State::nearby(double t)
{
    constexpr double kNear = 0.3; // seconds
    if (!current || std::abs(current->time() - t) > kNear)
        seek(t);
    return current;
}

/// Whether decoding on gets to a time sooner than seeking does.
bool VideoSeeker::State::isAhead(double t) const
{
    constexpr double kShortWay = 0.5; // seconds
    if (!current || current->time() > t + kRoundingAllowance)
        return false;
    const bool isAtEnd = isAheadKnown && !ahead;
    return isAtEnd || t - (ahead ? ahead->time() : current->time()) < kShortWay;
}

void VideoSeeker::State::seek(double t)
{
    const auto ticks = static_cast<std::int64_t>(t / stream->time_base.num * stream->time_base.den);
    if (av_seek_frame(input.get(), stream->index, ticks, AVSEEK_FLAG_BACKWARD) < 0)
        av_seek_frame(input.get(), stream->index, 0, AVSEEK_FLAG_BACKWARD);
    avcodec_flush_buffers(codec.get());
    isDrained = false;
    current = decodeNext();
    ahead.reset();
    isAheadKnown = false;
}

void VideoSeeker::State::lookAhead()
{
    if (!std::exchange(isAheadKnown, true))
        ahead = decodeNext();
}

void VideoSeeker::State::advance()
{
    current = std::exchange(ahead, decodeNext());
}

std::optional<VideoFrame> VideoSeeker::State::decodeNext()
{
    while (true) {
        if (auto picture = receive())
            return picture;
        if (isDrained)
            return std::nullopt;
        isDrained = !readPacket(*input, stream->index, *packet);
        avcodec_send_packet(codec.get(), isDrained ? nullptr : packet.get());
    }
}

} // namespace zento
