#pragma once

#include "ZentoCore/Geometry.h"
#include "ZentoCore/StyleSpec.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zento {

// Two clocks: `tOut` and `tOutEnd` are seconds of output time, on the finished film without its
// title card; every other time is seconds of source time. Positions are recording pixels.

struct OutputSpec {
    int width = 0; // pixels of the film
    int height = 0;
    double fps = 0;
    bool operator==(const OutputSpec&) const = default;
};

/// A kept stretch of the source. Source time in no segment is cut.
struct SpeedSegment {
    double sourceStart = 0;
    double sourceEnd = 0;
    double speed = 1; // source seconds per output second
    bool operator==(const SpeedSegment&) const = default;
};

/// From `tOut` on the camera aims at `center` with `zoom`.
struct CameraKeyframe {
    double tOut = 0;
    Vec2 center;
    double zoom = 1; // 1 shows the whole frame
    bool operator==(const CameraKeyframe&) const = default;
};

struct CursorSample {
    double t = 0; // source time
    Vec2 pos;
    std::string style; // "arrow", "iBeam", "pointingHand"
    bool operator==(const CursorSample&) const = default;
};

struct ClickMarker {
    double t = 0; // source time, unlike the other timed items of a plan
    Vec2 pos;
    bool operator==(const ClickMarker&) const = default;
};

struct SFXCue {
    double tOut = 0;
    std::string kind; // "click", "whoosh"
    double gain = 1;  // factor
    bool operator==(const SFXCue&) const = default;
};

struct DuckPoint {
    double tOut = 0;
    double gainDb = 0;
    bool operator==(const DuckPoint&) const = default;
};

struct MusicPlan {
    std::string file; // full path
    double gainDb = 0;
    double sourceOffset = 0; // seconds into the track
    double fadeIn = 0;       // seconds
    double fadeOut = 0;
    std::vector<DuckPoint> duckPoints;
    std::optional<double> playDuration; // absent: to the end of the film
    bool operator==(const MusicPlan&) const = default;
};

/// One zoom as the user sees it. `sourceTime` is its identity.
struct FocusMoment {
    double sourceTime = 0; // where it was first found
    std::string kind;      // "click", "typing", "scroll", "added", "dwell"
    std::optional<std::string> title;
    double zoom = 1;
    std::optional<double> effectiveSourceTime; // after a user's move
    std::optional<double> hold;                // seconds
    bool operator==(const FocusMoment&) const = default;
};

struct KeystrokeChip {
    double tOut = 0;
    double tOutEnd = 0;
    std::string label;
    bool operator==(const KeystrokeChip&) const = default;
};

struct CaptionChip {
    double tOut = 0;
    double tOutEnd = 0;
    std::string text;
    bool operator==(const CaptionChip&) const = default;
};

struct ChapterMarker {
    double tOut = 0;
    std::string title;
    bool operator==(const ChapterMarker&) const = default;
};

/// A recorded sound track: the microphone or the system's audio.
struct NarrationPlan {
    std::string file;  // full path, or a bare name inside the bundle
    double offset = 0; // its start on the source clock
    double gainDb = 0;
    bool operator==(const NarrationPlan&) const = default;
};

struct WebcamPlan {
    std::string file;
    double offset = 0; // its start on the source clock
    std::string corner = "bottomLeft";
    double size = 0.24;           // fraction of the frame height
    std::string shape = "circle"; // "circle", "rounded", "square"
    bool ring = true;
    double roundness = 0.5; // corner radius, fraction of the bubble, [0, 0.5]
    bool mirror = false;
    double zoom = 1; // [1, ∞)
    bool shadow = true;
    bool enhance = false;
    bool blurBackground = false;

    /// The corner radius a shape stands for, as a fraction of the bubble.
    static double roundnessForShape(std::string_view shape);

    bool operator==(const WebcamPlan&) const = default;
};

struct TextCard {
    std::string title;
    std::optional<std::string> subtitle;
    double duration = 2.2; // seconds
    std::string design = "classic";
    std::string accentHex = "#7C6CFF";
    bool operator==(const TextCard&) const = default;
};

/// The whole recipe of a film: derived data, recomputed whenever its inputs change.
struct EditPlan {
    OutputSpec output;
    StyleSpec style;
    std::vector<SpeedSegment> timeRemap; // ascending, not overlapping
    std::vector<CameraKeyframe> camera;
    std::vector<CursorSample> cursor;
    std::vector<ClickMarker> clicks;
    std::vector<SFXCue> sfx;
    std::optional<MusicPlan> music;
    std::optional<std::vector<FocusMoment>> focusMoments;
    std::optional<std::vector<KeystrokeChip>> keystrokes;
    std::optional<std::vector<CaptionChip>> captions;
    std::optional<NarrationPlan> narration;
    std::optional<std::vector<ChapterMarker>> chapters;
    std::optional<WebcamPlan> webcam;
    std::optional<NarrationPlan> systemAudio;
    std::optional<TextCard> titleCard;
    std::optional<TextCard> endCard;

    /// The cheap conversions, without the speed ramps of `RemapCurve`. A time inside a cut maps to
    /// the end of the stretch before it; 0 for an empty `timeRemap`.
    double outputTime(double sourceTime) const;
    double sourceTime(double outputTime) const;

    bool operator==(const EditPlan&) const = default;
};

/// The text of "editplan.json", and back. `decodePlan` throws `Error`; it ignores unknown keys.
std::string encodePlan(const EditPlan& plan);
EditPlan decodePlan(std::string_view json);

} // namespace zento
