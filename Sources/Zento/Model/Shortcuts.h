#pragma once

#include "Zento/Model/GlobalHotkeys.h"
#include "Zento/Model/SettingsModel.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>

#include <array>
#include <functional>
#include <memory>
#include <vector>

namespace zento {

/// The table of actions with their key combinations, and the two global hot keys.
///
/// Threading: the main thread.
class Shortcuts : public QObject {
    Q_OBJECT
    /// For the settings pane: a list of {name, rows}; a row is {action, title, keys, isDefault,
    /// defaultText, conflict, isRegistered}: `keys` the caps as a list ("Ctrl", "Shift", "N"),
    /// `defaultText` the default as one text ("Ctrl+N"), `conflict` the sentence "Also used by …"
    /// or empty, `isRegistered` false for a global one that another program has.
    Q_PROPERTY(QVariantList groups READ groups NOTIFY changed)
    /// The action whose new combination is being pressed; empty when none is.
    Q_PROPERTY(QString recordingAction READ recordingAction NOTIFY recordingActionChanged)

public:
    Shortcuts(SettingsModel& settings, GlobalHotkeys& hotkeys);

    QVariantList groups() const;
    QString recordingAction() const { return m_recordingAction; }

    /// The combination of an in-window action as a `Shortcut.sequence` of the window: "Ctrl+N".
    /// Empty for an unknown id. Bind it together with `groups`, which changes with it.
    Q_INVOKABLE QString sequence(const QString& action) const;
    Q_INVOKABLE QStringList keys(const QString& action) const;
    Q_INVOKABLE QString title(const QString& action) const;

    /// The row waits for a combination; the global hot keys rest meanwhile.
    Q_INVOKABLE void startRecording(const QString& action);
    Q_INVOKABLE void stopRecording();

    /// A key press while a row waits: Escape ends without a change, Delete and Backspace go back to
    /// the default, any other key that makes a combination is set. True when the row no longer
    /// waits. `key` is a Qt::Key, `modifiers` Qt::KeyboardModifiers, `scanCode` the event's native
    /// one (0: unknown), by which a key of another script is known.
    Q_INVOKABLE bool pressed(int key, int modifiers, int scanCode = 0);

    Q_INVOKABLE void reset(const QString& action);
    Q_INVOKABLE void resetAll();

    /// Drops both hot keys and registers them anew, with what they do.
    void registerHotkeys();

    /// The titles of the global actions whose hot key another program has.
    QStringList unregisteredTitles() const;

    /// A global hot key was pressed.
    std::function<void(ShortcutAction)> onHotkey;

Q_SIGNALS:
    void changed();
    void recordingActionChanged();

private:
    struct Registered {
        ShortcutAction action;
        std::unique_ptr<GlobalHotkey> hotkey; // null when another program has it
    };

    void setCombo(const ShortcutEntry& entry, const std::optional<KeyCombo>& combo);
    bool isRegistered(ShortcutAction action) const;

    SettingsModel& m_settings;
    GlobalHotkeys& m_hotkeys;
    std::vector<Registered> m_registered;
    QString m_recordingAction;
};

} // namespace zento
