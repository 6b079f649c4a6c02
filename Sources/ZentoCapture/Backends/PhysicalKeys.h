#pragma once

#include <cstdint>
#include <string_view>

namespace zento {

/// The virtual key code of a physical key, by the name its place has in an XKB key map ("AC01" is
/// the key left of S, whatever letter the layout puts there). `kUnknownKey` for a key without one.
std::int64_t virtualKeyCode(std::string_view xkbName);

/// The same by the kernel's code of the key: that of A is 30, whatever the layout.
std::int64_t virtualKeyCode(std::uint32_t kernelCode);

} // namespace zento
