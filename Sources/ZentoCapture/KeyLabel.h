#pragma once

#include <cstdint>
#include <string>

namespace zento {

/// The modifiers of an input event, in the bits the labels are defined by.
namespace KeyFlag {
inline constexpr std::uint64_t kShift = 0x20000;
inline constexpr std::uint64_t kControl = 0x40000;
inline constexpr std::uint64_t kOption = 0x80000;   // Alt
inline constexpr std::uint64_t kCommand = 0x100000; // Super
} // namespace KeyFlag

/// A physical key without a virtual key code.
inline constexpr std::int64_t kUnknownKey = -1;

/// The short text that a film shows for a key press.
namespace KeyLabel {

/// The modifiers in the order ⌃⌥⇧⌘, then the key: "⌘C", "⌃⇧F5"; alone, a one-letter key is lower
/// case. The label comes from the physical key, so it is a US letter in every layout; a key outside
/// the table is "·".
std::string label(std::int64_t keyCode, std::uint64_t flags);

} // namespace KeyLabel

} // namespace zento
