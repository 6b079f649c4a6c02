#pragma once

#include "ZentoCore/Overrides.h"

#include <string_view>

namespace zento {

/// The saved edits after one edit, and what undoing it is called.
struct EditStep {
    SavedOverrides edits;
    std::string_view name;

    bool operator==(const EditStep&) const = default;
};

/// What a step under one of these names is called in the menu; bursts of one name are one step.
namespace EditName {
inline constexpr std::string_view kSettings = "Settings";
inline constexpr std::string_view kZoom = "Zoom";
inline constexpr std::string_view kZoomEdit = "Zoom Edit";
inline constexpr std::string_view kDeleteZoom = "Delete Zoom";
inline constexpr std::string_view kTrim = "Trim";
inline constexpr std::string_view kMusicSection = "Music Section";
} // namespace EditName

// Edits of zooms, as values. `id` is a zoom's identity: where it was first found or added. An added
// zoom of exactly that id is meant, or else a planned one. Times are source seconds.

EditStep toggleZoom(SavedOverrides edits, double id);
EditStep moveZoom(SavedOverrides edits, double id, double toSource);
EditStep resizeZoom(SavedOverrides edits, double id, double hold); // at least 0.4 s
EditStep setZoomLevel(SavedOverrides edits, double id, double level);
/// Holds for 1.6 s. An id that is taken is avoided by the smallest step there is.
EditStep addZoom(SavedOverrides edits, double atSource, double level);
EditStep deleteZoom(SavedOverrides edits, double id);
/// A planned zoom is as it was found again; an added one goes.
EditStep resetZoom(SavedOverrides edits, double id);
EditStep restoreDeletedZooms(SavedOverrides edits);

bool isAddedZoom(const SavedOverrides& edits, double id);

} // namespace zento
