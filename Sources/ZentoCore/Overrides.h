#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zento {

/// How near two source times must lie to mean the same zoom, in seconds, inclusive.
inline constexpr double kZoomIdentityTolerance = 0.35;

/// The user's edits as the planner takes them. All times are source seconds.
struct Overrides {
    struct SourceRange {
        double start = 0;
        double end = 0;
        bool operator==(const SourceRange&) const = default;
    };

    struct ZoomEdit {
        double sourceTime = 0; // the zoom's identity: where it was first found
        std::optional<double> newSourceTime;
        std::optional<double> hold; // seconds
        std::optional<double> level;
        bool operator==(const ZoomEdit&) const = default;
    };

    struct AddedZoom {
        double id = 0; // where it was first added
        double sourceTime = 0;
        double hold = 0; // seconds
        double level = 1;
        bool operator==(const AddedZoom&) const = default;
    };

    std::vector<double> disabledZoomSourceTimes;
    std::vector<SourceRange> removedRanges;
    std::vector<ZoomEdit> zoomEdits;
    std::vector<AddedZoom> addedZooms;
    std::vector<double> deletedZoomSourceTimes;

    bool isEmpty() const;

    /// The nearest edit (the earliest on a tie), if it lies within the tolerance.
    std::optional<ZoomEdit> edit(double near, double tolerance = kZoomIdentityTolerance) const;
    bool zoomDisabled(double near, double tolerance = kZoomIdentityTolerance) const;
    bool zoomDeleted(double near, double tolerance = kZoomIdentityTolerance) const;

    bool operator==(const Overrides&) const = default;
};

/// The document "overrides.json": the edits as they are kept, with the trim as two plain times.
struct SavedOverrides {
    std::vector<double> disabledZooms; // ascending
    double trimStart = 0;              // 0: none
    double trimEnd = 0;                // 0: none
    double musicStart = 0;             // seconds into the track; 0: unset
    double musicEnd = 0;
    std::vector<Overrides::ZoomEdit> zoomEdits;
    std::vector<Overrides::AddedZoom> addedZooms;
    std::vector<double> deletedZooms; // ascending

    /// The planner's record for a source of `duration` seconds.
    Overrides overrides(double duration) const;

    bool operator==(const SavedOverrides&) const = default;
};

/// JSON forms. The decoders throw `Error`. Saved edits are one a zoom: for two of one source time
/// the code is `ErrorCode::kNoDefinedPlan`. `Overrides` are applied one after the other and may
/// repeat.
std::string encodeOverrides(const Overrides& overrides);
Overrides decodeOverrides(std::string_view json);
std::string encodeSavedOverrides(const SavedOverrides& saved);
SavedOverrides decodeSavedOverrides(std::string_view json);

} // namespace zento
