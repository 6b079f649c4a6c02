#include "ZentoCapture/Backends/DeviceKeys.h"

#include "ZentoCapture/Backends/PhysicalKeys.h"
#include "ZentoCapture/KeyLabel.h"

#include <linux/input-event-codes.h>

namespace zento {

namespace {

/// Of a modifier that no label shows.
constexpr std::uint64_t kNoFlag = ~std::uint64_t{0};

/// 0 for a key that is no modifier.
std::uint64_t modifierFlag(std::uint32_t code)
{
    switch (code) {
    case KEY_LEFTSHIFT:
    case KEY_RIGHTSHIFT:
        return KeyFlag::kShift;
    case KEY_LEFTCTRL:
    case KEY_RIGHTCTRL:
        return KeyFlag::kControl;
    case KEY_LEFTALT:
        return KeyFlag::kOption;
    case KEY_LEFTMETA:
    case KEY_RIGHTMETA:
        return KeyFlag::kCommand;
    case KEY_RIGHTALT: // chooses another sign of the same key
    case KEY_CAPSLOCK:
    case KEY_NUMLOCK:
    case KEY_SCROLLLOCK:
    case KEY_FN:
        return kNoFlag;
    default:
        return 0;
    }
}

} // namespace

DeviceKeys::Result DeviceKeys::handle(std::uint32_t code, Press press)
{
    const std::uint64_t flag = modifierFlag(code);
    const Result result{
        .isRecord = flag == 0 && press == Press::Down,
        .keyCode = virtualKeyCode(code),
        .flags = flags()};
    if (flag != 0 && flag != kNoFlag) {
        if (press == Press::Down) {
            m_held.insert(flag);
        } else if (const auto held = m_held.find(flag); held != m_held.end()) {
            m_held.erase(held); // one of two such keys
        }
    }
    return result;
}

std::uint64_t DeviceKeys::flags() const
{
    std::uint64_t all = 0;
    for (const std::uint64_t flag : m_held) {
        all |= flag;
    }
    return all;
}

} // namespace zento
