#include "Zento/Desktop/X11Hotkeys.h"

#include <QSocketNotifier>

#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace zento {

namespace {

// Keysyms of the core protocol; those of printable ASCII are the characters.
constexpr xcb_keysym_t kBackspace = 0xff08;
constexpr xcb_keysym_t kTab = 0xff09;
constexpr xcb_keysym_t kReturn = 0xff0d;
constexpr xcb_keysym_t kEscape = 0xff1b;
constexpr xcb_keysym_t kLeft = 0xff51;
constexpr xcb_keysym_t kUp = 0xff52;
constexpr xcb_keysym_t kRight = 0xff53;
constexpr xcb_keysym_t kDown = 0xff54;
constexpr xcb_keysym_t kNumLock = 0xff7f;
constexpr xcb_keysym_t kF1 = 0xffbe;
constexpr xcb_keysym_t kAltLeft = 0xffe9;
constexpr xcb_keysym_t kSuperLeft = 0xffeb;

struct Free {
    void operator()(void* memory) const noexcept { std::free(memory); } // NOLINT: libxcb's contract
};
template <typename T>
using Reply = std::unique_ptr<T, Free>;

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};

/// None for a name that is not of `KeyCombo`.
std::optional<xcb_keysym_t> keysymOf(const std::string& key)
{
    static const std::map<std::string, xcb_keysym_t> kNamed{
        {"delete", kBackspace},
        {"tab", kTab},
        {"return", kReturn},
        {"escape", kEscape},
        {"left", kLeft},
        {"up", kUp},
        {"right", kRight},
        {"down", kDown},
        {"space", ' '},
    };
    if (const auto named = kNamed.find(key); named != kNamed.end()) {
        return named->second;
    }
    if (key.size() == 1) {
        return static_cast<unsigned char>(key.front());
    }
    if (key.starts_with('f')) {
        return kF1 + static_cast<xcb_keysym_t>(std::atoi(key.c_str() + 1)) - 1; // NOLINT: a table's
    }
    return std::nullopt;
}

/// The layout and the modifiers of a server.
class Keyboard {
public:
    explicit Keyboard(xcb_connection_t* connection)
    {
        const xcb_setup_t* const setup = xcb_get_setup(connection);
        m_first = setup->min_keycode;
        const Reply<xcb_get_keyboard_mapping_reply_t> mapping(xcb_get_keyboard_mapping_reply(
            connection,
            xcb_get_keyboard_mapping(
                connection, m_first, static_cast<std::uint8_t>(setup->max_keycode - m_first + 1)),
            nullptr));
        if (mapping) {
            const xcb_keysym_t* const symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
            m_symbols.assign(
                symbols, symbols + xcb_get_keyboard_mapping_keysyms_length(mapping.get()));
            m_columns = mapping->keysyms_per_keycode;
        }
        const Reply<xcb_get_modifier_mapping_reply_t> modifiers(xcb_get_modifier_mapping_reply(
            connection, xcb_get_modifier_mapping(connection), nullptr));
        if (modifiers) {
            const xcb_keycode_t* const codes = xcb_get_modifier_mapping_keycodes(modifiers.get());
            m_modifiers.assign(
                codes, codes + xcb_get_modifier_mapping_keycodes_length(modifiers.get()));
            m_keysPerModifier = modifiers->keycodes_per_modifier;
        }
    }

    /// The key that gives the sign alone, else one that gives it with others or in another group.
    std::optional<xcb_keycode_t> keyOf(xcb_keysym_t symbol) const
    {
        for (std::size_t column = 0; column < m_columns; ++column) {
            for (std::size_t i = column; i < m_symbols.size(); i += m_columns) {
                if (m_symbols[i] == symbol) {
                    return static_cast<xcb_keycode_t>(m_first + i / m_columns);
                }
            }
        }
        return std::nullopt;
    }

