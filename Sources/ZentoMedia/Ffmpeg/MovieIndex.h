#pragma once

#include "ZentoMedia/Ffmpeg/TrackFile.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace zento::ffmpeg {

/// The index ("moov") of an ordinary QuickTime movie whose samples lie anywhere in its file.
///
/// The library's own writer makes it: it believes that it writes the samples at their places.
///
/// Threading: used by one thread at a time.
class MovieIndex {
public:
    /// `path`: for what is said of failures, which are thrown as `Error` with `errorCode`.
    MovieIndex(const TrackFormat& format, std::filesystem::path path, int errorCode);
    ~MovieIndex();
    MovieIndex(const MovieIndex&) = delete;
    MovieIndex& operator=(const MovieIndex&) = delete;

    void setErrorCode(int errorCode) { m_errorCode = errorCode; }

    /// The next sample, its times in the ticks of `format`, whose bytes begin at `offset` of the
    /// file. Returns how many they are there: a container may frame a packet anew. `bytes`, if
    /// any, has them appended.
    std::int64_t
    add(AVPacket& packet, std::int64_t offset, std::vector<std::uint8_t>* bytes = nullptr);

    std::int64_t sampleCount() const { return m_sampleCount; }

    /// The box, whole. To be called once, after the last sample.
    std::vector<std::uint8_t> finish();

private:
    static int writeCallback(void* index, std::uint8_t* bytes, int count);
    static std::int64_t seekCallback(void* index, std::int64_t offset, int whence);
    void check(int result) const;

    std::filesystem::path m_path;
    int m_errorCode;
    AVIOContext* m_io = nullptr;
    OutputHandle m_output;
    AVRational m_timeBase;
    std::int64_t m_position = 0;
    std::int64_t m_sampleCount = 0;
    std::int64_t m_keptFrom = 0;                 // what is written from here on
    std::vector<std::uint8_t>* m_kept = nullptr; // goes there
};

} // namespace zento::ffmpeg
