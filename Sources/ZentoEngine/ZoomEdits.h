#pragma once

#include "ZentoCore/Overrides.h"
#include "ZentoEngine/EventLog.h"
#include "ZentoEngine/Moment.h"

#include <vector>

namespace zento::EditPlanner {

/// The moments as the camera should see them: moved, releveled and deleted as the user wished, with
/// the zooms made by hand added. Sorted by `start`.
///
/// Edits apply one after the other, so a later one sees the moves of the earlier ones. An edit
/// farther than `kZoomIdentityTolerance` from every moment is ignored. Scrolls cannot be deleted,
/// nor can zooms made by hand.
std::vector<Moment>
applyZoomEdits(std::vector<Moment> moments, const Overrides& overrides, const EventLog& events);

} // namespace zento::EditPlanner
