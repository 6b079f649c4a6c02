#pragma once

#include "ZentoCore/Geometry.h"

#include <optional>
#include <string>
#include <string_view>

namespace zento {

struct SessionMeta;

enum class EventKind : unsigned char { Click, MouseUp, KeyDown, Scroll, Move, DragStart, DragEnd };

/// The name under which a kind is stored: "click", "mouseUp", "keyDown", …
std::string_view name(EventKind kind);
std::optional<EventKind> eventKind(std::string_view name);

/// What the accessibility layer said about the element under a click.
struct AXInfo {
    std::string role;
    Rect frame; // recording pixels
    std::optional<std::string> title;

    /// `frame`, if it can serve the camera as a region: not tiny, not a large pane, and not far
    /// outside the picture.
    std::optional<Rect> usableFrame(const SessionMeta& meta) const;

    bool operator==(const AXInfo&) const = default;
};

/// One entry of the input log.
struct InputEvent {
    double t = 0; // seconds of source time
    EventKind kind = EventKind::Move;
    Vec2 pos;                       // recording pixels; may lie outside the frame
    std::optional<int> button;      // 0 left, 1 right; on Click and MouseUp
    std::optional<std::string> key; // printable label with its modifiers; on KeyDown
    std::optional<Vec2> scroll;     // delta in recording pixels; on Scroll
    std::optional<AXInfo> ax;       // on Click, when the lookup succeeded

    bool operator==(const InputEvent&) const = default;
};

} // namespace zento
