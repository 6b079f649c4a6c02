#pragma once

#include "ZentoMedia/Ffmpeg/MovieIndex.h"
#include "ZentoMedia/Ffmpeg/OutputFile.h"
#include "ZentoMedia/Ffmpeg/TrackFile.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace zento::ffmpeg {

/// A QuickTime movie that can be read at any moment of its making, whatever ends it.
///
/// While it grows it is a fragmented movie: an empty index, then stretches of at most half a second
/// or 4 MiB that each bring their own. Each is sent on to the disk as it is written. `close` makes
/// an ordinary movie of it without moving a byte of the samples: it appends the whole index and
/// turns everything before that, the fragments' headers included, into one "mdat". The step that
/// does so is one write of 16 bytes; before it the file is the one kind of movie, after it the
/// other.
///
/// Room for the last fragment and for the index is set aside from the start, so that a movie on a
/// disk that fills up can be completed.
///
/// Packets must come in the order of presentation: pictures that are reordered would be off by the
/// delay of the encoder in a movie that is cut short.
class GrowingMovie final : public TrackFile {
public:
    /// Creates or empties the file. Throws as all of `TrackFile`.
    GrowingMovie(const std::filesystem::path& path, const TrackFormat& format, int errorCode);

    void setErrorCode(int errorCode) override { m_index.setErrorCode(errorCode); }
    void write(AVPacket& packet, AVRational timeBase) override;
    void flush() override;

    /// Throws the error ENOENT if the file is no longer in any folder.
    void close() override;

private:
    void append(const std::vector<std::uint8_t>& bytes);
    void keepRoom(std::int64_t packetBytes);

    OutputFile m_file;
    AVRational m_timeBase;
    MovieIndex m_index;
    std::int64_t m_dataBegin = 0; // where the box after "ftyp" begins
    std::vector<PacketHandle> m_pending;
    std::int64_t m_pendingBytes = 0;
    std::vector<std::uint8_t> m_samples; // of the fragment that is written; kept for its memory
    std::uint32_t m_sequence = 0;
};

/// The last steps of `GrowingMovie::close`, for a movie whose samples and fragments end at
/// `dataEnd`. `dataBegin`: where the box after "ftyp" begins; the movie is ordinary afterwards and
/// on the disk. Throws the system's error.
void seal(
    OutputFile& file,
    std::int64_t dataBegin,
    std::int64_t dataEnd,
    const std::vector<std::uint8_t>& index);

} // namespace zento::ffmpeg
