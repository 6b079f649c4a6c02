#include "Zento/Desktop/PortalHotkeys.h"

#include "ZentoCapture/GlobalShortcuts.h"
#include "ZentoCapture/ThreadName.h"
#include "ZentoCore/Error.h"

#include <QMetaObject>
#include <QPointer>
#include <QTimer>

#include <utility>

namespace zento {

namespace {

/// The names that are not those of the keyboard tables in lower case.
std::string keysym(const std::string& key)
{
    static const std::map<std::string, std::string> kNames{
        {"return", "Return"},
        {"escape", "Escape"},
        {"tab", "Tab"},
        {"left", "Left"},
        {"right", "Right"},
        {"up", "Up"},
        {"down", "Down"},
        {"space", "space"}};
    if (key.size() == 1) {
        return key;
    }
    if (key.front() == 'f' && key.find_first_not_of("0123456789", 1) == std::string::npos) {
        return "F" + key.substr(1);
    }
    const auto found = kNames.find(key);
    return found == kNames.end() ? "" : found->second;
}

} // namespace

std::string portalTrigger(const KeyStroke& stroke)
{
    const std::string key = stroke.key.empty() ? "" : keysym(stroke.key);
    if (key.empty()) {
        return {};
    }
    std::string trigger;
    for (const auto& [isHeld, name] :
         {std::pair{stroke.control, "CTRL+"},
          std::pair{stroke.alt, "ALT+"},
          std::pair{stroke.shift, "SHIFT+"},
          std::pair{stroke.super, "LOGO+"}}) {
        trigger += isHeld ? name : "";
    }
    return trigger + key;
}

class PortalHotkeys::Key final : public GlobalHotkey {
public:
    Key(PortalHotkeys& hotkeys, std::string id)
        : m_hotkeys(&hotkeys)
        , m_id(std::move(id))
    {
    }
    ~Key() override
    {
        if (m_hotkeys) {
            m_hotkeys->m_wishes.erase(m_id);
        }
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

private:
    QPointer<PortalHotkeys> m_hotkeys;
    std::string m_id;
};

PortalHotkeys::PortalHotkeys(std::function<void()> missing)
    : m_missing(std::move(missing))
{
}

PortalHotkeys::~PortalHotkeys() = default;

std::unique_ptr<GlobalHotkey> PortalHotkeys::registerHotkey(
    const KeyStroke& stroke, const HotkeyName& name, std::function<void()> pressed)
{
    const std::string id = name.id.toStdString();
    if (!m_isAvailable || m_wishes.contains(id)) {
        return nullptr;
    }
    m_wishes[id] = {stroke, name.description, std::move(pressed)};
    bindLater();
    return std::make_unique<Key>(*this, id);
}

/// Keys are registered one after the other, and the desktop asks its user about all at once.
void PortalHotkeys::bindLater()
{
    if (!std::exchange(m_isWaiting, true)) {
        QTimer::singleShot(0, this, &PortalHotkeys::bind);
    }
}

/// A change of keys means a new session: one binds its keys once.
void PortalHotkeys::bind()
{
    m_isWaiting = false;
    std::vector<GlobalShortcut> shortcuts;
    Bound bound;
    for (const auto& [id, wish] : m_wishes) {
        const std::string description = wish.description.toStdString();
        const std::string trigger = portalTrigger(wish.stroke);
        shortcuts.push_back({.id = id, .description = description, .trigger = trigger});
        bound.push_back({id, {description, trigger}});
    }
    if (shortcuts.empty() || bound == m_bound) {
        return;
    }
    m_bound = std::move(bound);
    m_thread = {}; // the session before ends
    m_thread = std::jthread([this, shortcuts = std::move(shortcuts)](const std::stop_token& stop) {
        nameThread("desktop.keys");
        try {
            listenToShortcuts(
                shortcuts,
                [this](const std::string& id) {
                    QMetaObject::invokeMethod(
                        this, [this, id] { press(id); }, Qt::QueuedConnection);
                },
                stop);
        } catch (const Error& error) {
            if (error.code() != ErrorCode::kCancelled) {
                QMetaObject::invokeMethod(
                    this,
                    [this] {
                        if (std::exchange(m_isAvailable, false)) {
                            m_missing();
                        }
                    },
                    Qt::QueuedConnection);
            }
        }
    });
}

void PortalHotkeys::press(const std::string& id)
{
    if (const auto found = m_wishes.find(id); found != m_wishes.end()) {
        found->second.pressed();
    }
}

} // namespace zento
