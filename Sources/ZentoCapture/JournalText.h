#pragma once

#include "ZentoCapture/EventLog.h"
#include "ZentoCore/SessionMeta.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zento {

/// The files a recording may have beside its movie.
enum class SideFile : unsigned char { Narration, Webcam, SystemAudio };

/// "narration.wav", …
std::string_view fileName(SideFile file);

// The journal of a recording is a text of lines, each a JSON object that says by its keys what it
// is. The first line holds the facts of the recording. Times are on the host's clock, in seconds.

namespace JournalText {

std::string facts(const SessionMeta& meta);
std::string epoch(double hostTime);
std::string start(SideFile file, double hostTime);
std::string news(const EventNews& news);

} // namespace JournalText

/// What a journal holds.
struct JournalContents {
    SessionMeta meta; // without the duration and the offsets
    std::optional<double> epoch;
    std::map<SideFile, double> starts;
    std::vector<InputEvent> events; // in the order they arrived, times on the host's clock
};

/// Reads up to the first line that is not whole: what a cut leaves behind. Throws `Error` with the
/// code `kUndecodable` if that is the first line of all.
JournalContents decodeJournal(std::string_view text);

} // namespace zento
