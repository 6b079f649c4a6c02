#pragma once

#include "Zento/Model/ShortcutAction.h"

#include <QString>

#include <functional>
#include <memory>

namespace zento {

/// A key stroke that reaches this program wherever the user is. Dropping the object gives it back.
class GlobalHotkey {
public:
    GlobalHotkey() = default;
    virtual ~GlobalHotkey() = default;
    GlobalHotkey(const GlobalHotkey&) = delete;
    GlobalHotkey& operator=(const GlobalHotkey&) = delete;
};

/// What a hot key does, for a desktop that shows it to its user.
struct HotkeyName {
    QString id; // the action's
    QString description;
};

/// Registers key strokes with the desktop.
///
/// Threading: the main thread; callbacks come there too.
class GlobalHotkeys {
public:
    virtual ~GlobalHotkeys() = default;

    /// Whether this desktop has such a thing at all.
    virtual bool isAvailable() const = 0;

    /// Null when another program has the stroke already, or when there is no such thing.
    virtual std::unique_ptr<GlobalHotkey> registerHotkey(
        const KeyStroke& stroke, const HotkeyName& name, std::function<void()> pressed) = 0;
};

} // namespace zento
