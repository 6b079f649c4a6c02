#include "ZentoCapture/Backends/PhysicalKeys.h"

#include "ZentoCapture/KeyLabel.h"

#include <linux/input-event-codes.h>

#include <algorithm>
#include <array>

namespace zento {

namespace {

struct Row {
    std::string_view xkbName;
    std::uint32_t kernelCode = 0;
    std::int64_t virtualCode = 0;
};

// Rows of the keyboard from top to bottom, keys from left to right. 5 and 6 have the codes under
// which `KeyLabel` knows them, so that a film shows what was pressed; the codes of hot keys have
// them the other way round.
constexpr std::array kKeys{
    Row{"ESC", KEY_ESC, 53},         Row{"FK01", KEY_F1, 122},
    Row{"FK02", KEY_F2, 120},        Row{"FK03", KEY_F3, 99},
    Row{"FK04", KEY_F4, 118},        Row{"FK05", KEY_F5, 96},
    Row{"FK06", KEY_F6, 97},         Row{"FK07", KEY_F7, 98},
    Row{"FK08", KEY_F8, 100},        Row{"FK09", KEY_F9, 101},
    Row{"FK10", KEY_F10, 109},       Row{"FK11", KEY_F11, 103},
    Row{"FK12", KEY_F12, 111},

    Row{"TLDE", KEY_GRAVE, 50},      Row{"AE01", KEY_1, 18},
    Row{"AE02", KEY_2, 19},          Row{"AE03", KEY_3, 20},
    Row{"AE04", KEY_4, 21},          Row{"AE05", KEY_5, 22},
    Row{"AE06", KEY_6, 23},          Row{"AE07", KEY_7, 26},
    Row{"AE08", KEY_8, 28},          Row{"AE09", KEY_9, 25},
    Row{"AE10", KEY_0, 29},          Row{"AE11", KEY_MINUS, 27},
    Row{"AE12", KEY_EQUAL, 24},      Row{"BKSP", KEY_BACKSPACE, 51},

    Row{"TAB", KEY_TAB, 48},         Row{"AD01", KEY_Q, 12},
    Row{"AD02", KEY_W, 13},          Row{"AD03", KEY_E, 14},
    Row{"AD04", KEY_R, 15},          Row{"AD05", KEY_T, 17},
    Row{"AD06", KEY_Y, 16},          Row{"AD07", KEY_U, 32},
    Row{"AD08", KEY_I, 34},          Row{"AD09", KEY_O, 31},
    Row{"AD10", KEY_P, 35},          Row{"AD11", KEY_LEFTBRACE, 33},
    Row{"AD12", KEY_RIGHTBRACE, 30}, Row{"RTRN", KEY_ENTER, 36},

    Row{"AC01", KEY_A, 0},           Row{"AC02", KEY_S, 1},
    Row{"AC03", KEY_D, 2},           Row{"AC04", KEY_F, 3},
    Row{"AC05", KEY_G, 5},           Row{"AC06", KEY_H, 4},
    Row{"AC07", KEY_J, 38},          Row{"AC08", KEY_K, 40},
    Row{"AC09", KEY_L, 37},          Row{"AC10", KEY_SEMICOLON, 41},
    Row{"AC11", KEY_APOSTROPHE, 39}, Row{"BKSL", KEY_BACKSLASH, 42},
    Row{"AC12", KEY_BACKSLASH, 42},

    Row{"AB01", KEY_Z, 6},           Row{"AB02", KEY_X, 7},
    Row{"AB03", KEY_C, 8},           Row{"AB04", KEY_V, 9},
    Row{"AB05", KEY_B, 11},          Row{"AB06", KEY_N, 45},
    Row{"AB07", KEY_M, 46},          Row{"AB08", KEY_COMMA, 43},
    Row{"AB09", KEY_DOT, 47},        Row{"AB10", KEY_SLASH, 44},

    Row{"SPCE", KEY_SPACE, 49},      Row{"HOME", KEY_HOME, 115},
    Row{"PGUP", KEY_PAGEUP, 116},    Row{"DELE", KEY_DELETE, 117},
    Row{"END", KEY_END, 119},        Row{"PGDN", KEY_PAGEDOWN, 121},
    Row{"LEFT", KEY_LEFT, 123},      Row{"RGHT", KEY_RIGHT, 124},
    Row{"DOWN", KEY_DOWN, 125},      Row{"UP", KEY_UP, 126},
};

} // namespace

std::int64_t virtualKeyCode(std::string_view xkbName)
{
    const auto* const found = std::ranges::find(kKeys, xkbName, &Row::xkbName);
    return found == kKeys.end() ? kUnknownKey : found->virtualCode;
}

std::int64_t virtualKeyCode(std::uint32_t kernelCode)
{
    const auto* const found = std::ranges::find(kKeys, kernelCode, &Row::kernelCode);
    return found == kKeys.end() ? kUnknownKey : found->virtualCode;
}

} // namespace zento
