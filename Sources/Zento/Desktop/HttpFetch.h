#pragma once

#include "Zento/Model/UpdateCheck.h"

namespace zento {

/// Fetches small documents, past all caches, within 60 seconds; a redirection only to HTTPS.
/// Threading: the main thread; nothing blocks.
UpdateCheck::Fetch httpFetch();

} // namespace zento
