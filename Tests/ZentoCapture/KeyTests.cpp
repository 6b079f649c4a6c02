#include "ZentoCapture/Backends/PhysicalKeys.h"
#include "ZentoCapture/KeyLabel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

namespace zento {
namespace {

TEST(KeyLabelTest, labels)
{
    struct Case {
        const char* name;
        std::int64_t keyCode;
        std::uint64_t flags;
        const char* label;
    };
    const Case cases[] = {
        {"a letter alone is small", 0, 0, "a"},
        {"with shift it is not", 0, KeyFlag::kShift, "⇧A"},
        {"return alone", 36, 0, "⏎"},
        {"a sign alone", 33, 0, "["},
        {"a function key keeps its name", 96, 0, "F5"},
        {"control before shift", 96, KeyFlag::kShift | KeyFlag::kControl, "⌃⇧F5"},
        {"all four",
         49,
         KeyFlag::kCommand | KeyFlag::kOption | KeyFlag::kShift | KeyFlag::kControl,
         "⌃⌥⇧⌘␣"},
        {"an unknown key", 10, 0, "·"},
        {"an unknown key with a modifier", kUnknownKey, KeyFlag::kCommand, "⌘·"},
        {"other flags are ignored", 8, 0x10000 | 0x800000 | 0x200000, "c"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(KeyLabel::label(row.keyCode, row.flags), row.label);
    }
}

TEST(PhysicalKeysTest, rowsOfTheKeyboardReadAsPrinted)
{
    struct Case {
        const char* row;
        int count;
        const char* labels;
    };
    // What stands on a US keyboard, from the key named 01 on.
    const Case cases[] = {
        {"AE", 12, "1234567890-="},
        {"AD", 12, "qwertyuiop[]"},
        {"AC", 11, "asdfghjkl;'"},
        {"AB", 10, "zxcvbnm,./"},
        {"FK", 12, "F1F2F3F4F5F6F7F8F9F10F11F12"},
    };
    for (const Case& row : cases) {
        std::string labels;
        for (int key = 1; key <= row.count; ++key) {
            const std::string name =
                row.row + std::string(key < 10 ? "0" : "") + std::to_string(key);
            labels += KeyLabel::label(virtualKeyCode(name), 0);
        }
        EXPECT_EQ(labels, row.labels);
    }
    EXPECT_EQ(virtualKeyCode("LSGT"), kUnknownKey);
    EXPECT_EQ(virtualKeyCode("KP1"), kUnknownKey);
}

TEST(PhysicalKeysTest, everyLabelHasAKeyOfItsOwn)
{
    constexpr int kTableRows = 73;
    std::set<std::string> labels;
    for (std::int64_t code = 0; code < 200; ++code) {
        labels.insert(KeyLabel::label(code, 0));
    }
    labels.erase("·");
    EXPECT_EQ(labels.size(), kTableRows);

    std::string fromKeys;
    for (const char* name :
         {"ESC",
          "TLDE",
          "BKSP",
          "TAB",
          "RTRN",
          "BKSL",
          "SPCE",
          "HOME",
          "PGUP",
          "DELE",
          "END",
          "PGDN",
          "LEFT",
          "RGHT",
          "DOWN",
          "UP"}) {
        fromKeys += KeyLabel::label(virtualKeyCode(name), 0);
    }
    EXPECT_EQ(fromKeys, "⎋`⌫⇥⏎\\␣↖⇞⌦↘⇟←→↓↑");
}

} // namespace
} // namespace zento