    /// The modifier that a key with this sign sets; `otherwise` where none is known.
    std::uint16_t modifierOf(xcb_keysym_t symbol, std::uint16_t otherwise) const
    {
        const auto key = keyOf(symbol);
        const auto found = key ? std::ranges::find(m_modifiers, *key) : m_modifiers.end();
        if (found == m_modifiers.end()) {
            return otherwise;
        }
        const auto index = static_cast<std::size_t>(found - m_modifiers.begin());
        return static_cast<std::uint16_t>(1U << (index / m_keysPerModifier));
    }

private:
    xcb_keycode_t m_first = 8;
    std::size_t m_columns = 1;
    std::size_t m_keysPerModifier = 1;
    std::vector<xcb_keysym_t> m_symbols;
    std::vector<xcb_keycode_t> m_modifiers;
};

/// A stroke as the server knows it.
struct Grab {
    xcb_keycode_t key = 0;
    std::uint16_t modifiers = 0;
    bool operator==(const Grab&) const = default;
};

} // namespace

class X11Hotkeys::Server {
public:
    explicit Server(const std::string& displayName)
        : m_connection(xcb_connect(displayName.empty() ? nullptr : displayName.c_str(), &m_number))
    {
        if (xcb_connection_has_error(get()) != 0) {
            return;
        }
        auto screen = xcb_setup_roots_iterator(xcb_get_setup(get()));
        for (int i = 0; i < m_number; ++i) {
            xcb_screen_next(&screen);
        }
        m_root = screen.data->root;
        m_keyboard.emplace(get());
        m_notifier = std::make_unique<QSocketNotifier>(
            xcb_get_file_descriptor(get()), QSocketNotifier::Read);
        QObject::connect(
            m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this] { read(); });
    }

    bool isConnected() const { return xcb_connection_has_error(get()) == 0; }

    /// Zero when it could not be registered.
    int add(const KeyStroke& stroke, std::function<void()> pressed)
    {
        const auto wanted = grabOf(stroke);
        if (!wanted || !grab(*wanted)) {
            return 0;
        }
        m_hotkeys[++m_lastId] = {stroke, *wanted, std::move(pressed)};
        readSoon(); // what came between the replies
        return m_lastId;
    }

    void remove(int id)
    {
        if (const auto hotkey = m_hotkeys.extract(id); !hotkey.empty()) {
            release(hotkey.mapped().grab);
            xcb_flush(get());
        }
    }

