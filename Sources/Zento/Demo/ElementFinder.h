#pragma once

#include "ZentoCore/Geometry.h"

#include <memory>
#include <optional>
#include <string>

namespace zento {

class AccessibilityBus;

/// What to look for in the windows of a desktop: the first element shown that fits.
struct ElementQuery {
    std::string application; // its name on the accessibility bus; empty: any
    std::string window;      // the title of its window; empty: any
    std::string role;        // as AT-SPI names it: "push button", "text", "list item"
    std::string name;        // a regular expression for its whole name, or, where it has none, for
                             // the whole text it holds; empty: any
    std::string text;        // if set, not the element but the first place of this text in it
};

/// An element, or a piece of text, that was found.
struct FoundElement {
    Rect frame; // pixels of the display
    std::string role;
    std::string name;
};

/// Finds buttons, fields and texts of running programs through the accessibility bus.
///
/// It speaks the bus's protocol (AT-SPI 2) over a GDBus connection of its own and not through
/// libatspi, which keeps one connection for the whole process and bears only one thread: the
/// recorder in the same process needs that one. A program that does not answer within half a second
/// counts as showing nothing.
///
/// Threading: one thread at a time, any; GDBus runs a worker thread from the first use on.
class ElementFinder {
public:
    /// `address`: of the accessibility bus. Throws `Error` kDesktopFailed if nobody answers there.
    explicit ElementFinder(const std::string& address);
    ~ElementFinder();

    std::optional<FoundElement> find(const ElementQuery& query) const;

    /// The whole text of the first element that fits.
    std::optional<std::string> textOf(const ElementQuery& query) const;

private:
    std::unique_ptr<AccessibilityBus> m_bus;
};

/// "the push button “Search” of notes": for sentences.
std::string description(const ElementQuery& query);

} // namespace zento
