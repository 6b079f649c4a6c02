#pragma once

#include "Zento/Model/AppSettings.h"
#include "ZentoCore/Overrides.h"
#include "ZentoCore/SessionBundle.h"
#include "ZentoEngine/MusicInfo.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>

namespace zento {

/// How far a film is. A GIF's frames are the thousandths of its making.
struct FilmProgress {
    int frame = 0; // written, [0, totalFrames]
    int totalFrames = 1;

    double fraction() const { return static_cast<double>(frame) / totalFrames; }
    bool operator==(const FilmProgress&) const = default;
};

/// What the maker of a film wants to hear while it is made, on the thread that makes it. Both may
/// be empty and must be quick.
struct FilmReports {
    std::function<void(FilmProgress)> onProgress;
    /// Music that cannot be read is left out of the film; the sentence says why.
    std::function<void(const std::string&)> onMusicLeftOut;
};

/// `analyzedMusic`, with what cannot be read told to `onLeftOut` and left out. Throws `Error` with
/// the code `kCancelled` only.
std::optional<EditPlanner::MusicInfo> readableMusic(
    const SessionBundle& bundle,
    const SavedOverrides& edits,
    const std::function<void(const std::string&)>& onLeftOut,
    const std::stop_token& stop = {});

/// Plans a recording, keeps the plan as "editplan.json" in its bundle and renders the film to
/// `film`, replacing it. A failure leaves the bundle and a film that was there as they were.
/// `desktopImage` is the picture behind the desktop's windows, for a background that shows it.
///
/// Blocks for as long as it takes. Threading: any thread; one film of a bundle at a time. Throws
/// `Error`, with the code `kCancelled` soon after `stop` is requested.
void renderFilm(
    const SessionBundle& bundle,
    const AppSettings& settings,
    const std::filesystem::path& film,
    const std::optional<std::string>& desktopImage,
    const FilmReports& reports,
    const std::stop_token& stop);

/// Turns a film into a GIF of the size and rate Zento makes them in. As `renderFilm`.
void renderGif(
    const std::filesystem::path& film,
    const std::filesystem::path& gif,
    const FilmReports& reports,
    const std::stop_token& stop);

} // namespace zento
