#pragma once

#include "ZentoCore/StyleSpec.h"
#include "ZentoRender/Screenshot/ShotComposer.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zento {

/// A named look of a screenshot.
struct ShotPreset {
    std::string id;
    std::string name; // shown to the user
    ShotStyle style;

    bool operator==(const ShotPreset&) const = default;
};

struct ShotPresetGroup {
    std::string name; // "Looks", "Gradients", "Mesh", "Patterns", "Solids", "Wallpapers"
    std::vector<ShotPreset> presets;
};

namespace ShotPresets {

inline constexpr std::string_view kMatch = "match"; // the look of the user's films

/// The fixed looks. Threading: made once on first use, immutable.
std::span<const ShotPreset> all();

/// The style "match" stands for.
ShotStyle match(const StyleSpec& style);

/// Wallpapers as {path, name}.
struct Picture {
    std::filesystem::path path;
    std::string name;
};
std::vector<ShotPreset>
wallpapers(const std::optional<std::string>& desktopImage, std::span<const Picture> pictures);

/// "match" and the fixed looks first, then the catalogue of backgrounds as looks.
std::vector<ShotPresetGroup> groups(const StyleSpec& style, std::vector<ShotPreset> wallpapers);

} // namespace ShotPresets
} // namespace zento
