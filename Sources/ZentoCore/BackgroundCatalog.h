#pragma once

#include "ZentoCore/StyleSpec.h"

#include <span>
#include <string>
#include <string_view>

namespace zento {

/// A background the user can pick.
struct BackgroundPreset {
    std::string id;   // stable, stored in the settings
    std::string name; // shown to the user
    StyleSpec::Background background;
};

/// The fixed table of backgrounds, in the groups the gallery shows.
///
/// Threading: made once on first use, immutable.
namespace BackgroundCatalog {
std::span<const BackgroundPreset> duos();
std::span<const BackgroundPreset> trios();
std::span<const BackgroundPreset> meshes();
std::span<const BackgroundPreset> radials();
std::span<const BackgroundPreset> patterns();
std::span<const BackgroundPreset> solids();
std::span<const BackgroundPreset> all(); // the groups above, in that order

/// The first preset of that id, or null. Ids are not unique: an id of `trios` hides its namesake
/// in `radials`.
const BackgroundPreset* preset(std::string_view id);
} // namespace BackgroundCatalog

} // namespace zento
