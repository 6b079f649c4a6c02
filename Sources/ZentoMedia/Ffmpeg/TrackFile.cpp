#include "ZentoMedia/Ffmpeg/TrackFile.h"

namespace zento::ffmpeg {

TrackFormat trackFormat(const AVCodecContext& codec)
{
    TrackFormat format{
        .parameters = allocated(ParametersHandle(avcodec_parameters_alloc())),
        .timeBase = codec.time_base,
        .frameRate = codec.framerate,
        .pixelAspect = codec.sample_aspect_ratio};
    if (avcodec_parameters_from_context(format.parameters.get(), &codec) < 0)
        throw std::bad_alloc();
    return format;
}

TrackFormat trackFormat(const AVStream& track)
{
    TrackFormat format{
        .parameters = allocated(ParametersHandle(avcodec_parameters_alloc())),
        .timeBase = track.time_base,
        .pixelAspect = track.sample_aspect_ratio};
    if (avcodec_parameters_copy(format.parameters.get(), track.codecpar) < 0)
        throw std::bad_alloc();
    return format;
}

AVStream& addTrack(AVFormatContext& output, const TrackFormat& format)
{
    AVStream* track = avformat_new_stream(&output, nullptr);
    if (track == nullptr || avcodec_parameters_copy(track->codecpar, format.parameters.get()) < 0)
        throw std::bad_alloc();
    track->time_base = format.timeBase;
    track->avg_frame_rate = format.frameRate;
    track->sample_aspect_ratio = format.pixelAspect;
    return *track;
}

void setTimescale(Options& options, const TrackFormat& format)
{
    if (format.parameters->codec_type == AVMEDIA_TYPE_VIDEO) {
        // Left alone, the container doubles a timescale until it is 10000 or more.
        options.set("video_track_timescale", format.timeBase.den);
    } else {
        // What hides a lead-in is kept in ticks of the movie; its usual thousandths would cut off
        // the last samples.
        options.set("movie_timescale", format.timeBase.den);
    }
}

} // namespace zento::ffmpeg
