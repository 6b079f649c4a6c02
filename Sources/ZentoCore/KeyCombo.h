#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>

namespace zento {

/// A key with modifiers, named so that a stored shortcut reads well.
struct KeyCombo {
    std::string key; // lower case: "k", "f5", "space", "return", "left", …
    bool command = false;
    bool shift = false;
    bool option = false;
    bool control = false;

    /// The text for the interface: "⇧⌘K".
    std::string display() const;

    /// The code of `key` in the virtual key set, or nothing for a name that is not in the table.
    std::optional<int> carbonKeyCode() const;

    /// 256 command + 512 shift + 2048 option + 4096 control.
    unsigned carbonModifiers() const;

    auto operator<=>(const KeyCombo&) const = default;
};

/// The label of a key name: "space" is "Space", "return" is "↩", "k" is "K".
std::string keyLabel(std::string_view key);

/// The name of a virtual key code, or nothing.
std::optional<std::string> keyName(int keyCode);

} // namespace zento
