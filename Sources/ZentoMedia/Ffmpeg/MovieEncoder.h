#pragma once

#include "ZentoMedia/Ffmpeg/Handles.h"
#include "ZentoMedia/Ffmpeg/OutputFile.h"

#include <cstdint>
#include <filesystem>

namespace zento::ffmpeg {

/// `QuickTime` sets room for its index aside while it is written; `Mp4` has its index in front.
enum class Container { QuickTime, Mp4 };

/// A video encoder and the movie file of one track that it feeds.
///
/// Failures are thrown as `Error`: the system's error of the file, else the code named in the call.
///
/// Threading: used by one thread at a time.
class MovieEncoder {
public:
    /// `codec`: an open encoder; its time base is the track's timescale. `frameDuration`: of the
    /// last frame, in ticks.
    MovieEncoder(
        const std::filesystem::path& path,
        Container container,
        CodecHandle codec,
        std::int64_t frameDuration,
        int errorCode);

    /// Encodes a frame and writes what the encoder has ready. The encoder may keep a reference.
    void encode(const AVFrame& frame, int errorCode);

    /// Has the encoder give out what it still holds.
    void drain(int errorCode);

    /// Completes the file with the frames that were written, and closes it.
    void close(int errorCode);

    std::int64_t framesWritten() const { return m_framesWritten; }

private:
    void openFile(int errorCode);
    void send(const AVFrame* frame, int errorCode);
    void writePacket(int errorCode);

    std::filesystem::path m_path;
    Container m_container;
    CodecHandle m_codec;
    std::int64_t m_frameDuration;
    OutputFile m_file;
    OutputHandle m_output;
    PacketHandle m_packet = makePacket();
    std::int64_t m_framesWritten = 0;
};

/// An encoder by its name with what all our movies have in common: size, time base, BT.709 limited
/// range, parameters kept out of the packets. Throws `Error` with `errorCode` for a size it cannot
/// encode.
CodecHandle makeEncoder(
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
