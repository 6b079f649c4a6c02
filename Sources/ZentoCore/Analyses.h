#pragma once

#include "ZentoCore/Geometry.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zento {

// What the analyses of a recording leave in its bundle. All times are source seconds.

/// A stretch of narration. An empty text is still speech, without a caption.
struct TranscriptSegment {
    double start = 0;
    double end = 0;
    std::string text;
    bool operator==(const TranscriptSegment&) const = default;
};

/// A place of interest in the picture at one moment.
struct FramingHint {
    double sourceTime = 0;
    Rect rect; // recording pixels
    bool operator==(const FramingHint&) const = default;
};

/// The story of the recording.
struct SemanticNotes {
    struct Chapter {
        double sourceTime = 0;
        std::string title;
        bool operator==(const Chapter&) const = default;
    };

    std::optional<double> heroSourceTime; // the most telling moment
    std::vector<Chapter> chapters;
    bool operator==(const SemanticNotes&) const = default;
};

/// What a film is announced with.
struct VideoCopy {
    std::string title;
    std::string caption;
    std::string socialPost;
    bool generatedByModel = false; // or from templates
    bool operator==(const VideoCopy&) const = default;
};

/// "transcript.json", "framing.json" and "semantics.json". The decoders throw `Error`.
std::string encodeTranscript(const std::vector<TranscriptSegment>& transcript);
std::vector<TranscriptSegment> decodeTranscript(std::string_view json);
std::string encodeFramingHints(const std::vector<FramingHint>& hints);
std::vector<FramingHint> decodeFramingHints(std::string_view json);
std::string encodeSemanticNotes(const SemanticNotes& notes);
SemanticNotes decodeSemanticNotes(std::string_view json);

/// "copy.json". The decoder throws `Error`.
std::string encodeVideoCopy(const VideoCopy& copy);
VideoCopy decodeVideoCopy(std::string_view json);

} // namespace zento
