#pragma once

#include "ZentoCapture/Backends/PixelRect.h"
#include "ZentoCapture/Backends/ScreenPixels.h"
#include "ZentoCapture/Backends/ScreenStreamFormat.h"
#include "ZentoCore/Geometry.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

struct spa_buffer; // NOLINT(readability-identifier-naming): the library's own name

namespace zento {

/// What a desktop tells in one buffer.
struct ScreenUpdate {
    double time = 0;                       // seconds of CLOCK_MONOTONIC
    std::optional<ForeignPicture> picture; // absent: the one before still holds
    std::vector<PixelRect> damage; // what has changed in the picture; none: nothing is known of it
    std::optional<Vec2> pointer;   // pixels of the picture; absent: hidden, elsewhere or not told
    Vec2 stream;                   // pixels, of the whole that the picture may be cut from
};

/// Whatever the buffer says of itself, nothing outside its memory is shown: a picture that would
/// not lie in it is none.
///
/// `mapped`: the memory of the first block, where the library has not mapped it. `now`: for a
/// buffer without a stamp, or with one that is not of this clock.
ScreenUpdate screenUpdate(
    const ScreenForm& form,
    const spa_buffer& buffer,
    std::span<const std::uint8_t> mapped,
    double now);

} // namespace zento
