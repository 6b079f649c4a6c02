#include "Zento/Demo/KeyboardLayout.h"

#include "Zento/Demo/XConnection.h"
#include "ZentoCore/Error.h"

#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

#include <array>
#include <memory>

namespace zento {

namespace {

struct Unreference {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }
    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
};

using Keymap = std::unique_ptr<xkb_keymap, Unreference>;

Keymap currentKeymap(const XConnection& connection)
{
    xcb_connection_t* x = connection.get();
    const std::unique_ptr<xkb_context, Unreference> context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    const int hasExtension = xkb_x11_setup_xkb_extension(
        x,
        XKB_X11_MIN_MAJOR_XKB_VERSION,
        XKB_X11_MIN_MINOR_XKB_VERSION,
        XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS,
        nullptr,
        nullptr,
        nullptr,
        nullptr);
    if (!context || hasExtension == 0) {
        return nullptr;
    }
    const std::int32_t keyboard = xkb_x11_get_core_keyboard_device_id(x);
    return Keymap(
        xkb_x11_keymap_new_from_device(context.get(), x, keyboard, XKB_KEYMAP_COMPILE_NO_FLAGS));
}

/// Nothing when the level needs a modifier other than Shift.
std::optional<bool> needsShift(xkb_keymap* keymap, xkb_keycode_t key, xkb_level_index_t level)
{
    std::array<xkb_mod_mask_t, 8> masks{};
    const std::size_t count =
        xkb_keymap_key_get_mods_for_level(keymap, key, 0, level, masks.data(), masks.size());
    const xkb_mod_index_t index = xkb_keymap_mod_get_index(keymap, XKB_MOD_NAME_SHIFT);
    const xkb_mod_mask_t shift = index == XKB_MOD_INVALID ? 0 : 1U << index;
    for (std::size_t i = 0; i < count; ++i) {
        if (masks.at(i) == 0 || masks.at(i) == shift) {
            return masks.at(i) != 0;
        }
    }
    return std::nullopt;
}

void addStrokes(xkb_keymap* keymap, xkb_keycode_t key, std::map<std::uint32_t, TypedKey>& strokes)
{
    for (const xkb_level_index_t level : {0U, 1U}) {
        const xkb_keysym_t* symbols = nullptr;
        const int count = xkb_keymap_key_get_syms_by_level(keymap, key, 0, level, &symbols);
        const auto withShift = needsShift(keymap, key, level);
        if (count != 1 || !withShift) {
            continue;
        }
        const TypedKey stroke{static_cast<std::uint8_t>(key), *withShift};
        const auto [known, isNew] = strokes.try_emplace(symbols[0], stroke);
        if (!isNew && known->second.withShift && !stroke.withShift) {
            known->second = stroke;
        }
    }
}

} // namespace

KeyboardLayout::KeyboardLayout(const XConnection& connection)
{
    constexpr xkb_keycode_t kLastKeycode = 255; // of the core protocol, which XTEST speaks
    const Keymap keymap = currentKeymap(connection);
    if (!keymap) {
        throw Error(ErrorCode::kDesktopFailed, "The display does not tell its keyboard layout.");
    }
    const xkb_keycode_t last = std::min(xkb_keymap_max_keycode(keymap.get()), kLastKeycode);
    for (xkb_keycode_t key = xkb_keymap_min_keycode(keymap.get()); key <= last; ++key) {
        addStrokes(keymap.get(), key, m_strokes);
    }
}

std::optional<TypedKey> KeyboardLayout::strokeOf(char32_t character) const
{
    if (character == U'\n') {
        return strokeOf("Return");
    }
    const auto found = m_strokes.find(xkb_utf32_to_keysym(character));
    return found == m_strokes.end() ? std::nullopt : std::optional(found->second);
}

std::optional<TypedKey> KeyboardLayout::strokeOf(std::string_view symbolName) const
{
    const xkb_keysym_t symbol =
        xkb_keysym_from_name(std::string(symbolName).c_str(), XKB_KEYSYM_NO_FLAGS);
    const auto found = m_strokes.find(symbol);
    return found == m_strokes.end() ? std::nullopt : std::optional(found->second);
}

} // namespace zento
