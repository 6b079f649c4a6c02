#include "Zento/Demo/DemoScript.h"

namespace zento {

namespace {

ElementQuery inBrowser(const std::string& role, const std::string& name)
{
    return {.application = "gtk3-icon-browser", .role = role, .name = name};
}

ElementQuery inEditor(const std::string& role, const std::string& name)
{
    return {.application = "l3afpad", .role = role, .name = name};
}

ElementQuery notesLine(const std::string& line)
{
    return {.application = "l3afpad", .role = "text", .name = "", .text = line};
}

ClickStep rightClick(ElementQuery target)
{
    return {.target = std::move(target), .button = PointerButton::Right};
}

ClickStep clickBehind(ElementQuery target)
{
    return {.target = std::move(target), .spot = Spot::TextEnd};
}

} // namespace

std::vector<DemoStep> demoScript()
{
    return {
        PauseStep{0.8},

        // An icon is looked up and looked at.
        ClickStep{inBrowser("radio button", "Symbolic")},
        PauseStep{0.3},
        ClickStep{inBrowser("label", "Weather")},
        PauseStep{0.5},
        ClickStep{inBrowser("icon", "weather-storm-symbolic")},
        PauseStep{6.6},
        ClickStep{inBrowser("push button", "Close")},
        PauseStep{0.3},

        // It is noted down among the plans.
        ScrollStep{inEditor("text", ""), WheelDirection::Down, 8},
        PauseStep{0.4},
        ScrollStep{inEditor("text", ""), WheelDirection::Up, 4},
        PauseStep{0.3},
        ClickStep{clickBehind(notesLine("A picture for the storm warning"))},
        TypeStep{": weather-storm\n- Ask Ida if it reads well at 16 px!"},
        PauseStep{0.3},
        PressStep{{"Control_L", "s"}},
        PauseStep{0.5},

        // The line is copied from the menu.
        rightClick(notesLine("weather-storm")),
        PauseStep{0.5},
        ClickStep{inEditor("menu item", "Select All")},
        PauseStep{0.5},

        // On to the next one.
        ClickStep{inBrowser("toggle button", "")},
        PauseStep{0.2},
        TypeStep{"calendar"},
        PauseStep{1.2},
    };
}

std::string notesText()
{
    return R"(# Weather station, next version

## The window
- One column on small screens
- The wind as an arrow, not as a number
- Colours that work in bright sun
- Every chart has a table behind it

## The forecast
- Seven days instead of five
- Rain by the hour, today and tomorrow
- Say how sure we are

## Warnings
- One sentence, the time, the place
- A sound only at night
- A picture for the storm warning
- No warning twice

## The map
- Zoom with two fingers or the wheel
- Stations we trust are filled circles
- Old readings fade out

## Behind the scenes
- Readings are kept for ten years
- One file a day, plain text
- The nightly copy goes to two places
- Measure the start: under a second

## Open questions
- Who translates the new sentences?
- Do we need an account at all?
- Which week is the release?

## Later
- A page for the school's own station
- Sunrise, sunset and the moon
- Sea temperatures in summer
- Pollen, if somebody measures it
- A widget for the start page
)";
}

} // namespace zento
