#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoCore/Overrides.h"
#include "ZentoCore/RemapCurve.h"
#include "ZentoCore/SessionMeta.h"
#include "ZentoEngine/Moment.h"
#include "ZentoEngine/PlanConfig.h"

#include <optional>
#include <span>
#include <vector>

namespace zento::EditPlanner {

struct CameraScript {
    std::vector<CameraKeyframe> keyframes; // by tOut; the first shows the whole frame at 0
    std::vector<FocusMoment> focusMoments; // in moment order
    bool operator==(const CameraScript&) const = default;
};

/// Decides where the camera looks in output time: in on clicks, typing and the user's zooms, out
/// for scrolls, long pauses and the end.
///
/// Writes targets only; the movement between them is the camera rig's. `moments` are the edited
/// ones; those whose start is cut from the film are ignored. A moment within 0.08 s of `heroTime`
/// gets the closest zoom and, like any moment the user has touched, is never left out for the sake
/// of calm. A disabled zoom stays in `focusMoments` without a keyframe.
///
/// A hold shortens a zoom and does not keep it: where nothing is shown for more than `wideAfter` +
/// 1.2 s after a keyframe the camera goes wide `wideAfter` after it, within a hold as elsewhere.
/// With the defaults a zoom that is held for more than 3.45 s goes wide 2.25 s after its moment,
/// and is at 1.0, but for what an eye can see, about 1.2 s later.
CameraScript buildCamera(
    std::span<const Moment> moments,
    const RemapCurve& remap,
    const SessionMeta& meta,
    const PlanConfig& config,
    const Overrides& overrides,
    std::optional<double> heroTime);

} // namespace zento::EditPlanner
