#pragma once

#include "Zento/Demo/DemoActor.h"
#include "Zento/Demo/Pointer.h"
#include "Zento/Demo/PrivateDesktop.h"
#include "ZentoCore/Geometry.h"
#include "ZentoCore/SessionBundle.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zento::test {

/// Zento as a person has it: on a desktop with another program in a window, and with the
/// accessibility bus switched on. A hand on mouse and keyboard finds things by what the bus tells.
///
/// Whatever is awaited and does not come throws `Error`.
class RunningZento {
public:
    /// `settings` is the user's settings file; `defaults` what Zento remembers of the run before.
    /// `prepare` gets the folder of recordings before Zento starts.
    explicit RunningZento(
        std::string_view settings = "{}",
        std::string_view defaults = "",
        const std::function<void(const std::filesystem::path&)>& prepare = {});

    /// An element of Zento.
    static ElementQuery
    element(const std::string& role, const std::string& name, const std::string& window = "");

    void await(const ElementQuery& query) const;
    void click(const ElementQuery& query);
    void choose(const ElementQuery& query, const ElementQuery& item); // from its context menu
    void press(const std::vector<std::string>& keys) { m_actor->perform(PressStep{keys}, {}); }
    /// Where an element is, once it stands still.
    Rect frameOf(const ElementQuery& query) { return m_actor->await(query, {}).frame; }
    void drag(Vec2 from, Vec2 to);
    void doubleClick(Vec2 place);
    void chooseFromMenu(const ElementQuery& query, const ElementQuery& item)
    {
        m_actor->perform(MenuStep{query, Spot::Middle, item}, {});
    }
    void type(const std::string& text) { m_actor->perform(TypeStep{text}, {}); }
    bool isShown(const ElementQuery& query) const { return m_finder->find(query).has_value(); }

    /// The other program's text field, for `click`.
    static ElementQuery editor();

    /// Ends Zento as the end of a session does, and waits until it is gone.
    void terminate() const;

    /// Starts it once more.
    pid_t startAnother() { return m_desktop.start({ZENTO_PROGRAM}); }

    std::vector<std::filesystem::path> recordings() const;
    std::filesystem::path trash() const;
    std::string messages() const; // of all programs of the desktop

    /// Waits until it holds. `what` says what does not happen: "The film does not appear".
    static void await(const std::function<bool()>& condition, const std::string& what);

private:
    void switchAccessibilityOn();
    std::string accessibilityAddress() const;

    PrivateDesktop m_desktop{{1440, 900}};
    pid_t m_zento = 0;
    std::optional<ElementFinder> m_finder;
    std::optional<DemoActor> m_actor;
    std::optional<Pointer> m_hand; // for what no script does
};

} // namespace zento::test
