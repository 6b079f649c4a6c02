#pragma once

#include "ZentoCore/Analyses.h"
#include "ZentoCore/SessionMeta.h"
#include "ZentoEngine/EventLog.h"
#include "ZentoEngine/Moment.h"

#include <optional>
#include <span>
#include <vector>

namespace zento::EditPlanner {

/// Condenses the log into moments, sorted by `start`; at equal starts clicks come before typing and
/// typing before scrolls.
///
/// Every click is a moment, every scroll too; keys are one from two in a row on, and typing is
/// framed by the text field that was last clicked before it. A frame that cannot serve the camera
/// is replaced by a framing hint of that instant, if there is a usable one.
std::vector<Moment> detectMoments(
    const EventLog& events, const SessionMeta& meta, std::span<const FramingHint> framingHints);

/// `hint` unchanged, if it can serve the camera: not small, not nearly the whole picture, not far
/// outside. Its limits are deliberately not those of `AXInfo::usableFrame`: a hint comes from the
/// picture and may be larger than a control.
std::optional<Rect> sanitizedHint(const Rect& hint, const SessionMeta& meta);

} // namespace zento::EditPlanner
