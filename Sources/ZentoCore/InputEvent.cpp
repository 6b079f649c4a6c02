#include "ZentoCore/InputEvent.h"

#include "ZentoCore/SessionMeta.h"

#include <algorithm>
#include <array>

namespace zento {

namespace {

constexpr auto kNames = std::to_array<std::string_view>(
    {"click", "mouseUp", "keyDown", "scroll", "move", "dragStart", "dragEnd"});

} // namespace

std::string_view name(EventKind kind)
{
    return kNames.at(static_cast<std::size_t>(kind));
}

std::optional<EventKind> eventKind(std::string_view name)
{
    const auto found = std::ranges::find(kNames, name);
    if (found == kNames.end()) {
        return std::nullopt;
    }
    return static_cast<EventKind>(found - kNames.begin());
}

std::optional<Rect> AXInfo::usableFrame(const SessionMeta& meta) const
{
    const double width = meta.pixelWidth;
    const double height = meta.pixelHeight;
    const bool isLargeEnough = frame.w >= 8 && frame.h >= 8;
    const bool startsNear = frame.x >= -frame.w && frame.y >= -frame.h;
    const bool isSmallEnough = frame.w <= 0.6 * width && frame.h <= 0.6 * height;
    const bool endsNear = frame.x + frame.w <= 1.05 * width && frame.y + frame.h <= 1.05 * height;
    if (isLargeEnough && startsNear && isSmallEnough && endsNear) {
        return frame;
    }
    return std::nullopt;
}

} // namespace zento
