#include "ZentoMedia/AacWriter.h"

#include "ZentoCore/Error.h"
#include "ZentoMedia/Ffmpeg/Failure.h"
#include "ZentoMedia/Ffmpeg/MovieEncoder.h"

extern "C" {
#include <libavutil/channel_layout.h>
}

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace zento {

using namespace ffmpeg;

namespace {

CodecHandle openAacEncoder(const std::filesystem::path& path, const SoundFormat& format)
{
    const bool isPossible = format.sampleRate > 0 && format.bitRate > 0;
    if (!isPossible)
        throw Error(
            ErrorCode::kWriterNotStarted,
            "Could not write " + path.string() + ": sound cannot have "
                + std::to_string(format.sampleRate) + " samples and "
                + std::to_string(format.bitRate) + " bits per second");
    auto codec = makeEncoder("aac", path, {1, format.sampleRate}, ErrorCode::kWriterNotStarted);
    codec->sample_rate = format.sampleRate;
    codec->sample_fmt = AV_SAMPLE_FMT_FLTP;
    codec->bit_rate = format.bitRate;
    av_channel_layout_default(&codec->ch_layout, 2);
    Options options;
    openEncoder(*codec, path, options, ErrorCode::kWriterNotStarted);
    return codec;
}

} // namespace

struct AacWriter::State {
    std::filesystem::path path;
    SoundFormat format;
    CodecHandle codec; // the movie's once it is made
    std::size_t frameLength;
    MovieEncoder movie;
    FrameHandle frame; // being filled
    std::size_t filled = 0;
    std::int64_t position = 0; // samples in frames before this one

    State(const std::filesystem::path& target, const SoundFormat& wanted)
        : path(target)
        , format(wanted)
        , codec(openAacEncoder(target, wanted))
        , frameLength(static_cast<std::size_t>(codec->frame_size))
        , movie(
              target, MovieForm::M4a, std::move(codec), std::nullopt, ErrorCode::kWriterNotStarted)
    {
    }

    void startFrame();
    void encodeFrame(int errorCode);
};

AacWriter::AacWriter(const std::filesystem::path& path, const SoundFormat& format)
    : m_state(std::make_unique<State>(path, format))
{
}

AacWriter::~AacWriter() = default;
AacWriter::AacWriter(AacWriter&&) noexcept = default;
AacWriter& AacWriter::operator=(AacWriter&&) noexcept = default;

void AacWriter::append(std::span<const float> left, std::span<const float> right)
{
    if (left.size() != right.size())
        throw Error(
            ErrorCode::kAppendRefused,
            "Could not write " + m_state->path.string() + ": the channels differ in length");
    const std::array sides{left, right};
    for (std::size_t done = 0; done < left.size();) {
        if (!m_state->frame)
            m_state->startFrame();
        const std::size_t count =
            std::min(left.size() - done, m_state->frameLength - m_state->filled);
        for (std::size_t side = 0; side < sides.size(); ++side)
            std::ranges::copy(
                sides[side].subspan(done, count),
                reinterpret_cast<float*>(m_state->frame->data[side]) + m_state->filled);
        done += count;
        m_state->filled += count;
        if (m_state->filled == m_state->frameLength)
            m_state->encodeFrame(ErrorCode::kAppendRefused);
    }
}

void AacWriter::finish()
{
    if (m_state->frame)
        m_state->encodeFrame(ErrorCode::kFilmNotFinished);
    if (m_state->position == 0)
        throw Error(
            ErrorCode::kFilmNotFinished,
            "Could not write " + m_state->path.string() + ": the sound has no samples");
    m_state->movie.drain(ErrorCode::kFilmNotFinished);
    m_state->movie.close(ErrorCode::kFilmNotFinished);
    m_state.reset();
}

/// The encoder keeps frames for a while, so that each is a new one.
void AacWriter::State::startFrame()
{
    frame = makeFrame();
    frame->format = AV_SAMPLE_FMT_FLTP;
    frame->sample_rate = format.sampleRate;
    frame->nb_samples = static_cast<int>(frameLength);
    av_channel_layout_default(&frame->ch_layout, 2);
    if (av_frame_get_buffer(frame.get(), 0) < 0)
        throw std::bad_alloc();
    frame->pts = position;
    filled = 0;
}

void AacWriter::State::encodeFrame(int errorCode)
{
    frame->nb_samples = static_cast<int>(filled);
    movie.encode(*frame, errorCode);
    position += static_cast<std::int64_t>(filled);
    frame.reset();
}

} // namespace zento
