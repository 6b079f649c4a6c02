#pragma once

#include "Zento/Model/GlobalHotkeys.h"

#include <QObject>

#include <functional>
#include <map>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace zento {

/// Hot keys of a desktop that lets no program listen: Wayland, through the GlobalShortcuts portal.
/// The desktop shows its user what a key would do and decides on the key itself; the one we would
/// like is a proposal.
///
/// Whether there is such a portal is known a while after the first key was registered; until then
/// there is taken to be one.
class PortalHotkeys final : public QObject, public GlobalHotkeys {
    Q_OBJECT

public:
    /// `missing` is told once, on the main thread, if the desktop binds no keys.
    explicit PortalHotkeys(std::function<void()> missing);
    ~PortalHotkeys() override;

    bool isAvailable() const override { return m_isAvailable; }

    std::unique_ptr<GlobalHotkey> registerHotkey(
        const KeyStroke& stroke, const HotkeyName& name, std::function<void()> pressed) override;

private:
    class Key;
    struct Wish {
        KeyStroke stroke;
        QString description;
        std::function<void()> pressed;
    };
    using Bound = std::vector<std::pair<std::string, std::pair<std::string, std::string>>>;

    void bindLater();
    void bind();
    void press(const std::string& id);

    std::function<void()> m_missing;
    std::map<std::string, Wish> m_wishes; // by id
    Bound m_bound;                        // what the thread was started with
    bool m_isAvailable = true;
    bool m_isWaiting = false;
    std::jthread m_thread; // "desktop.keys"
};

/// A stroke as the desktop portals write it, "LOGO+ALT+r"; empty where they have no name for the
/// key, and the user chooses one.
std::string portalTrigger(const KeyStroke& stroke);

} // namespace zento