private:
    struct Hotkey {
        KeyStroke stroke;
        std::optional<Grab> grab;
        std::function<void()> pressed;
    };

    xcb_connection_t* get() const { return m_connection.get(); }

    std::optional<Grab> grabOf(const KeyStroke& stroke) const
    {
        const auto symbol = keysymOf(stroke.key);
        const auto key = symbol && m_keyboard ? m_keyboard->keyOf(*symbol) : std::nullopt;
        if (!key) {
            return std::nullopt;
        }
        unsigned modifiers = 0;
        modifiers |= stroke.shift ? unsigned{XCB_MOD_MASK_SHIFT} : 0U;
        modifiers |= stroke.control ? unsigned{XCB_MOD_MASK_CONTROL} : 0U;
        modifiers |= stroke.alt ? m_keyboard->modifierOf(kAltLeft, XCB_MOD_MASK_1) : 0U;
        modifiers |= stroke.super ? m_keyboard->modifierOf(kSuperLeft, XCB_MOD_MASK_4) : 0U;
        return Grab{*key, static_cast<std::uint16_t>(modifiers)};
    }

    /// The states of the locks, which shall not matter.
    std::array<std::uint16_t, 4> lockStates() const
    {
        const std::uint16_t number = m_keyboard->modifierOf(kNumLock, XCB_MOD_MASK_2);
        const std::uint16_t caps = XCB_MOD_MASK_LOCK;
        return {0, caps, number, static_cast<std::uint16_t>(caps | number)};
    }

    /// All or nothing.
    bool grab(const Grab& wanted)
    {
        std::vector<xcb_void_cookie_t> requests;
        for (const std::uint16_t locks : lockStates()) {
            requests.push_back(xcb_grab_key_checked(
                get(),
                0,
                m_root,
                static_cast<std::uint16_t>(wanted.modifiers | locks),
                wanted.key,
                XCB_GRAB_MODE_ASYNC,
                XCB_GRAB_MODE_ASYNC));
        }
        bool isOurs = true;
        for (const xcb_void_cookie_t request : requests) {
            const Reply<xcb_generic_error_t> error(xcb_request_check(get(), request));
            isOurs = isOurs && !error;
        }
        if (!isOurs) {
            release(wanted);
        }
        return isOurs && isConnected();
    }

    void release(const std::optional<Grab>& held)
    {
        if (held) {
            for (const std::uint16_t locks : lockStates()) {
                xcb_ungrab_key(
                    get(), held->key, m_root, static_cast<std::uint16_t>(held->modifiers | locks));
            }
        }
    }

    void readSoon()
    {
        QMetaObject::invokeMethod(m_notifier.get(), [this] { read(); }, Qt::QueuedConnection);
    }

    void read()
    {
        while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(get())}) {
            handle(*event);
        }
        if (!isConnected()) {
            m_notifier->setEnabled(false); // it would be readable for ever
        }
    }

    void handle(const xcb_generic_event_t& event)
    {
        switch (event.response_type & 0x7f) {
        case XCB_KEY_PRESS:
            press(reinterpret_cast<const xcb_key_press_event_t&>(event));
            break;
        case XCB_KEY_RELEASE: {
            const auto& release = reinterpret_cast<const xcb_key_release_event_t&>(event);
            m_released = {release.detail, release.time};
            break;
        }
        case XCB_MAPPING_NOTIFY:
            followLayout();
            break;
        default:
            break;
        }
    }

    void press(const xcb_key_press_event_t& event)
    {
        // A held key repeats as a release and a press of one time.
        if (m_released == std::pair(event.detail, event.time)) {
            return;
        }
        const auto locks = lockStates().back();
        const auto modifiers = static_cast<std::uint16_t>(event.state & 0xff & ~locks);
        const auto found = std::ranges::find_if(m_hotkeys, [&](const auto& entry) {
            return entry.second.grab == Grab{event.detail, modifiers};
        });
        if (found != m_hotkeys.end()) {
            const auto pressed = found->second.pressed; // it may drop its hot key
            pressed();
        }
    }

    void followLayout()
    {
        for (auto& [id, hotkey] : m_hotkeys) {
            release(hotkey.grab);
        }
        m_keyboard.emplace(get());
        for (auto& [id, hotkey] : m_hotkeys) {
            hotkey.grab = grabOf(hotkey.stroke);
            if (hotkey.grab && !grab(*hotkey.grab)) {
                hotkey.grab.reset();
            }
        }
    }

    int m_number = 0; // of the screen
    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    xcb_window_t m_root = XCB_WINDOW_NONE;
    std::optional<Keyboard> m_keyboard;
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::map<int, Hotkey> m_hotkeys;
    std::pair<xcb_keycode_t, xcb_timestamp_t> m_released{};
    int m_lastId = 0;
};

namespace {

template <typename Server>
class X11Hotkey final : public GlobalHotkey {
public:
    X11Hotkey(std::shared_ptr<Server> server, int id)
        : m_server(std::move(server))
        , m_id(id)
    {
    }
    ~X11Hotkey() override { m_server->remove(m_id); }

private:
    std::shared_ptr<Server> m_server;
    int m_id;
};

} // namespace

X11Hotkeys::X11Hotkeys(const std::string& displayName)
    : m_server(std::make_shared<Server>(displayName))
{
}

X11Hotkeys::~X11Hotkeys() = default;

bool X11Hotkeys::isAvailable() const
{
    return m_server->isConnected();
}

std::unique_ptr<GlobalHotkey> X11Hotkeys::registerHotkey(
    const KeyStroke& stroke, const HotkeyName& /*name*/, std::function<void()> pressed)
{
    if (!isAvailable()) {
        return nullptr;
    }
    const int id = m_server->add(stroke, std::move(pressed));
    return id == 0 ? nullptr : std::make_unique<X11Hotkey<Server>>(m_server, id);
}

} // namespace zento
