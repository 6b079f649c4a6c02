#pragma once

#include <optional>
#include <string>

namespace zento {

/// The facts of one recording, stored as "meta.json".
struct SessionMeta {
    std::optional<std::string> appName; // the application that was recorded
    int pixelWidth = 0;
    int pixelHeight = 0;
    double scaleFactor = 0; // pixels per point of the recorded display
    double nominalFPS = 0;
    double duration = 0;                     // seconds from the epoch to the last video frame
    std::optional<double> narrationOffset;   // start of "narration.wav" in source seconds
    std::optional<double> webcamOffset;      // the same for "webcam.mov"
    std::optional<double> systemAudioOffset; // the same for "system.wav"
    std::optional<std::string> title;        // the name the user gave the recording
    std::optional<std::string> input; // "pointer": the log has the pointer's way alone, as clicks
                                      // and keys could not be read; absent: all of it

    bool hasPointerOnly() const { return input == "pointer"; }

    bool operator==(const SessionMeta&) const = default;
};

} // namespace zento
