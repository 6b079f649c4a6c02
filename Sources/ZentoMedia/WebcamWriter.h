#pragma once

#include "ZentoMedia/CameraPicture.h"
#include "ZentoMedia/VideoFrame.h"

#include <filesystem>
#include <memory>

namespace zento {

/// Writes what a camera shows as it comes: H.264 in a QuickTime movie of 1280 × 720 pixels, every
/// picture at its own time (timescale 60000), tagged BT.709 limited range.
///
/// A picture of another size is scaled; of one of another shape the middle is kept and the rest cut
/// off, for bars would show in the bubble that the film makes of it.
///
/// The movie is written in fragments of a second, each complete in itself: a process that dies
/// leaves a file that can be read up to its last second.
///
/// Threading: used by one thread at a time. It has no thread of its own: 30 plain pictures of that
/// size a second keep a quarter of a core busy.
class WebcamWriter {
public:
    static constexpr VideoSize kSize{1280, 720};

    /// Creates the file, replacing one that exists.
    ///
    /// Throws `Error`: the system's error, naming the file, if it cannot be written; else the code
    /// `kCameraNotWritten`.
    explicit WebcamWriter(const std::filesystem::path& path);

    /// Without `finish` the file is left as it is.
    ~WebcamWriter();
    WebcamWriter(const WebcamWriter&) = delete;
    WebcamWriter& operator=(const WebcamWriter&) = delete;

    /// Encodes a picture. `time`: seconds from the start of the movie, [0, ∞); one that is not
    /// later than the one before counts as one tick of 1/60000 s later. False for a picture that
    /// is damaged, or too small: it is left out.
    ///
    /// Throws `Error` as the constructor.
    bool append(const CameraPicture& picture, double time);

    /// Completes the movie and closes it. To be called once. Throws as `append`, also for a movie
    /// without a picture.
    void finish();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento
