#pragma once

#include "ZentoMedia/Ffmpeg/Handles.h"
#include "ZentoMedia/Ffmpeg/MovieFile.h"

#include <cstdint>
#include <filesystem>
#include <optional>

namespace zento::ffmpeg {

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
        Container container,
        CodecHandle codec,
        std::optional<std::int64_t> frameDuration,
        int errorCode);

    /// Encodes a frame and writes what the encoder has ready. The encoder may keep a reference.
    void encode(const AVFrame& frame, int errorCode);

    /// Has the encoder give out what it still holds.
    void drain(int errorCode);

    /// Completes the file with the frames that were written, and closes it.
    void close(int errorCode);

    std::int64_t framesWritten() const { return m_framesWritten; }

private:
    void begin();
    void send(const AVFrame* frame, int errorCode);
    void writePacket();

    std::filesystem::path m_path;
    bool m_keepsRoom; // for the index, so that a recording on a disk that filled up can be read
    CodecHandle m_codec;
    std::optional<std::int64_t> m_frameDuration;
    MovieFile m_file;
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
