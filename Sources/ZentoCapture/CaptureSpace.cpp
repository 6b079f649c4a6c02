#include "ZentoCapture/CaptureSpace.h"

#include "ZentoCapture/KeyLabel.h"

#include <algorithm>

namespace zento {

Vec2 CaptureSpace::map(Vec2 point) const
{
    const double factor = fitScale * windowScale;
    return {
        factor * ((point.x - originPoints.x) * scale),
        factor * ((point.y - originPoints.y) * scale)};
}

Rect CaptureSpace::map(const Rect& rect) const
{
    const Vec2 corner = map(Vec2{rect.x, rect.y});
    const double factor = fitScale * windowScale;
    return {corner.x, corner.y, rect.w * scale * factor, rect.h * scale * factor};
}

double shownScale(Vec2 recorded, Vec2 current)
{
    return std::min(recorded.x / current.x, recorded.y / current.y);
}

CaptureSpace following(const CaptureSpace& space, const Rect& frame, Vec2 recorded)
{
    if (frame.w <= 1 || frame.h <= 0) {
        return space;
    }
    CaptureSpace moved = space;
    moved.originPoints = {frame.x, frame.y};
    moved.windowScale = recorded.x / frame.w;
    moved.fitScale = shownScale(recorded, {frame.w, frame.h}) / moved.windowScale;
    return moved;
}

InputEvent inputEvent(const RawInput& input, const CaptureSpace& space)
{
    InputEvent event{.t = input.time, .pos = space.map(input.point)};
    switch (input.type) {
    case RawInputType::LeftDown:
        event.kind = EventKind::Click;
        event.button = 0;
        break;
    case RawInputType::LeftUp:
        event.kind = EventKind::MouseUp;
        event.button = 0;
        break;
    case RawInputType::RightDown:
        event.kind = EventKind::Click;
        event.button = 1;
        break;
    case RawInputType::KeyDown:
        event.kind = EventKind::KeyDown;
        event.key = KeyLabel::label(input.keyCode, input.flags);
        break;
    case RawInputType::Scroll:
        event.kind = EventKind::Scroll;
        event.scroll = Vec2{input.scroll.x * space.scale, input.scroll.y * space.scale};
        break;
    }
    return event;
}

std::optional<AXInfo> axInfo(const Element& element, const CaptureSpace& space)
{
    if (element.frame.w <= 0 || element.frame.h <= 0) {
        return {};
    }
    return AXInfo{
        .role = element.role.value_or("AXUnknown"),
        .frame = space.map(element.frame),
        .title = element.title};
}

} // namespace zento
