#include "ZentoCapture/Backends/AxRoles.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zento {

namespace {

using Row = std::pair<std::string_view, std::string_view>;

constexpr std::array kRoles{
    Row{"push button", "AXButton"},
    Row{"button", "AXButton"},
    Row{"toggle button", "AXCheckBox"},
    Row{"check box", "AXCheckBox"},
    Row{"radio button", "AXRadioButton"},
    Row{"switch", "AXSwitch"},
    Row{"combo box", "AXPopUpButton"},
    Row{"menu", "AXMenu"},
    Row{"popup menu", "AXMenu"},
    Row{"menu bar", "AXMenuBar"},
    Row{"menu item", "AXMenuItem"},
    Row{"check menu item", "AXMenuItem"},
    Row{"radio menu item", "AXMenuItem"},
    Row{"tearoff menu item", "AXMenuItem"},
    Row{"link", "AXLink"},
    Row{"entry", "AXTextField"},
    Row{"text", "AXTextField"},
    Row{"password text", "AXSecureTextField"},
    Row{"spin button", "AXTextField"},
    Row{"editbar", "AXTextField"},
    Row{"autocomplete", "AXComboBox"},
    Row{"editable combo box", "AXComboBox"},
    Row{"terminal", "AXTextArea"},
    Row{"document text", "AXTextArea"},
    Row{"label", "AXStaticText"},
    Row{"static", "AXStaticText"},
    Row{"paragraph", "AXStaticText"},
    Row{"heading", "AXHeading"},
    Row{"image", "AXImage"},
    Row{"icon", "AXImage"},
    Row{"slider", "AXSlider"},
    Row{"scroll bar", "AXScrollBar"},
    Row{"scroll pane", "AXScrollArea"},
    Row{"viewport", "AXScrollArea"},
    Row{"progress bar", "AXProgressIndicator"},
    Row{"level bar", "AXLevelIndicator"},
    Row{"page tab", "AXRadioButton"},
    Row{"page tab list", "AXTabGroup"},
    Row{"list", "AXList"},
    Row{"list box", "AXList"},
    Row{"list item", "AXRow"},
    Row{"table", "AXTable"},
    Row{"table row", "AXRow"},
    Row{"table cell", "AXCell"},
    Row{"table column header", "AXColumn"},
    Row{"tree", "AXOutline"},
    Row{"tree table", "AXOutline"},
    Row{"tree item", "AXRow"},
    Row{"tool bar", "AXToolbar"},
    Row{"split pane", "AXSplitGroup"},
    Row{"frame", "AXWindow"},
    Row{"window", "AXWindow"},
    Row{"dialog", "AXWindow"},
    Row{"alert", "AXWindow"},
    Row{"application", "AXApplication"},
    Row{"document web", "AXWebArea"},
    Row{"document frame", "AXWebArea"},
    Row{"panel", "AXGroup"},
    Row{"filler", "AXGroup"},
    Row{"section", "AXGroup"},
    Row{"grouping", "AXGroup"},
    Row{"unknown", "AXUnknown"},
    Row{"invalid", "AXUnknown"},
    Row{"", "AXUnknown"},
};

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

char upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

} // namespace

std::string axRole(std::string_view atspiRole)
{
    if (const auto* const row = std::ranges::find(kRoles, atspiRole, &Row::first);
        row != kRoles.end()) {
        return std::string(row->second);
    }
    std::string role = "AX";
    bool startsWord = true;
    for (const char c : atspiRole) {
        if (isLetter(c)) {
            role += startsWord ? upper(c) : c;
        }
        startsWord = !isLetter(c);
    }
    return role.size() > 2 ? role : "AXUnknown";
}

} // namespace zento
