#pragma once

#include "Zento/Commands/Arguments.h"
#include "ZentoCapture/CaptureTarget.h"
#include "ZentoCapture/Desktop.h"

#include <cstdint>
#include <optional>

namespace zento {

/// A target's words; which display a number means is for the desktop to say.
struct TargetChoice {
    std::optional<int> screen;
    std::optional<std::uint32_t> window;
    std::optional<Rect> area;
};

/// Of "--screen", "--window" and "--area". Throws `UsageError` for more than one.
TargetChoice readTarget(const Arguments& arguments);

/// The display under the pointer without a choice. Throws `Error` for what the desktop has not.
CaptureTarget chosenTarget(const TargetChoice& choice, Desktop& desktop);

} // namespace zento
