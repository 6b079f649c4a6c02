#pragma once

#include "ZentoCapture/JournalText.h"

#include <cstdint>
#include <filesystem>
#include <stop_token>
#include <vector>

namespace zento {

namespace ErrorCode {
inline constexpr int kNotRecoverable = 70; // too little is left of a recording that was cut short
inline constexpr int kStillRecording = 71; // a program is at work on the recording
} // namespace ErrorCode

/// What became of a bundle.
struct Recovery {
    enum class Outcome : unsigned char {
        WasComplete, // and was not touched
        Completed,
    };

    Outcome outcome = Outcome::WasComplete;
    std::int64_t frameCount = 0; // of the movie; 0 if the bundle was complete
    double duration = 0;         // seconds of the recording
    std::vector<SideFile> lost;  // began, but are of no use and were removed
};

/// Whether a folder is a recording that was cut short and that no program is at work on. Cheap: for
/// a look through all bundles at a start.
bool isCutShort(const std::filesystem::path& bundle);

/// Completes the bundle of a recording that was cut short, as `CaptureSession::stop` would have
/// done, with all its files hold. Being ended on the way does no harm: it can be done again.
///
/// Throws `Error`, and has then changed nothing unless writing itself failed: `kStillRecording`;
/// `kNotRecoverable` for a folder without a journal, or one with too little in it;
/// `kReadingFailed` for a movie without a whole picture; `kCancelled`; the system's error.
Recovery recover(const std::filesystem::path& bundle, const std::stop_token& stop = {});

} // namespace zento
