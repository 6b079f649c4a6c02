#include "Zento/Demo/DemoScript.h"

namespace zento {

namespace {

constexpr std::string_view kIcon = "weather-storm-symbolic";
constexpr std::string_view kLine = "A picture for the storm warning";

ElementQuery inBrowser(const std::string& role, const std::string& name)
{
    return {
        .application = "gtk3-icon-browser", .window = "Icon Browser", .role = role, .name = name};
}

ElementQuery inIconDialog(const std::string& role, const std::string& name)
{
    return {
        .application = "gtk3-icon-browser",
        .window = std::string(kIcon),
        .role = role,
        .name = name};
}

ElementQuery inEditor(const std::string& role, const std::string& name)
{
    return {.application = "l3afpad", .window = "", .role = role, .name = name};
}

ElementQuery notesLine(const std::string& line)
{
    return {.application = "l3afpad", .window = "", .role = "text", .name = "", .text = line};
}

ClickStep clickBehind(ElementQuery text)
{
    return {.target = std::move(text), .spot = Spot::TextEnd};
}

} // namespace

std::vector<DemoStep> demoScript()
{
    return {
        PauseStep{0.4},
        SayStep{"Let's find a picture for the storm warning."},
        PauseStep{0.8},

        // An icon is looked up, looked at and copied.
        ClickStep{inBrowser("radio button", "Symbolic")},
        PauseStep{0.3},
        ClickStep{inBrowser("label", "Weather")},
        PauseStep{0.4},
        ClickStep{inBrowser("icon", std::string(kIcon))},
        PauseStep{6.6},
        SayStep{"This one it is. I copy its name."},
        PauseStep{0.4},
        ClickStep{inIconDialog("push button", "Copy to Clipboard")},
        PauseStep{0.2},
        ClickStep{inIconDialog("push button", "Close")},
        PauseStep{0.2},

        // It is noted down among the plans.
        SayStep{"These are our plans for the next version, and here is the place for it."},
        ScrollStep{inEditor("text", ""), WheelDirection::Down, 8},
        PauseStep{0.4},
        ScrollStep{inEditor("text", ""), WheelDirection::Up, 4},
        PauseStep{0.2},
        clickBehind(notesLine(std::string(kLine))),
        TypeStep{": "},
        MenuStep{
            .target = notesLine(std::string(kLine) + ": "),
            .spot = Spot::TextEnd,
            .item = inEditor("menu item", "Paste")},
        TypeStep{"\n- Ask Ida: is it clear at 16 px?"},
        PressStep{{"Control_L", "s"}},
        PauseStep{0.4},

        // On to the next one.
        SayStep{"Saved. On to the calendar!"},
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
