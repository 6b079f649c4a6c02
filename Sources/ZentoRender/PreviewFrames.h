#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoCore/InputEvent.h"
#include "ZentoCore/RemapCurve.h"
#include "ZentoImaging/Picture.h"
#include "ZentoMedia/VideoFrame.h"

#include <filesystem>
#include <memory>
#include <vector>

namespace zento {

/// A film as the preview shows it: the main part of a plan, without its cards. A value that never
/// changes; its parts are shared with whoever planned it.
struct PreviewFilm {
    std::shared_ptr<const EditPlan> plan; // its output is the preview's size
    std::shared_ptr<const RemapCurve> curve;
    std::shared_ptr<const std::vector<InputEvent>> events;
    VideoSize master; // pixels of the recording
};

/// The movies a preview reads.
struct PreviewSource {
    std::filesystem::path screen; // the proxy, or the master while there is none
    std::filesystem::path bundle; // a webcam's file may be a name in this folder

    bool operator==(const PreviewSource&) const = default;
};

/// How much a frame may cost. A `Draft` has the webcam's picture of up to a second before where
/// that saves decoding what lies between; all else is the same.
enum class PreviewDetail : unsigned char { Exact, Draft };

/// The film's frame at any time of its main part. From the same source and at the same size it is
/// the export's frame, to the byte, with 60 frames a second, unless it is a draft.
///
/// Threading: one thread at a time. The pictures may go anywhere.
class PreviewFrames {
public:
    PreviewFrames();
    ~PreviewFrames();
    PreviewFrames(const PreviewFrames&) = delete;
    PreviewFrames& operator=(const PreviewFrames&) = delete;

    /// `tOut`: seconds within the main part, clamped. What stayed the same since the call before,
    /// open movies, the drawn background, the camera's path, is not made again.
    ///
    /// Throws `Error` for a movie that cannot be opened or a picture that cannot be read. A webcam
    /// that cannot be read is left out.
    std::shared_ptr<const Picture> frame(
        const std::shared_ptr<const PreviewFilm>& film,
        const PreviewSource& source,
        double tOut,
        PreviewDetail detail = PreviewDetail::Exact);

    /// Closes the movies.
    void close();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento
