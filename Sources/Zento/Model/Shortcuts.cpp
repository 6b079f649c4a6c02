#include "Zento/Model/Shortcuts.h"

#include <QCoreApplication>
#include <QVariantMap>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace zento {

namespace {

struct NamedKey {
    int key;
    const char* name;
};

constexpr auto kNamedKeys = std::to_array<NamedKey>({
    {Qt::Key_Return, "return"},
    {Qt::Key_Enter, "return"},
    {Qt::Key_Tab, "tab"},
    {Qt::Key_Backtab, "tab"},
    {Qt::Key_Space, "space"},
    {Qt::Key_Left, "left"},
    {Qt::Key_Right, "right"},
    {Qt::Key_Up, "up"},
    {Qt::Key_Down, "down"},
});

/// The keys of a row of the usual keyboard, from an evdev code on.
struct PhysicalRow {
    int first;
    std::string_view keys;
};

constexpr auto kPhysicalRows = std::to_array<PhysicalRow>({
    {2, "1234567890-="},
    {16, "qwertyuiop[]"},
    {30, "asdfghjkl;'`"},
    {43, "\\zxcvbnm,./"},
});

constexpr int kScanCodeOffset = 8; // of X's key codes against evdev's

std::string nameOf(const std::string& key)
{
    return KeyCombo{.key = key}.carbonKeyCode() ? key : "";
}

std::string physicalKey(int scanCode)
{
    const int code = scanCode - kScanCodeOffset;
    for (const auto& [first, keys] : kPhysicalRows) {
        if (code >= first && code < first + static_cast<int>(keys.size())) {
            return std::string(1, keys[static_cast<std::size_t>(code - first)]);
        }
    }
    return {};
}

/// The name of a pressed key, as `KeyCombo` has it; empty for one that has none. A key of another
/// script, or one whose sign is Shift's doing, goes by its place.
std::string pressedKey(int key, int scanCode)
{
    const auto named = std::ranges::find(kNamedKeys, key, &NamedKey::key);
    if (named != kNamedKeys.end()) {
        return named->name;
    }
    if (key >= Qt::Key_F1 && key <= Qt::Key_F12) {
        return "f" + std::to_string(key - Qt::Key_F1 + 1);
    }
    std::string name;
    if (key > Qt::Key_Space && key < Qt::Key_AsciiTilde) {
        name = nameOf(QString(QChar(key)).toLower().toStdString());
    }
    return name.empty() ? physicalKey(scanCode) : name;
}

bool isModifier(int key)
{
    return (key >= Qt::Key_Shift && key <= Qt::Key_ScrollLock)
           || (key >= Qt::Key_Super_L && key <= Qt::Key_Hyper_R) || key == Qt::Key_AltGr;
}

QString translated(std::string_view text)
{
    return QCoreApplication::translate("zento::Shortcuts", std::string(text).c_str());
}

QStringList capsOf(const KeyCombo& combo, const ShortcutEntry& entry)
{
    QStringList caps;
    for (const std::string& cap : keyCaps(keyStroke(combo, reach(entry)))) {
        caps.append(QString::fromStdString(cap));
    }
    return caps;
}

/// A key's name in a `QKeySequence`.
QString sequenceKey(const std::string& key)
{
    static const std::map<std::string, QString> kNames{
        {"return", "Return"},
        {"delete", "Backspace"},
        {"escape", "Esc"},
        {"tab", "Tab"},
        {"space", "Space"},
        {"left", "Left"},
        {"right", "Right"},
        {"up", "Up"},
        {"down", "Down"},
    };
    const auto found = kNames.find(key);
    return found == kNames.end() ? QString::fromStdString(key).toUpper() : found->second;
}

} // namespace

Shortcuts::Shortcuts(SettingsModel& settings, GlobalHotkeys& hotkeys)
    : m_settings(settings)
    , m_hotkeys(hotkeys)
{
    connect(&settings, &SettingsModel::settingsChanged, this, [this](const AppSettings& before) {
        if (before.shortcuts != m_settings.current().shortcuts) {
            registerHotkeys();
        }
    });
}

QVariantList Shortcuts::groups() const
{
    const auto& stored = m_settings.current().shortcuts;
    QVariantList groups;
    QVariantList rows;
    const auto entries = shortcutEntries();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const ShortcutEntry& entry = entries[i];
        const KeyCombo combo = comboFor(entry, stored);
        const ShortcutEntry* const other = conflictingEntry(entry, stored);
        QString conflict;
        if (other != nullptr) {
            conflict = tr("Also used by %1").arg(translated(other->title));
        } else if (!isRegistered(entry.action)) {
            conflict = m_hotkeys.isAvailable() ? tr("Another app already uses it")
                                               : tr("This desktop has no global shortcuts");
        }
        rows.append(QVariantMap{
            {"action", QString::fromLatin1(entry.id.data())},
            {"title", translated(entry.title)},
            {"keys", capsOf(combo, entry)},
            {"isDefault", combo == entry.defaultCombo},
            {"defaultText", capsOf(entry.defaultCombo, entry).join('+')},
            {"conflict", conflict},
            {"isRegistered", isRegistered(entry.action)}});
        if (i + 1 == entries.size() || entries[i + 1].group != entry.group) {
            groups.append(
                QVariantMap{{"name", translated(entry.group)}, {"rows", std::exchange(rows, {})}});
        }
    }
    return groups;
}

QString Shortcuts::sequence(const QString& action) const
{
    const ShortcutEntry* const entry = shortcutEntry(action.toStdString());
    if (entry == nullptr) {
        return {};
    }
    const KeyStroke stroke =
        keyStroke(comboFor(*entry, m_settings.current().shortcuts), reach(*entry));
    return QString(stroke.super ? "Meta+" : "") + (stroke.control ? "Ctrl+" : "")
           + (stroke.alt ? "Alt+" : "") + (stroke.shift ? "Shift+" : "") + sequenceKey(stroke.key);
}

QStringList Shortcuts::keys(const QString& action) const
{
    const ShortcutEntry* const entry = shortcutEntry(action.toStdString());
    return entry == nullptr ? QStringList()
                            : capsOf(comboFor(*entry, m_settings.current().shortcuts), *entry);
}

QString Shortcuts::title(const QString& action) const
{
    const ShortcutEntry* const entry = shortcutEntry(action.toStdString());
    return entry == nullptr ? QString() : translated(entry->title);
}

void Shortcuts::startRecording(const QString& action)
{
    if (shortcutEntry(action.toStdString()) == nullptr || action == m_recordingAction) {
        return;
    }
    m_recordingAction = action;
    m_registered.clear(); // pressing one is to set it now, not to use it
    Q_EMIT recordingActionChanged();
}

void Shortcuts::stopRecording()
{
    if (!m_recordingAction.isEmpty()) {
        m_recordingAction.clear();
        Q_EMIT recordingActionChanged();
        registerHotkeys();
    }
}

bool Shortcuts::pressed(int key, int modifiers, int scanCode)
{
    const ShortcutEntry* const entry = shortcutEntry(m_recordingAction.toStdString());
    if (entry == nullptr) {
        return true;
    }
    if (isModifier(key)) {
        return false;
    }
    if (key == Qt::Key_Delete || key == Qt::Key_Backspace) {
        setCombo(*entry, std::nullopt);
    } else if (key != Qt::Key_Escape) {
        const auto held = Qt::KeyboardModifiers(modifiers);
        const KeyStroke stroke{
            .key = pressedKey(key, scanCode),
            .super = held.testFlag(Qt::MetaModifier),
            .control = held.testFlag(Qt::ControlModifier),
            .alt = held.testFlag(Qt::AltModifier),
            .shift = held.testFlag(Qt::ShiftModifier)};
        const auto combo = keyCombo(stroke, reach(*entry));
        if (!combo) {
            return false;
        }
        setCombo(*entry, combo);
    }
    stopRecording();
    return true;
}

void Shortcuts::reset(const QString& action)
{
    if (const ShortcutEntry* const entry = shortcutEntry(action.toStdString())) {
        setCombo(*entry, std::nullopt);
    }
}

void Shortcuts::resetAll()
{
    AppSettings settings = m_settings.current();
    settings.shortcuts.clear();
    m_settings.replace(std::move(settings));
}

void Shortcuts::setCombo(const ShortcutEntry& entry, const std::optional<KeyCombo>& combo)
{
    AppSettings settings = m_settings.current();
    settings.shortcuts = withCombo(std::move(settings.shortcuts), entry, combo);
    m_settings.replace(std::move(settings));
}

void Shortcuts::registerHotkeys()
{
    m_registered.clear();
    for (const ShortcutEntry& entry : shortcutEntries()) {
        if (reach(entry) == ShortcutReach::Anywhere && m_recordingAction.isEmpty()) {
            const KeyCombo combo = comboFor(entry, m_settings.current().shortcuts);
            m_registered.push_back(
                {entry.action,
                 m_hotkeys.registerHotkey(
                     keyStroke(combo, ShortcutReach::Anywhere),
                     {QString::fromLatin1(entry.id.data()), translated(entry.title)},
                     [this, action = entry.action] {
                         if (onHotkey) {
                             onHotkey(action);
                         }
                     })});
        }
    }
    Q_EMIT changed();
}

QStringList Shortcuts::unregisteredTitles() const
{
    QStringList titles;
    for (const Registered& registered : m_registered) {
        if (!registered.hotkey) {
            titles.append(translated(shortcutEntry(registered.action).title));
        }
    }
    return titles;
}

bool Shortcuts::isRegistered(ShortcutAction action) const
{
    const auto found = std::ranges::find(m_registered, action, &Registered::action);
    return found == m_registered.end() || found->hotkey != nullptr;
}

} // namespace zento
