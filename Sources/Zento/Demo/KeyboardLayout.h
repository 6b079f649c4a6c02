#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace zento {

class XConnection;

/// How a character or a named key is typed.
struct TypedKey {
    std::uint8_t keycode = 0; // of the X protocol
    bool withShift = false;

    bool operator==(const TypedKey&) const = default;
};

/// What the keys of a display mean while it has its present keyboard map, in the map's first layout
/// without and with Shift.
class KeyboardLayout {
public:
    /// Asks the display. Throws `Error` kDesktopFailed if it does not tell.
    explicit KeyboardLayout(const XConnection& connection);

    /// The stroke of a character; a line break is Return, U+0009 is Tab.
    std::optional<TypedKey> strokeOf(char32_t character) const;

    /// The stroke of a key by the name of its symbol: "Return", "Control_L", "s", "End".
    std::optional<TypedKey> strokeOf(std::string_view symbolName) const;

private:
    std::map<std::uint32_t, TypedKey> m_strokes; // by key symbol
};

} // namespace zento
