#pragma once

#include "ZentoCapture/FrameSource.h"

namespace zento {

/// The moment from which the next frame may be handed over, after one at `now` whose own moment was
/// `slot`. Frames that follow each other keep to one beat, so that a late one does not slow all the
/// others down.
inline double nextSlot(double slot, double now)
{
    constexpr double kInterval = FrameSource::kMinimumFrameInterval;
    return now - slot < kInterval ? slot + kInterval : now + kInterval;
}

} // namespace zento
