#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoCore/SessionBundle.h"

#include <filesystem>
#include <functional>
#include <stop_token>

namespace zento {

class RemapCurve;
struct FilmFormat;
struct FilmFrames;

/// How the pictures of a film of that size and rate are encoded.
FilmFormat filmFormat(const OutputSpec& output);

/// Writes the finished film of a recording: the title card, the main part, the end card.
///
/// The film is made under a temporary name beside the target and takes the target's name when it is
/// complete. A plan with sound has its soundtrack made meanwhile and joined to the pictures in the
/// end, through two more temporary files. A failure or a cancellation removes them all and leaves a
/// film that was there before untouched.
///
/// Threading: one call at a time. A call decodes, composes and makes the sound on three threads of
/// its own and encodes on the caller's.
class OfflineExporter {
public:
    struct Progress {
        int frame = 0; // frames written, from 1
        int totalFrames = 0;
        bool operator==(const Progress&) const = default;
    };
    using ProgressCallback = std::function<void(const Progress&)>;

    /// What is done about a frame that looks like the one before it. The film is the same to the
    /// byte; composing every frame anew is for proving that.
    enum class Repeats { Reuse, Compose };

    OfflineExporter(SessionBundle bundle, EditPlan plan, Repeats repeats = Repeats::Reuse);

    /// Renders the plan to the MP4 file `to`, replacing it.
    ///
    /// `onProgress` may be empty; it is called on this thread after every frame and must be quick.
    /// Throws `Error`, with the code `kCancelled` soon after `stop` is requested.
    void exportFilm(
        const std::filesystem::path& to,
        const ProgressCallback& onProgress = {},
        const std::stop_token& stop = {}) const;

private:
    void writeFilm(
        const std::filesystem::path& to,
        const RemapCurve& curve,
        const FilmFrames& frames,
        const ProgressCallback& onProgress,
        const std::stop_token& stop) const;

    SessionBundle m_bundle;
    EditPlan m_plan;
    Repeats m_repeats;
};

} // namespace zento
