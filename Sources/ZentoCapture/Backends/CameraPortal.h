#pragma once

#include "ZentoCapture/Backends/Portal.h"

namespace zento {

/// Whether this program runs in a sandbox, where devices are seen through portals only.
bool isSandboxed();

/// A connection to PipeWire that sees the cameras, and nothing else, for the caller to own. The
/// user is asked the first time. Throws `Error` with the code kNoCamera.
int openCameraRemote(const PortalPatience& patience = {});

} // namespace zento
