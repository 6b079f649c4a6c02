#pragma once

#include "ZentoCore/RemapCurve.h"
#include "ZentoEngine/EditPlanner.h"
#include "ZentoEngine/EventLog.h"
#include "ZentoEngine/Moment.h"

#include <optional>
#include <string>
#include <vector>

// Short ways to write down events and moments.

namespace zento::test {

inline InputEvent event(double t, EventKind kind, Vec2 pos = {500, 500})
{
    InputEvent result;
    result.t = t;
    result.kind = kind;
    result.pos = pos;
    return result;
}

inline InputEvent click(double t, Vec2 pos = {500, 500})
{
    return event(t, EventKind::Click, pos);
}

inline InputEvent clickOn(double t, const std::string& role, Rect frame)
{
    InputEvent result = click(t);
    result.ax = AXInfo{role, frame, "title"};
    return result;
}

inline InputEvent key(double t, std::optional<std::string> label = "a")
{
    InputEvent result = event(t, EventKind::KeyDown);
    result.key = std::move(label);
    return result;
}

inline SessionMeta meta(double duration = 100)
{
    SessionMeta result;
    result.pixelWidth = 1000;
    result.pixelHeight = 1000;
    result.duration = duration;
    return result;
}

inline EditPlanner::Moment
moment(EditPlanner::Moment::Kind kind, double start, double end, Vec2 pos = {500, 500})
{
    EditPlanner::Moment result;
    result.kind = kind;
    result.start = start;
    result.end = end;
    result.pos = pos;
    return result;
}

/// A film that is the source.
inline RemapCurve wholeFilm(double duration = 100)
{
    return RemapCurve({{0, duration, 1}});
}

} // namespace zento::test
