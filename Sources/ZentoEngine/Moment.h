#pragma once

#include "ZentoCore/Geometry.h"

#include <optional>
#include <string>

namespace zento::EditPlanner {

/// A stretch of the recording in which something happens that the viewer must see. Times are source
/// seconds, places recording pixels. Lives only while a plan is computed.
struct Moment {
    /// A dwell is where the pointer rested, and activity what was no idle time, in a recording
    /// whose clicks and keys nobody saw.
    enum class Kind : unsigned char { Click, Typing, Scroll, Added, Dwell, Activity };

    Kind kind = Kind::Click;
    double start = 0;
    double end = 0; // padded: later than the last event
    Vec2 pos;
    std::optional<Rect> focus; // what the camera should frame
    std::optional<std::string> title;
    std::optional<double> editKey; // the identity under which the user's edits know it, if edited
    std::optional<double> forcedZoom;
    std::optional<double> hold; // seconds, set by the user
    bool operator==(const Moment&) const = default;

    /// The source time by which the user's edits find this moment.
    double key() const { return editKey.value_or(start); }
};

} // namespace zento::EditPlanner
