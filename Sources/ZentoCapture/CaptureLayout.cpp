#include "ZentoCapture/CaptureLayout.h"

#include "ZentoCore/Error.h"

#include <algorithm>
#include <span>
#include <utility>
#include <variant>

namespace zento {

namespace {

int evenPixels(double points, double scale)
{
    // A whole number of pixels is one also where it was divided by a fraction of a scale.
    constexpr double kRounding = 1e-6;
    const int pixels = static_cast<int>(points * scale + kRounding);
    return pixels - pixels % 2;
}

/// Nothing for the targets that are no window.
std::optional<WindowInfo> chosenWindow(const CaptureTarget& target, Desktop& desktop)
{
    const auto* const wanted = std::get_if<Target::Window>(&target);
    if (wanted == nullptr) {
        return {};
    }
    auto window = desktop.window(wanted->windowID);
    if (!window) {
        throw Error(ErrorCode::kWindowGone, "window no longer exists");
    }
    return window;
}

/// The display a target lies on, by its id. `window` for a window's recording.
std::optional<std::uint32_t> targetDisplay(
    const CaptureTarget& target,
    const std::optional<WindowInfo>& window,
    std::span<const DisplayInfo> displays,
    Desktop& desktop)
{
    if (window) {
        return displayID(window->frame.center(), displays);
    }
    if (const auto* screen = std::get_if<Target::Screen>(&target)) {
        return screen->displayID;
    }
    if (const auto* area = std::get_if<Target::Area>(&target)) {
        return displayID(area->rect.center(), displays);
    }
    return displayIDUnderCursor(desktop, displays);
}

DisplayInfo chosenDisplay(
    const CaptureTarget& target, const std::optional<WindowInfo>& window, Desktop& desktop)
{
    const std::vector<DisplayInfo> displays = desktop.displays();
    const auto id = targetDisplay(target, window, displays, desktop);
    if (displays.empty()) {
        throw Error(ErrorCode::kNoDisplay, "no display available");
    }
    const auto found = std::ranges::find(displays, id, &DisplayInfo::id);
    return found == displays.end() ? displays.front() : *found;
}

} // namespace

CaptureLayout captureLayout(
    const CaptureTarget& target, Desktop& desktop, std::vector<std::uint32_t> excludedWindowIDs)
{
    CaptureLayout layout;
    layout.window = chosenWindow(target, desktop);
    layout.display = chosenDisplay(target, layout.window, desktop);
    const DisplayInfo& display = layout.display;
    const auto* const area = std::get_if<Target::Area>(&target);
    const Rect captured = layout.window ? layout.window->frame : area ? area->rect : display.bounds;
    layout.captured = captured;
    layout.request = {
        .displayID = display.id,
        .pixelWidth = evenPixels(captured.w, display.scale),
        .pixelHeight = evenPixels(captured.h, display.scale)};
    if (layout.window) {
        layout.request.window = RequestedWindow{
            .id = std::get<Target::Window>(target).windowID, .size = {captured.w, captured.h}};
    } else {
        layout.request.excludedWindowIDs = std::move(excludedWindowIDs);
    }
    if (area) {
        layout.request.sourceRect = Rect{
            captured.x - display.bounds.x, captured.y - display.bounds.y, captured.w, captured.h};
    }
    return layout;
}

} // namespace zento
