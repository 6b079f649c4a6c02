#pragma once

#include "ZentoMedia/VideoDecoder.h"

#include <filesystem>
#include <optional>

namespace zento {

/// The picture of a movie at any time, for times that only go forwards.
///
/// Threading: one thread at a time.
class SourceReader {
public:
    /// Throws `Error` for a file that is missing, unreadable or without a video track.
    explicit SourceReader(const std::filesystem::path& movie);

    VideoSize naturalSize() const { return m_decoder.naturalSize(); }

    /// The last frame at or before `t` seconds; before the first frame the first, beyond the last
    /// the last. An earlier `t` than before gives the current frame again. Nothing for a movie
    /// without frames. An error in mid-file counts as its end.
    std::optional<VideoFrame> frame(double t);

private:
    VideoDecoder m_decoder;
    std::optional<VideoFrame> m_current;
    std::optional<VideoFrame> m_next; // read ahead, not yet due
};

} // namespace zento
