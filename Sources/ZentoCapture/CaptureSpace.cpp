#include "ZentoCapture/CaptureSpace.h"

#include "ZentoCapture/KeyLabel.h"

namespace zento {

Vec2 CaptureSpace::map(Vec2 point) const
{
    return {
        windowScale * ((point.x - originPoints.x) * scale),
        windowScale * ((point.y - originPoints.y) * scale)};
}

Rect CaptureSpace::map(const Rect& rect) const
{
    const Vec2 corner = map(Vec2{rect.x, rect.y});
    return {corner.x, corner.y, rect.w * scale * windowScale, rect.h * scale * windowScale};
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
