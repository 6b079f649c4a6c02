#pragma once

#include "ZentoMedia/VideoFrame.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace zento {

/// Reads the pictures of a movie's first video track, strictly forwards.
///
/// A packet whose bytes are those of the one before is not decoded again where the codec's pictures
/// stand alone (ProRes, Motion JPEG): the frame shares the samples and the identity of the one
/// before. On a recording of a still desktop that is most of the packets.
///
/// A file that holds other pictures than `VideoFrame` allows (R'G'B', 4:4:4, full range, another
/// matrix, 12 bits) has them converted here, once: to 4:2:2 of 10 bits if they are deeper than 8
/// bits, else to 4:2:0 of 8 bits. A track without colour tags counts as BT.709 if it is wider than
/// 1279 or taller than 576 pixels, else as BT.601. Rotation and pixel aspect are not applied.
///
/// Threading: used by one thread at a time; what it returns may go anywhere, and may outlive it.
class VideoDecoder {
public:
    /// `threads`: how many threads decode, [1, ∞).
    ///
    /// Throws `Error`: code `kNoVideoTrack` for a file with sound alone; the system's error for a
    /// file that cannot be opened; code `kReadingFailed` for anything that is not a movie.
    explicit VideoDecoder(const std::filesystem::path& path, int threads = 1);
    ~VideoDecoder();
    VideoDecoder(VideoDecoder&&) noexcept;
    VideoDecoder& operator=(VideoDecoder&&) noexcept;

    /// The size the track declares.
    VideoSize naturalSize() const;

    /// How long the track declares to be, in seconds; 0 if the file does not say.
    double declaredDuration() const;

    /// The next picture in order of presentation. Nothing at the end of the file, and from the
    /// first damaged or unreadable picture on: a torn recording plays up to the tear.
    std::optional<VideoFrame> next();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento
