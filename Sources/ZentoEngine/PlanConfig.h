#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zento {

/// How the planner cuts, zooms and decorates. Durations are seconds: of source time for what is cut
/// and sped up, of output time for the camera.
struct PlanConfig {
    // A gap between moments is cut when it exceeds idleThreshold + preHandle + postHandle.
    double idleThreshold = 1.6;
    double preHandle = 0.45; // kept before the moment that ends a cut gap
    double postHandle = 0.6; // kept after the moment that begins a cut gap

    double typingSpeed = 2.4; // (0, ∞), source seconds per output second
    double scrollSpeed = 1.6; // (0, ∞)

    // Index 0 is the wide level, never chosen for a moment; the last one is the hero zoom.
    std::vector<double> zoomLevels = {1.0, 1.35, 1.6, 1.9};
    double focusFraction = 0.18; // share of the source width a focus rectangle should fill
    double cameraLead = 0.35;    // how much earlier than its moment the camera starts moving
    double minKeyframeSpacing = 0.8;
    double wideAfter = 2.6; // how long a zoom lasts in a long pause

    bool clickSFX = true;
    bool whooshSFX = true;
    bool showKeystrokes = false;
    bool pointerOnClick = true; // the pointing hand around clicks
    bool operator==(const PlanConfig&) const = default;
};

/// JSON form: the field names in the order of the record, all required. `decodePlanConfig` throws
/// `Error`.
std::string encodePlanConfig(const PlanConfig& config);
PlanConfig decodePlanConfig(std::string_view json);

} // namespace zento
