#pragma once

namespace zento {

/// Names the calling thread for debuggers and profilers; at most 15 bytes.
void nameThread(const char* name);

} // namespace zento
