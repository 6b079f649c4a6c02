#pragma once

#include "ZentoMedia/Ffmpeg/Handles.h"

namespace zento::ffmpeg {

/// What a container must know of a track before its first packet.
struct TrackFormat {
    ParametersHandle parameters;
    AVRational timeBase{0, 1}; // of the packets; its denominator is the track's timescale
    AVRational frameRate{0, 1};
    AVRational pixelAspect{0, 1};
};

/// The format of what an open encoder gives out, or of a track of a file.
TrackFormat trackFormat(const AVCodecContext& codec);
TrackFormat trackFormat(const AVStream& track);

/// Adds a track to a file whose header is not written.
AVStream& addTrack(AVFormatContext& output, const TrackFormat& format);

/// The options a QuickTime or MPEG-4 container needs to keep this track's times exactly.
void setTimescale(Options& options, const TrackFormat& format);

/// A movie file of one track in the making.
///
/// Failures are thrown as `Error`: the system's error of the file, else the code set last.
///
/// Threading: used by one thread at a time.
class TrackFile {
public:
    virtual ~TrackFile() = default; // without `close` the file is left as it is

    /// What is written from now on fails with this code.
    virtual void setErrorCode(int errorCode) = 0;

    /// Takes a packet, its times given in `timeBase`, and empties it.
    virtual void write(AVPacket& packet, AVRational timeBase) = 0;

    /// Where the container allows it, has all that was written readable in the file.
    virtual void flush() = 0;

    /// Completes the file and closes it.
    virtual void close() = 0;
};

} // namespace zento::ffmpeg
