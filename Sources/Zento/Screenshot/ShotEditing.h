#pragma once

#include "Zento/Screenshot/EditorTool.h"
#include "ZentoCore/Geometry.h"
#include "ZentoRender/Screenshot/Annotation.h"

#include <optional>
#include <string>
#include <vector>

namespace zento {

/// What an undo puts back.
struct ShotDocument {
    std::vector<Annotation> annotations; // the last lies on top
    std::optional<Rect> crop;            // pixels of the whole image

    bool operator==(const ShotDocument&) const = default;
};

/// What a press, a drag and a release in the editor come to. Places are pixels of the whole image.
///
/// A gesture is one step of undo at most, and none where nothing changed. While it runs, `shown`
/// has what it would come to; what needs a settled document (undo, delete, escape) gives it up
/// first.
///
/// Threading: a value.
class ShotEditing {
public:
    static constexpr double kLeastDrag = 3;  // pixels; a drag must be longer
    static constexpr double kLeastCrop = 20; // pixels; a crop must be larger both ways

    /// `document`: what is on the image already; no undo takes it away.
    explicit ShotEditing(Vec2 imageSize, ShotDocument document = {});

    const ShotDocument& document() const { return m_document; }
    /// With the mark that is being drawn, or the text that is being written where `withText` says
    /// so.
    enum class PendingText { Shown, Hidden };
    ShotDocument shown(PendingText text) const;

    const EditorTool& tool() const { return m_tool; }
    const std::string& colorHex() const { return m_colorHex; }
    double strokeWidth() const { return m_strokeWidth; } // as `Annotation::width`
    const std::optional<Rect>& cropDraft() const { return m_cropDraft; }
    const std::optional<Annotation>& pendingText() const { return m_pendingText; }
    const Annotation* selected() const; // null without a selection; until the next change
    bool canUndo() const { return !m_steps.done.empty(); }
    bool canRedo() const { return !m_steps.undone.empty(); }
    bool isDragging() const { return m_gesture.has_value(); }

    /// A text that is being written is committed.
    void setTool(const EditorTool& tool);
    /// They hold for the selected mark and the text that is being written, and for new marks.
    void setColor(const std::string& colorHex);
    void setStrokeWidth(double width);

    /// The left button, in this order. `tolerance`: how near a mark counts as on it.
    void press(Vec2 point, double tolerance);
    void drag(Vec2 point);
    void release(Vec2 point);

    void setTextInput(const std::string& text);
    /// An empty text leaves nothing.
    void commitText();

    void deleteSelection();
    void uncrop();
    void undo();
    void redo();

    /// True when nothing was left to leave: the window is to close.
    bool escape();

private:
    enum class DragEnd { Start, End, Whole };

    struct Gesture {
        Vec2 start;
        std::optional<Annotation> grabbed; // as it was
        DragEnd end = DragEnd::Whole;
        double reach = 0; // the farthest a pen has come from its start
    };

    struct Steps {
        std::vector<ShotDocument> done;
        std::vector<ShotDocument> undone;
    };

    void push();
    void cancelGesture();
    Annotation* find(const std::string& id);
    void pressSelect(Gesture& gesture, Vec2 point, double tolerance);
    void dragDraw(Gesture& gesture, Vec2 point);
    void dragSelect(const Gesture& gesture, Vec2 point);
    void dragCrop(const Gesture& gesture, Vec2 point);
    void releaseDraw(const Gesture& gesture, Vec2 point);
    void releaseSelect(const Annotation& was, bool isMoved);
    void releaseCrop();
    void restyle(const std::string& colorHex, double width);
    Annotation newMark(Annotation::Kind kind, Vec2 point) const;

    Vec2 m_imageSize;
    ShotDocument m_document;
    Steps m_steps;
    EditorTool m_tool = Tool::Select{};
    std::string m_colorHex = "#FF3B30";
    double m_strokeWidth = 1;
    std::optional<Annotation> m_draft;
    std::optional<Rect> m_cropDraft;
    std::optional<Annotation> m_pendingText;
    std::string m_selectedID; // empty: none
    std::optional<Gesture> m_gesture;
};

} // namespace zento
