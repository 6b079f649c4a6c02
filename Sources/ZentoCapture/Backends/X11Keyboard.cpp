#include "ZentoCapture/Backends/X11Keyboard.h"

#include "ZentoCapture/Backends/PhysicalKeys.h"
#include "ZentoCapture/Backends/X11Connection.h"

#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace zento {

namespace {

struct UnrefKeyMap {
    void operator()(xkb_keymap* keyMap) const { xkb_keymap_unref(keyMap); }
};
struct UnrefContext {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }
};

void readKeys(const X11Connection& connection, X11Keyboard& keyboard)
{
    xcb_connection_t* const server = connection.get();
    if (xkb_x11_setup_xkb_extension(
            server,
            XKB_X11_MIN_MAJOR_XKB_VERSION,
            XKB_X11_MIN_MINOR_XKB_VERSION,
            XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS,
            nullptr,
            nullptr,
            nullptr,
            nullptr)
        == 0) {
        return;
    }
    const std::unique_ptr<xkb_context, UnrefContext> context(
        xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES));
    const int device = xkb_x11_get_core_keyboard_device_id(server);
    if (!context || device < 0) {
        return;
    }
    const std::unique_ptr<xkb_keymap, UnrefKeyMap> keyMap(
        xkb_x11_keymap_new_from_device(context.get(), server, device, XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (!keyMap) {
        return;
    }
    for (xkb_keycode_t code = 0; code < keyboard.virtualKeyCodes.size(); ++code) {
        if (const char* const name = xkb_keymap_key_get_name(keyMap.get(), code)) {
            keyboard.virtualKeyCodes[code] = virtualKeyCode(name);
        }
    }
}

void readModifiers(const X11Connection& connection, X11Keyboard& keyboard)
{
    const XcbPtr<xcb_get_modifier_mapping_reply_t> reply(xcb_get_modifier_mapping_reply(
        connection.get(), xcb_get_modifier_mapping(connection.get()), nullptr));
    if (!reply) {
        return;
    }
    const xcb_keycode_t* const codes = xcb_get_modifier_mapping_keycodes(reply.get());
    for (int i = 0; i < xcb_get_modifier_mapping_keycodes_length(reply.get()); ++i) {
        keyboard.modifiers.set(codes[i]);
    }
}

} // namespace

X11Keyboard X11Keyboard::read(const std::string& displayName)
{
    X11Keyboard keyboard;
    keyboard.virtualKeyCodes.fill(kUnknownKey);
    const X11Connection connection(displayName);
    readKeys(connection, keyboard);
    readModifiers(connection, keyboard);
    return keyboard;
}

std::uint64_t keyFlags(std::uint16_t state)
{
    std::uint64_t flags = 0;
    for (const auto& [mask, flag] : {
             std::pair<unsigned, std::uint64_t>{XCB_MOD_MASK_SHIFT, KeyFlag::kShift},
             std::pair<unsigned, std::uint64_t>{XCB_MOD_MASK_CONTROL, KeyFlag::kControl},
             std::pair<unsigned, std::uint64_t>{XCB_MOD_MASK_1, KeyFlag::kOption},
             std::pair<unsigned, std::uint64_t>{XCB_MOD_MASK_4, KeyFlag::kCommand},
         }) {
        if ((state & mask) != 0) {
            flags |= flag;
        }
    }
    return flags;
}

} // namespace zento
