#pragma once

#include "ZentoMedia/VideoFrame.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>

namespace zento {

/// Reads single pictures of a movie's first video track at any time, in any order.
///
/// In a movie whose pictures stand alone (ProRes, an all-intra proxy) every time is one decoded
/// picture; in any other it is those from the last whole picture on. Asking for the same picture
/// or for the next one moves nothing in the file. Samples are given as by `VideoDecoder`.
///
/// Threading: used by one thread at a time; what it returns may go anywhere, and may outlive it.
class VideoSeeker {
public:
    /// How well a picture has to meet its time where pictures do not stand alone. `Nearby`: the
    /// whole picture before it, or one that was just shown within 0.3 s of it, which saves decoding
    /// all that lie between.
    enum class Accuracy { Exact, Nearby };

    /// Throws `Error` as `VideoDecoder` does.
    explicit VideoSeeker(const std::filesystem::path& path);
    ~VideoSeeker();
    VideoSeeker(VideoSeeker&&) noexcept;
    VideoSeeker& operator=(VideoSeeker&&) noexcept;

    /// The size the track declares.
    VideoSize naturalSize() const;

    /// The times of the first and the last picture in seconds, as the file's index has them;
    /// nothing for a movie whose pictures do not stand alone.
    struct Span {
        double first = 0;
        double last = 0;
        std::size_t pictures = 0;
    };
    std::optional<Span> span() const;

    /// The last picture at or before `t` seconds, with the allowance for rounding that the film's
    /// reader has; before the first picture the first, beyond the last the last. Nothing where the
    /// picture is damaged or the movie has none.
    std::optional<VideoFrame> frame(double t, Accuracy accuracy = Accuracy::Exact);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento
