#include "ZentoCapture/Backends/PhysicalKeys.h"

#include "ZentoCapture/KeyLabel.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zento {

namespace {

using Row = std::pair<std::string_view, std::int64_t>;

// Rows of the keyboard from top to bottom, keys from left to right. 5 and 6 have the codes under
// which `KeyLabel` knows them, so that a film shows what was pressed; the codes of hot keys have
// them the other way round.
constexpr std::array kKeys{
    Row{"ESC", 53},   Row{"FK01", 122}, Row{"FK02", 120}, Row{"FK03", 99},  Row{"FK04", 118},
    Row{"FK05", 96},  Row{"FK06", 97},  Row{"FK07", 98},  Row{"FK08", 100}, Row{"FK09", 101},
    Row{"FK10", 109}, Row{"FK11", 103}, Row{"FK12", 111},

    Row{"TLDE", 50},  Row{"AE01", 18},  Row{"AE02", 19},  Row{"AE03", 20},  Row{"AE04", 21},
    Row{"AE05", 22},  Row{"AE06", 23},  Row{"AE07", 26},  Row{"AE08", 28},  Row{"AE09", 25},
    Row{"AE10", 29},  Row{"AE11", 27},  Row{"AE12", 24},  Row{"BKSP", 51},

    Row{"TAB", 48},   Row{"AD01", 12},  Row{"AD02", 13},  Row{"AD03", 14},  Row{"AD04", 15},
    Row{"AD05", 17},  Row{"AD06", 16},  Row{"AD07", 32},  Row{"AD08", 34},  Row{"AD09", 31},
    Row{"AD10", 35},  Row{"AD11", 33},  Row{"AD12", 30},  Row{"RTRN", 36},

    Row{"AC01", 0},   Row{"AC02", 1},   Row{"AC03", 2},   Row{"AC04", 3},   Row{"AC05", 5},
    Row{"AC06", 4},   Row{"AC07", 38},  Row{"AC08", 40},  Row{"AC09", 37},  Row{"AC10", 41},
    Row{"AC11", 39},  Row{"BKSL", 42},  Row{"AC12", 42},

    Row{"AB01", 6},   Row{"AB02", 7},   Row{"AB03", 8},   Row{"AB04", 9},   Row{"AB05", 11},
    Row{"AB06", 45},  Row{"AB07", 46},  Row{"AB08", 43},  Row{"AB09", 47},  Row{"AB10", 44},

    Row{"SPCE", 49},  Row{"HOME", 115}, Row{"PGUP", 116}, Row{"DELE", 117}, Row{"END", 119},
    Row{"PGDN", 121}, Row{"LEFT", 123}, Row{"RGHT", 124}, Row{"DOWN", 125}, Row{"UP", 126},
};

} // namespace

std::int64_t virtualKeyCode(std::string_view xkbName)
{
    const auto* const found = std::ranges::find(kKeys, xkbName, &Row::first);
    return found == kKeys.end() ? kUnknownKey : found->second;
}

} // namespace zento
