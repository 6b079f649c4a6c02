#pragma once

#include "ZentoRender/Screenshot/Annotation.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace zento {

namespace Tool {

struct Select {
    bool operator==(const Select&) const = default;
};

struct Draw {
    Annotation::Kind kind = Annotation::Kind::Arrow;
    bool operator==(const Draw&) const = default;
};

struct Crop {
    bool operator==(const Crop&) const = default;
};

} // namespace Tool

/// What a drag in the screenshot editor does.
using EditorTool = std::variant<Tool::Select, Tool::Draw, Tool::Crop>;

/// What the editor shows of a tool.
struct EditorToolEntry {
    EditorTool tool;
    std::string_view id;   // "select", an annotation kind's name, "crop"
    char key = 'v';        // chooses it, without a modifier
    std::string_view help; // English, marked for translation
};

/// `select`, the kinds in their order, `crop`.
inline constexpr std::size_t kEditorToolCount = kAllAnnotationKinds.size() + 2;
const std::array<EditorToolEntry, kEditorToolCount>& editorTools();

const EditorToolEntry& entry(const EditorTool& tool);
std::optional<EditorTool> editorTool(std::string_view id);
std::optional<EditorTool> editorTool(char key);

} // namespace zento
