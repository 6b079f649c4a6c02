#pragma once

#include "ZentoCore/Geometry.h"
#include "ZentoImaging/Canvas.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace zento::bench {

/// What the accessibility bus knows of a window: it, or something in it.
struct Element {
    Rect frame; // pixels of the display
    std::string role;
    std::string name;
    std::optional<std::size_t> parent; // comes before it; absent for a window
};

/// A display with a program's window on it.
struct Sight {
    Canvas picture;
    std::vector<Element> elements; // those that are shown
};

/// A program that shows something. `arguments` may name files of the home folder, as "~/page.html".
struct Program {
    std::string name;
    std::vector<std::string> command;
    std::string opens;    // a file in the home folder; may be empty
    std::string contents; // of it
};

/// The program on a desktop of its own, once everything in its window is on the bus. Nothing where
/// it is not installed. Throws `Error`.
std::optional<Sight> look(const Program& program);

} // namespace zento::bench
