#pragma once

#include "ZentoMedia/Ffmpeg/Handles.h"
#include "ZentoMedia/Ffmpeg/TrackFile.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>

namespace zento::ffmpeg {

/// What becomes of a track: a `QuickTime` movie that can be read while it grows (`GrowingMovie`),
/// or a `Container` of `MovieFile`.
enum class MovieForm { QuickTime, Mp4, Mp4Cache, M4a };

/// An encoder and the movie file of one track that it feeds.
///
/// Failures are thrown as `Error`: the system's error of the file, else the code named in the call.
///
/// Threading: used by one thread at a time.
class MovieEncoder {
public:
    /// `codec`: an open encoder; its time base is the track's timescale. `frameDuration`: of every
    /// frame, in ticks; nothing if the encoder knows it.
    MovieEncoder(
        const std::filesystem::path& path,
        MovieForm form,
        CodecHandle codec,
        std::optional<std::int64_t> frameDuration,
        int errorCode);

    /// Encodes a frame and writes what the encoder has ready. The encoder may keep a reference.
    void encode(const AVFrame& frame, int errorCode);

    /// Has the encoder give out what it still holds.
    void drain(int errorCode);

    /// Goes on with another encoder of the same kind, after draining the one there is, and has all
    /// that was encoded readable in the file where its form allows it. An encoder with several
    /// threads holds pictures back until more come; where none come for a while they would be the
    /// ones a cut loses.
    void settle(CodecHandle next, int errorCode);

    /// Completes the file with the frames that were written, and closes it.
    void close(int errorCode);

    std::int64_t framesWritten() const { return m_framesWritten; }

private:
    void send(const AVFrame* frame, int errorCode);
    void writePacket();

    std::filesystem::path m_path;
    CodecHandle m_codec;
    std::optional<std::int64_t> m_frameDuration;
    std::unique_ptr<TrackFile> m_file;
    PacketHandle m_packet = makePacket();
    std::int64_t m_framesWritten = 0;
};

/// An encoder by its name for tracks of this time base, with its parameters kept out of the
/// packets. Throws `Error` with `errorCode` if there is none.
CodecHandle makeEncoder(
    const char* name, const std::filesystem::path& path, AVRational timeBase, int errorCode);

/// The same for pictures, with what all our movies have in common: size, square pixels, BT.709
/// limited range. Throws `Error` with `errorCode` for a size it cannot encode.
CodecHandle makePictureEncoder(
    const char* name,
    const std::filesystem::path& path,
    int width,
    int height,
    AVRational timeBase,
    int errorCode);

/// Opens it. Throws `Error` with `errorCode`.
void openEncoder(
    AVCodecContext& codec, const std::filesystem::path& path, Options& options, int errorCode);

} // namespace zento::ffmpeg
