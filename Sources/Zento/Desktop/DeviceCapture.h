#pragma once

#include "Zento/Model/RecordingCapture.h"

namespace zento {

/// Recordings of this desktop.
CaptureFactory deviceCaptures();

} // namespace zento
