#include "ZentoMedia/TrackJoin.h"

#include "ZentoCore/Error.h"
#include "ZentoMedia/Ffmpeg/Handles.h"
#include "ZentoMedia/Ffmpeg/Input.h"
#include "ZentoMedia/Ffmpeg/MovieFile.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace zento {

using namespace ffmpeg;

namespace {

/// One track on its way from its file into the movie.
class Source {
public:
    Source(
        const std::filesystem::path& path, bool (*isWanted)(const AVStream&), const char* meaning)
        : m_input(openInput(path))
        , m_track(chooseTrack(*m_input, isWanted))
    {
        if (m_track == nullptr)
            throw Error(
                ErrorCode::kTrackMissing,
                std::string("no ") + meaning + " track in " + path.string());
    }

    const AVStream& track() const { return *m_track; }
    AVPacket& packet() { return *m_packet; }
    bool isAtEnd() const { return m_isAtEnd; }

    /// In ticks of the track.
    std::int64_t duration() const
    {
        if (m_track->duration > 0)
            return m_track->duration;
        return av_rescale_q(
            std::max<std::int64_t>(m_input->duration, 0), AV_TIME_BASE_Q, m_track->time_base);
    }

    void advance() { m_isAtEnd = !readPacket(*m_input, m_track->index, *m_packet); }

    /// Nothing at or past `end`, in ticks, comes any more.
    void cutAt(std::int64_t end)
    {
        if (m_isAtEnd || m_packet->pts == AV_NOPTS_VALUE)
            return;
        if (m_packet->pts >= end)
            m_isAtEnd = true;
        else
            m_packet->duration = std::min(m_packet->duration, end - m_packet->pts);
    }

private:
    InputHandle m_input;
    AVStream* m_track;
    PacketHandle m_packet = makePacket();
    bool m_isAtEnd = false;
};

/// Whether the next packet of `a` belongs before that of `b`.
bool comesFirst(Source& a, Source& b)
{
    if (a.isAtEnd() || b.isAtEnd())
        return !a.isAtEnd();
    return av_compare_ts(a.packet().dts, a.track().time_base, b.packet().dts, b.track().time_base)
           <= 0;
}

AVStream& addTrack(MovieFile& movie, const Source& source)
{
    AVStream& track = movie.addTrack(trackFormat(source.track()));
    track.codecpar->codec_tag = 0; // the tag of one container need not be that of another
    track.avg_frame_rate = source.track().avg_frame_rate;
    return track;
}

void begin(MovieFile& movie, const Source& pictures, const Source& sound)
{
    addTrack(movie, pictures);
    addTrack(movie, sound);
    Options options;
    // Left alone, the container doubles a timescale until it is 10000 or more.
    options.set("video_track_timescale", pictures.track().time_base.den);
    // Edits are kept in ticks of the movie; its usual thousandths would round the sound's.
    options.set("movie_timescale", sound.track().time_base.den);
    movie.begin(options);
}

void checkStop(const std::stop_token& stop, const std::filesystem::path& to)
{
    if (stop.stop_requested())
        throw Error(ErrorCode::kCancelled, to.string() + " was cancelled");
}

} // namespace

void joinTracks(
    const std::filesystem::path& video,
    const std::filesystem::path& audio,
    const std::filesystem::path& to,
    const std::stop_token& stop,
    const ShareCallback& onProgress)
{
    checkStop(stop, to);
    Source pictures(video, isPictures, "video");
    Source sound(audio, isSound, "audio");
    MovieFile movie(to, Container::Mp4, ErrorCode::kJoinFailed);
    movie.stopOn(stop);
    begin(movie, pictures, sound);

    const std::int64_t length = pictures.duration();
    const std::int64_t end = av_rescale_q_rnd(
        length, pictures.track().time_base, sound.track().time_base, AV_ROUND_DOWN);
    pictures.advance();
    sound.advance();
    sound.cutAt(end);
    while (!pictures.isAtEnd() || !sound.isAtEnd()) {
        checkStop(stop, to);
        const bool isPicture = comesFirst(pictures, sound);
        Source& source = isPicture ? pictures : sound;
        if (isPicture && onProgress && length > 0)
            onProgress(std::clamp(
                static_cast<double>(source.packet().dts) / static_cast<double>(length), 0.0, 1.0));
        movie.write(source.packet(), isPicture ? 0 : 1, source.track().time_base);
        source.advance();
        if (!isPicture)
            sound.cutAt(end);
    }
    try {
        movie.close();
    } catch (const Error&) {
        checkStop(stop, to); // the reason, if that is what ended it
        throw;
    }
    checkStop(stop, to);
}

} // namespace zento
