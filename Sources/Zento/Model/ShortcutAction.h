#pragma once

#include "ZentoCore/KeyCombo.h"

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zento {

enum class ShortcutAction : unsigned char {
    ToggleRecording,
    CapturePanel,
    RecordScreen,
    RecordWindow,
    RecordArea,
    ScreenshotScreen,
    ScreenshotWindow,
    ScreenshotArea,
    ScrollingCapture,
    Recordings,
    ExportVideo,
    CopyVideo,
    ToggleSidebar,
};

/// Where a shortcut works.
enum class ShortcutReach : unsigned char { Anywhere, Window };

struct ShortcutEntry {
    ShortcutAction action = ShortcutAction::ToggleRecording;
    std::string_view id;    // the key in the settings: "toggleRecording"
    std::string_view title; // English; the source of its translations
    KeyCombo defaultCombo;
    std::string_view group; // the same
};

/// All actions, in the order of the settings pane; those of a group stand together.
std::span<const ShortcutEntry> shortcutEntries();

const ShortcutEntry& shortcutEntry(ShortcutAction action);

/// Nothing for an id that is none.
const ShortcutEntry* shortcutEntry(std::string_view id);

ShortcutReach reach(const ShortcutEntry& entry);

/// The combo in force: the stored one, or the default. A stored one whose key is in no table has
/// the default's key.
KeyCombo comboFor(const ShortcutEntry& entry, const std::map<std::string, KeyCombo>& stored);

/// The stored combos with one set: without an entry where it is the default or absent.
std::map<std::string, KeyCombo> withCombo(
    std::map<std::string, KeyCombo> stored,
    const ShortcutEntry& entry,
    const std::optional<KeyCombo>& combo);

/// The first other action that is reached by the same keys.
const ShortcutEntry*
conflictingEntry(const ShortcutEntry& entry, const std::map<std::string, KeyCombo>& stored);

/// A combo as the keys of this desktop. Command is Control in the window; it is Super for what
/// works anywhere, and where Control is already part of the combo.
struct KeyStroke {
    std::string key; // of `KeyCombo`
    bool super = false;
    bool control = false;
    bool alt = false;
    bool shift = false;
    bool operator==(const KeyStroke&) const = default;
};
KeyStroke keyStroke(const KeyCombo& combo, ShortcutReach reach);

/// The combo that such keys mean; nothing where no combo gives them.
std::optional<KeyCombo> keyCombo(const KeyStroke& stroke, ShortcutReach reach);

/// The keys as they are written on caps: "Super", "Alt", "R".
std::vector<std::string> keyCaps(const KeyStroke& stroke);

} // namespace zento
