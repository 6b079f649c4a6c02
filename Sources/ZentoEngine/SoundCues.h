#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoCore/RemapCurve.h"
#include "ZentoEngine/EventLog.h"
#include "ZentoEngine/PlanConfig.h"

#include <span>
#include <vector>

namespace zento::EditPlanner {

/// The clicks that survive the cuts, of any button, in recording order and in source time.
std::vector<ClickMarker> clickMarkers(const EventLog& events, const RemapCurve& remap);

/// A click for each marker, then a whoosh for each big change of zoom, which starts with the
/// camera's move. Not sorted.
std::vector<SFXCue> soundCues(
    std::span<const ClickMarker> clicks,
    std::span<const CameraKeyframe> camera,
    const RemapCurve& remap,
    const PlanConfig& config);

} // namespace zento::EditPlanner
