#pragma once

#include "Zento/Commands/Interruption.h"
#include "ZentoCapture/CaptureSession.h"

#include <filesystem>

namespace zento {

/// A recording that runs from its construction to `finish`. One that never began, has no picture or
/// is dropped unfinished leaves no folder behind.
class Recording {
public:
    /// What is recorded beside the screen.
    struct Sources {
        bool microphone = false;
        bool camera = false;
        bool systemAudio = false;
    };

    /// Throws `Error`, starting with "Could not start recording: ". A capture that the desktop ends
    /// requests a stop of `interruption`.
    Recording(
        std::filesystem::path bundle,
        Desktop& desktop,
        const CaptureTarget& target,
        const Sources& sources,
        Interruption& interruption);
    ~Recording();
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    /// Writes the bundle and returns its folder. Throws `Error`; where pictures were taken the
    /// folder stays, and the sentence says so.
    std::filesystem::path finish();

    /// The recording's epoch in seconds of the monotonic clock; only after `finish`.
    double epoch() const { return m_session.epoch().value_or(0); }

private:
    std::filesystem::path m_bundle;
    CaptureSession m_session;
    bool m_isKept = false;
};

} // namespace zento
