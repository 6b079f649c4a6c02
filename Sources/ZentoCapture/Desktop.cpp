#include "ZentoCapture/Desktop.h"

#include "ZentoCore/Error.h"

#include <algorithm>

namespace zento {

std::unique_ptr<ScrollWheel> Desktop::scrollWheel(const std::stop_token& /*stop*/)
{
    throw Error(ErrorCode::kNoInput, "this desktop does not let programs scroll");
}

namespace {

bool contains(const Rect& rect, Vec2 point)
{
    return point.x >= rect.x && point.x < rect.x + rect.w && point.y >= rect.y
           && point.y < rect.y + rect.h;
}

} // namespace

std::optional<std::uint32_t> displayID(Vec2 containing, std::span<const DisplayInfo> displays)
{
    if (displays.empty()) {
        return {};
    }
    auto found = std::ranges::find_if(
        displays, [&](const DisplayInfo& display) { return contains(display.bounds, containing); });
    if (found == displays.end()) {
        found = std::ranges::find(displays, DisplayRole::Main, &DisplayInfo::role);
    }
    return found == displays.end() ? displays.front().id : found->id;
}

std::optional<std::uint32_t>
displayIDUnderCursor(Desktop& desktop, std::span<const DisplayInfo> displays)
{
    return displayID(desktop.pointerPosition().value_or(Vec2{}), displays);
}

} // namespace zento
