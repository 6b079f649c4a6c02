#pragma once

#include "ZentoMedia/Ffmpeg/Handles.h"
#include "ZentoMedia/Ffmpeg/OutputFile.h"
#include "ZentoMedia/Ffmpeg/TrackFile.h"

#include <filesystem>
#include <stop_token>

namespace zento::ffmpeg {

/// `Mp4` has its index in front, `Mp4Cache` behind, which saves moving gigabytes that never leave
/// the disk; `M4a` is sound alone.
enum class Container { Mp4, Mp4Cache, M4a };

/// A movie file in the making: tracks, header, packets, then the index.
///
/// Failures are thrown as `Error`: the system's error of the file, else the code given at the
/// start.
///
/// Threading: used by one thread at a time.
class MovieFile {
public:
    /// Creates or empties the file.
    MovieFile(std::filesystem::path path, Container container, int errorCode);

    /// What is written from now on fails with this code.
    void setErrorCode(int errorCode) { m_errorCode = errorCode; }

    /// Lets go of a long step between packets soon after `stop` is requested: `close` may move the
    /// whole file. What it then leaves is no movie.
    void stopOn(std::stop_token stop);

    AVStream& addTrack(const TrackFormat& format);

    /// Writes the header; no track can be added afterwards. `options`: the container's.
    void begin(Options& options);

    /// Writes a packet of a track, its times given in `timeBase`, and empties it.
    void write(AVPacket& packet, int trackIndex, AVRational timeBase);

    /// Completes the file and closes it.
    void close();

private:
    static int isStopped(void* token);
    void check(int result) const;

    std::filesystem::path m_path;
    Container m_container;
    int m_errorCode;
    std::stop_token m_stop;
    OutputFile m_file;
    OutputHandle m_output;
};

} // namespace zento::ffmpeg
