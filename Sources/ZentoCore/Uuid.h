#pragma once

#include <string>

namespace zento {

/// A random UUID (version 4) in lower case, never given twice.
///
/// Threading: any thread.
std::string makeUuid();

} // namespace zento
