#pragma once

#include "ZentoCapture/KeyLabel.h"

#include <array>
#include <bitset>
#include <cstdint>
#include <string>

namespace zento {

/// What the keys of an X server are.
///
/// A value; read it again when the server says that its mapping changed.
struct X11Keyboard {
    std::array<std::int64_t, 256> virtualKeyCodes{}; // by key code of the server
    std::bitset<256> modifiers;                      // keys that only modify others

    /// Opens a connection of its own, because speaking XKB on a connection stops the plain
    /// notices about the mapping on it. Without an answer every key is unknown.
    static X11Keyboard read(const std::string& displayName);
};

/// The `KeyFlag`s of a core protocol state. Mod1 is Alt and Mod4 is Super in every rule set that
/// keyboards are configured with.
std::uint64_t keyFlags(std::uint16_t state);

} // namespace zento
