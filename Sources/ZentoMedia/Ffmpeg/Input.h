#pragma once

#include "ZentoMedia/Ffmpeg/Handles.h"

#include <cstdint>
#include <filesystem>

namespace zento::ffmpeg {

/// Opens a media file and finds out what is in it. Throws `Error`: the system's error, naming the
/// file, else the code `kReadingFailed`.
InputHandle openInput(const std::filesystem::path& path);

/// The same for the first `size` bytes of a file.
InputHandle openInput(const std::filesystem::path& path, std::int64_t size);

/// The same for bytes that come from elsewhere; `name` is for messages. They lead to no other
/// address.
InputHandle openInput(AVIOContext& bytes, const std::filesystem::path& name);

/// The first track `isWanted` accepts, or null. All other tracks are left unread.
template <typename Predicate>
AVStream* chooseTrack(AVFormatContext& input, Predicate isWanted)
{
    AVStream* chosen = nullptr;
    for (unsigned i = 0; i < input.nb_streams; ++i) {
        AVStream* track = input.streams[i];
        if (chosen == nullptr && isWanted(*track))
            chosen = track;
        else
            track->discard = AVDISCARD_ALL;
    }
    return chosen;
}

/// For `chooseTrack`.
bool isPictures(const AVStream& track);
bool isSound(const AVStream& track);

/// A decoder for a track, not yet open, so that it can still be told how to work.
/// Throws `Error` with the code `kReadingFailed`.
CodecHandle makeDecoder(const AVStream& track, const std::filesystem::path& path);

/// Opens it. Throws `Error` with the code `kReadingFailed`.
void openDecoder(AVCodecContext& codec, const std::filesystem::path& path);

/// The next packet of a track. False at the end of what can be read; the packet is then empty.
bool readPacket(AVFormatContext& input, int trackIndex, AVPacket& packet);

} // namespace zento::ffmpeg
