#pragma once

#include "ZentoCore/InputEvent.h"
#include "ZentoCore/SessionMeta.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace zento {

/// One recording: a folder of plain files, with its facts and its input log in memory.
///
/// A value; whoever needs a bundle loads its own. Loading and writing block on files.
struct SessionBundle {
    std::filesystem::path url; // the folder
    SessionMeta meta;
    std::vector<InputEvent> events; // ascending by t when written by a recording

    std::filesystem::path screenMovieURL() const { return url / "screen.mov"; }
    std::filesystem::path narrationURL() const { return url / "narration.wav"; }
    std::filesystem::path webcamURL() const { return url / "webcam.mov"; }
    std::filesystem::path systemAudioURL() const { return url / "system.wav"; }
    std::filesystem::path eventsURL() const { return url / "events.jsonl"; }
    std::filesystem::path metaURL() const { return url / "meta.json"; }
    std::filesystem::path editPlanURL() const { return url / "editplan.json"; }
    std::filesystem::path overridesURL() const { return url / "overrides.json"; }
    std::filesystem::path transcriptURL() const { return url / "transcript.json"; }
    std::filesystem::path framingURL() const { return url / "framing.json"; }
    std::filesystem::path semanticsURL() const { return url / "semantics.json"; }
    std::filesystem::path copyURL() const { return url / "copy.json"; }
    std::filesystem::path musicURL() const { return url / "music.m4a"; }

    /// The finished film: it lies beside the bundle, not in it.
    std::filesystem::path filmURL() const;

    /// Reads "meta.json" and "events.jsonl". Throws `Error`, naming the file and the reason.
    static SessionBundle load(const std::filesystem::path& url);

    /// Creates the folder if needed and writes "meta.json", then "events.jsonl", each whole.
    /// Throws `Error` at the first failure.
    void writeMetadata() const;
};

/// The folder all bundles lie in: "Zento" in the user's videos folder (XDG user-dirs are honoured).
std::filesystem::path sessionsFolder();

/// The folder name of a recording started at `start`: "2026-03-09T14-05-33Z.zento", in UTC.
std::string bundleName(std::chrono::system_clock::time_point start);

/// The text of "meta.json", and back. `decodeMeta` throws `Error`.
std::string encodeMeta(const SessionMeta& meta);
SessionMeta decodeMeta(std::string_view json);

/// The text of "events.jsonl": one compact record a line. The first line that does not decode fails
/// the whole call with an `Error` that names the line.
namespace JSONL {
std::string encode(const std::vector<InputEvent>& events);
std::vector<InputEvent> decode(std::string_view bytes);
} // namespace JSONL

} // namespace zento
