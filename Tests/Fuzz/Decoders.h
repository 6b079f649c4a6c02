#pragma once

#include <string_view>

namespace zento {

/// Gives `input` to one of the decoders of a session's files, chosen by its first byte. A document
/// that decodes must survive being written and read again; otherwise the process aborts.
void decodeAnything(std::string_view input);

} // namespace zento
