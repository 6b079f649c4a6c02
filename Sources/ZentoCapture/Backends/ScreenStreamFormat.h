#pragma once

#include "ZentoCapture/Backends/ScreenPixels.h"

#include <optional>
#include <vector>

struct spa_pod;         // NOLINT(readability-identifier-naming): the library's own name
struct spa_pod_builder; // NOLINT(readability-identifier-naming): the library's own name

namespace zento {

/// The form of a screen's pictures.
struct ScreenForm {
    int width = 0; // pixels, of the whole buffer
    int height = 0;
    PixelOrder order;
    bool isLinear = false; // said to be so, which memory of a graphics card has to be for us
    bool operator==(const ScreenForm&) const = default;
};

// What we would have of a screen, in the builder's memory: at first, and once the form is known.
std::vector<const spa_pod*> wantedScreenFormats(spa_pod_builder& builder);
std::vector<const spa_pod*> wantedScreenBuffers(spa_pod_builder& builder, const ScreenForm& form);

/// Nothing for a form we do not read.
std::optional<ScreenForm> screenForm(const spa_pod& format);

} // namespace zento
