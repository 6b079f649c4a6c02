#include "Zento/Screenshot/EditorTool.h"

#include <algorithm>

// Marks a text for translation; the editor translates it when it shows it.
#define TEXT(text) text

namespace zento {

const std::array<EditorToolEntry, kEditorToolCount>& editorTools()
{
    using enum Annotation::Kind;
    static constexpr std::array<EditorToolEntry, kEditorToolCount> kTools{{
        {Tool::Select{}, "select", 'v', TEXT("Select — click a mark to move, resize or delete it")},
        {Tool::Draw{Arrow}, "arrow", 'a', TEXT("Arrow")},
        {Tool::Draw{Line}, "line", 'l', TEXT("Line")},
        {Tool::Draw{Box}, "box", 'r', TEXT("Box")},
        {Tool::Draw{Ellipse}, "ellipse", 'o', TEXT("Ellipse")},
        {Tool::Draw{Highlight}, "highlight", 'h', TEXT("Highlighter")},
        {Tool::Draw{Pen}, "pen", 'p', TEXT("Pen — draw freehand")},
        {Tool::Draw{Blur}, "blur", 'b', TEXT("Blur (redact)")},
        {Tool::Draw{Spotlight}, "spotlight", 's', TEXT("Spotlight — dim everything else")},
        {Tool::Draw{Badge}, "badge", 'n', TEXT("Numbered step — click to place")},
        {Tool::Draw{Text}, "text", 't', TEXT("Text")},
        {Tool::Crop{}, "crop", 'c', TEXT("Crop — drag the part to keep")},
    }};
    return kTools;
}

const EditorToolEntry& entry(const EditorTool& tool)
{
    return *std::ranges::find(editorTools(), tool, &EditorToolEntry::tool);
}

std::optional<EditorTool> editorTool(std::string_view id)
{
    const auto found = std::ranges::find(editorTools(), id, &EditorToolEntry::id);
    return found == editorTools().end() ? std::nullopt : std::optional(found->tool);
}

std::optional<EditorTool> editorTool(char key)
{
    const auto found = std::ranges::find(editorTools(), key, &EditorToolEntry::key);
    return found == editorTools().end() ? std::nullopt : std::optional(found->tool);
}

} // namespace zento
