#include "Zento/Model/ShortcutAction.h"

#include <QtGlobal>

#include <algorithm>
#include <array>
#include <utility>

namespace zento {

namespace {

constexpr std::string_view kAnywhere = "Anywhere";

enum Modifier : unsigned { Command = 1, Shift = 2, Option = 4, Control = 8 };

ShortcutEntry entry(
    ShortcutAction action,
    const char* id,
    const char* title,
    unsigned modifiers,
    const char* key,
    const char* group)
{
    return {
        action,
        id,
        title,
        {.key = key,
         .command = (modifiers & Command) != 0,
         .shift = (modifiers & Shift) != 0,
         .option = (modifiers & Option) != 0,
         .control = (modifiers & Control) != 0},
        group};
}

bool hasKey(const KeyCombo& combo)
{
    return combo.carbonKeyCode().has_value();
}

/// What is written on a key, where it is not the letter itself.
constexpr auto kCaps = std::to_array<std::pair<std::string_view, std::string_view>>({
    {"return", "Enter"},
    {"delete", "Backspace"},
    {"escape", "Esc"},
    {"tab", "Tab"},
});

std::string cap(std::string_view key)
{
    const auto found =
        std::ranges::find(kCaps, key, &std::pair<std::string_view, std::string_view>::first);
    return found == kCaps.end() ? keyLabel(key) : std::string(found->second);
}

} // namespace

// The texts are marked for translation here and translated where they are shown.
#define TEXT(text) QT_TRANSLATE_NOOP("zento::Shortcuts", text)

std::span<const ShortcutEntry> shortcutEntries()
{
    using enum ShortcutAction;
    static const std::array<ShortcutEntry, 13> kEntries{
        entry(
            ToggleRecording,
            "toggleRecording",
            TEXT("Start / stop recording"),
            Command | Option,
            "r",
            TEXT("Anywhere")),
        entry(
            CapturePanel,
            "capturePanel",
            TEXT("Capture panel"),
            Command | Option,
            "5",
            TEXT("Anywhere")),
        entry(RecordScreen, "recordScreen", TEXT("Record screen"), Command, "n", TEXT("Record")),
        entry(
            RecordWindow,
            "recordWindow",
            TEXT("Record a window"),
            Command | Shift,
            "n",
            TEXT("Record")),
        entry(
            RecordArea,
            "recordArea",
            TEXT("Record an area"),
            Command | Option,
            "n",
            TEXT("Record")),
        entry(
            ScreenshotScreen,
            "screenshotScreen",
            TEXT("Screenshot screen"),
            Command | Control,
            "1",
            TEXT("Screenshot")),
        entry(
            ScreenshotWindow,
            "screenshotWindow",
            TEXT("Screenshot a window"),
            Command | Control,
            "2",
            TEXT("Screenshot")),
        entry(
            ScreenshotArea,
            "screenshotArea",
            TEXT("Screenshot an area"),
            Command | Control,
            "3",
            TEXT("Screenshot")),
        entry(
            ScrollingCapture,
            "scrollingCapture",
            TEXT("Scrolling capture"),
            Command | Control,
            "4",
            TEXT("Screenshot")),
        entry(Recordings, "recordings", TEXT("Recordings"), Command, "l", TEXT("Editor")),
        entry(ExportVideo, "exportVideo", TEXT("Export video"), Command, "e", TEXT("Editor")),
        entry(
            CopyVideo,
            "copyVideo",
            TEXT("Copy video to clipboard"),
            Command | Shift,
            "c",
            TEXT("Editor")),
        entry(
            ToggleSidebar,
            "toggleSidebar",
            TEXT("Show / hide settings sidebar"),
            Command | Option,
            "i",
            TEXT("Editor")),
    };
    return kEntries;
}

#undef TEXT

const ShortcutEntry& shortcutEntry(ShortcutAction action)
{
    return *std::ranges::find(shortcutEntries(), action, &ShortcutEntry::action);
}

const ShortcutEntry* shortcutEntry(std::string_view id)
{
    const auto entries = shortcutEntries();
    const auto found = std::ranges::find(entries, id, &ShortcutEntry::id);
    return found == entries.end() ? nullptr : &*found;
}

ShortcutReach reach(const ShortcutEntry& entry)
{
    return entry.group == kAnywhere ? ShortcutReach::Anywhere : ShortcutReach::Window;
}

KeyCombo comboFor(const ShortcutEntry& entry, const std::map<std::string, KeyCombo>& stored)
{
    const auto found = stored.find(std::string(entry.id));
    if (found == stored.end()) {
        return entry.defaultCombo;
    }
    KeyCombo combo = found->second;
    if (!hasKey(combo)) {
        combo.key = entry.defaultCombo.key;
    }
    return combo;
}

std::map<std::string, KeyCombo> withCombo(
    std::map<std::string, KeyCombo> stored,
    const ShortcutEntry& entry,
    const std::optional<KeyCombo>& combo)
{
    const std::string id(entry.id);
    if (!combo || *combo == entry.defaultCombo) {
        stored.erase(id);
    } else {
        stored.insert_or_assign(id, *combo);
    }
    return stored;
}

const ShortcutEntry*
conflictingEntry(const ShortcutEntry& entry, const std::map<std::string, KeyCombo>& stored)
{
    const auto stroke = [&](const ShortcutEntry& any) {
        return keyStroke(comboFor(any, stored), reach(any));
    };
    const KeyStroke own = stroke(entry);
    const auto entries = shortcutEntries();
    const auto found = std::ranges::find_if(entries, [&](const ShortcutEntry& other) {
        return other.action != entry.action && stroke(other) == own;
    });
    return found == entries.end() ? nullptr : &*found;
}

KeyStroke keyStroke(const KeyCombo& combo, ShortcutReach reach)
{
    const bool isSuper = combo.command && (reach == ShortcutReach::Anywhere || combo.control);
    return {
        .key = combo.key,
        .super = isSuper,
        .control = combo.control || (combo.command && !isSuper),
        .alt = combo.option,
        .shift = combo.shift};
}

std::optional<KeyCombo> keyCombo(const KeyStroke& stroke, ShortcutReach reach)
{
    KeyCombo combo{.key = stroke.key, .shift = stroke.shift, .option = stroke.alt};
    if (!hasKey(combo)) {
        return std::nullopt;
    }
    if (reach == ShortcutReach::Anywhere) {
        combo.command = stroke.super;
        combo.control = stroke.control;
        const bool isFunctionKey = stroke.key.size() > 1 && stroke.key.front() == 'f';
        // Any other key alone would be taken from every program.
        return combo.command || combo.control || combo.option || isFunctionKey
                   ? std::optional(combo)
                   : std::nullopt;
    }
    if (stroke.super && !stroke.control) {
        return std::nullopt; // the desktop's own
    }
    combo.command = stroke.control;
    combo.control = stroke.super;
    return combo;
}

std::vector<std::string> keyCaps(const KeyStroke& stroke)
{
    std::vector<std::string> caps;
    const auto add = [&](bool isPressed, const char* name) {
        if (isPressed) {
            caps.emplace_back(name);
        }
    };
    add(stroke.super, "Super");
    add(stroke.control, "Ctrl");
    add(stroke.alt, "Alt");
    add(stroke.shift, "Shift");
    caps.push_back(cap(stroke.key));
    return caps;
}

} // namespace zento
