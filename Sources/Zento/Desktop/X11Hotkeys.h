#pragma once

#include "Zento/Model/GlobalHotkeys.h"

#include <QObject>

#include <memory>
#include <string>

namespace zento {

/// Hot keys of an X server: a passive grab on the root window for every state of the locks. A key
/// that another client has grabbed is refused by the server, the window manager's among them.
///
/// A stroke goes by the key that gives its sign in the layout at hand, and follows a change of the
/// layout. While a key is held it fires once.
class X11Hotkeys final : public GlobalHotkeys {
public:
    /// `displayName` as in the environment's `DISPLAY`; empty takes the environment's. Without a
    /// server it is not available.
    explicit X11Hotkeys(const std::string& displayName = {});
    ~X11Hotkeys() override;

    bool isAvailable() const override;
    std::unique_ptr<GlobalHotkey> registerHotkey(
        const KeyStroke& stroke, const HotkeyName& name, std::function<void()> pressed) override;

private:
    class Server;
    std::shared_ptr<Server> m_server; // shared with the hot keys, whichever goes first
};

} // namespace zento
