#pragma once

#include "Zento/Demo/ElementFinder.h"
#include "Zento/Demo/Pointer.h"

#include <string>
#include <variant>
#include <vector>

namespace zento {

/// Where on an element a hand goes.
enum class Spot : unsigned char {
    Middle, // about its middle, as a hand hits it
    TextEnd // behind the last letter, to place the caret there
};

struct PauseStep {
    double seconds = 0;
};

struct MoveStep {
    ElementQuery target;
};

struct ClickStep {
    ElementQuery target;
    Spot spot = Spot::Middle;
};

/// Opens an element's context menu and chooses from it.
struct MenuStep {
    ElementQuery target;
    Spot spot = Spot::Middle;
    ElementQuery item;
};

/// Into whatever has the keyboard's focus; UTF-8.
struct TypeStep {
    std::string text;
};

/// Keys pressed together, by the names of their symbols.
struct PressStep {
    std::vector<std::string> keys;
};

/// Moves onto the element and turns the wheel there.
struct ScrollStep {
    ElementQuery target;
    WheelDirection direction = WheelDirection::Down;
    int notches = 0;
};

/// Says a sentence while the work goes on.
struct SayStep {
    std::string text;
};

using DemoStep = std::
    variant<PauseStep, MoveStep, ClickStep, MenuStep, TypeStep, PressStep, ScrollStep, SayStep>;

/// What the demo shows, about 27 seconds: a look through a collection of icons, the choice noted
/// down in a text, and a search. It has what an automatic editor works on: clicks far apart,
/// typing, scrolling, a menu, some words on what is done, and more than six seconds in which
/// nothing happens.
std::vector<DemoStep> demoScript();

/// The title of the text that the script writes into, and its content at the start.
inline constexpr const char* kNotesFile = "notes.md";
std::string notesText();

} // namespace zento
