#include "Zento/Screenshot/ShotEditing.h"

#include <algorithm>
#include <cmath>
#include <ranges>
#include <utility>

namespace zento {

namespace {

double length(Vec2 a, Vec2 b)
{
    return std::hypot(b.x - a.x, b.y - a.y);
}

} // namespace

ShotEditing::ShotEditing(Vec2 imageSize, ShotDocument document)
    : m_imageSize(imageSize)
    , m_document(std::move(document))
{
}

ShotDocument ShotEditing::shown(PendingText text) const
{
    ShotDocument document = m_document;
    if (m_draft) {
        document.annotations.push_back(*m_draft);
    }
    if (m_pendingText && text == PendingText::Shown) {
        document.annotations.push_back(*m_pendingText);
    }
    return document;
}

const Annotation* ShotEditing::selected() const
{
    const auto found = std::ranges::find(m_document.annotations, m_selectedID, &Annotation::id);
    return found == m_document.annotations.end() ? nullptr : &*found;
}

Annotation* ShotEditing::find(const std::string& id)
{
    const auto found = std::ranges::find(m_document.annotations, id, &Annotation::id);
    return found == m_document.annotations.end() ? nullptr : &*found;
}

/// Before a change of the document.
void ShotEditing::push()
{
    m_steps.done.push_back(m_document);
    m_steps.undone.clear();
}

void ShotEditing::setTool(const EditorTool& tool)
{
    cancelGesture();
    commitText();
    m_tool = tool;
}

void ShotEditing::setColor(const std::string& colorHex)
{
    m_colorHex = colorHex;
    restyle(colorHex, m_strokeWidth);
}

void ShotEditing::setStrokeWidth(double width)
{
    m_strokeWidth = width;
    restyle(m_colorHex, width);
}

/// `restyleSelection` takes both: of a selected mark only the one that was chosen changes, since
/// selecting a mark makes its values the current ones.
void ShotEditing::restyle(const std::string& colorHex, double width)
{
    cancelGesture();
    if (m_pendingText) {
        m_pendingText->colorHex = colorHex;
        m_pendingText->width = width;
        return;
    }
    Annotation* const mark = find(m_selectedID);
    if (mark == nullptr || (mark->colorHex == colorHex && mark->width == width)) {
        return;
    }
    push();
    mark->colorHex = colorHex;
    mark->width = width;
}

void ShotEditing::press(Vec2 point, double tolerance)
{
    cancelGesture();
    if (m_pendingText && !m_pendingText->text.empty()) {
        commitText(); // a click beside it ends the writing, and does nothing else
        return;
    }
    m_pendingText.reset();
    Gesture gesture{.start = point};
    if (std::holds_alternative<Tool::Select>(m_tool)) {
        pressSelect(gesture, point, tolerance);
    }
    m_gesture = std::move(gesture);
}

void ShotEditing::pressSelect(Gesture& gesture, Vec2 point, double tolerance)
{
    if (const Annotation* const mark = selected(); mark != nullptr && hasEnds(mark->kind)) {
        const double toStart = length(point, mark->start);
        const double toEnd = length(point, mark->end);
        if (std::min(toStart, toEnd) <= tolerance) {
            gesture.grabbed = *mark;
            gesture.end = toStart <= toEnd ? DragEnd::Start : DragEnd::End;
            return;
        }
    }
    const double height = m_document.crop ? m_document.crop->h : m_imageSize.y; // as it is drawn
    const auto marks = std::views::reverse(m_document.annotations);
    const auto hit = std::ranges::find_if(
        marks, [&](const Annotation& mark) { return mark.hitTest(point, tolerance, height); });
    if (hit == marks.end()) {
        m_selectedID.clear();
        return;
    }
    m_selectedID = hit->id;
    m_colorHex = hit->colorHex;
    m_strokeWidth = hit->width;
    gesture.grabbed = *hit;
}

void ShotEditing::drag(Vec2 point)
{
    if (!m_gesture) {
        return;
    }
    if (std::holds_alternative<Tool::Draw>(m_tool)) {
        dragDraw(*m_gesture, point);
    } else if (std::holds_alternative<Tool::Crop>(m_tool)) {
        dragCrop(*m_gesture, point);
    } else {
        dragSelect(*m_gesture, point);
    }
}

Annotation ShotEditing::newMark(Annotation::Kind kind, Vec2 point) const
{
    Annotation mark{.kind = kind, .start = point, .end = point};
    mark.colorHex = m_colorHex;
    mark.width = m_strokeWidth;
    if (kind == Annotation::Kind::Badge) {
        for (const Annotation& other : m_document.annotations) {
            if (other.kind == Annotation::Kind::Badge) {
                mark.number = std::max(mark.number, other.number + 1);
            }
        }
    }
    return mark;
}

void ShotEditing::dragDraw(Gesture& gesture, Vec2 point)
{
    const auto kind = std::get<Tool::Draw>(m_tool).kind;
    if (isPoint(kind)) {
        return; // placed where the button is let go
    }
    const bool isPen = kind == Annotation::Kind::Pen;
    Annotation draft = m_draft ? std::move(*m_draft) : newMark(kind, gesture.start);
    if (isPen && draft.points.empty()) {
        draft.points.push_back(gesture.start);
    }
    draft.end = point;
    if (isPen && draft.points.back() != point) {
        draft.points.push_back(point);
        gesture.reach = std::max(gesture.reach, length(gesture.start, point));
    }
    m_draft = std::move(draft);
}

void ShotEditing::dragSelect(const Gesture& gesture, Vec2 point)
{
    if (!gesture.grabbed) {
        return;
    }
    const Annotation& was = *gesture.grabbed;
    Annotation* const mark = find(was.id);
    if (mark == nullptr) {
        return;
    }
    if (gesture.end == DragEnd::Whole) {
        *mark = was.translated({point.x - gesture.start.x, point.y - gesture.start.y});
    } else {
        (gesture.end == DragEnd::Start ? mark->start : mark->end) = point;
    }
}

void ShotEditing::dragCrop(const Gesture& gesture, Vec2 point)
{
    const auto inside = [this](Vec2 p) {
        return Vec2{std::clamp(p.x, 0.0, m_imageSize.x), std::clamp(p.y, 0.0, m_imageSize.y)};
    };
    const Vec2 a = inside(gesture.start);
    const Vec2 b = inside(point);
    m_cropDraft =
        Rect{std::min(a.x, b.x), std::min(a.y, b.y), std::abs(a.x - b.x), std::abs(a.y - b.y)};
}

void ShotEditing::release(Vec2 point)
{
    if (!m_gesture) {
        return;
    }
    if (point != m_gesture->start || m_draft || m_cropDraft) {
        drag(point);
    }
    const Gesture gesture = *m_gesture;
    m_gesture.reset();
    if (std::holds_alternative<Tool::Draw>(m_tool)) {
        releaseDraw(gesture, point);
    } else if (std::holds_alternative<Tool::Crop>(m_tool)) {
        releaseCrop();
    } else if (gesture.grabbed) {
        releaseSelect(*gesture.grabbed, length(gesture.start, point) > kLeastDrag);
    }
}

void ShotEditing::releaseSelect(const Annotation& was, bool isMoved)
{
    if (Annotation* const mark = find(was.id)) {
        const Annotation moved = std::exchange(*mark, was);
        if (isMoved) {
            push();
            *mark = moved;
        }
    }
}

void ShotEditing::releaseDraw(const Gesture& gesture, Vec2 point)
{
    const auto kind = std::get<Tool::Draw>(m_tool).kind;
    std::optional<Annotation> mark = std::exchange(m_draft, std::nullopt);
    if (kind == Annotation::Kind::Text) {
        m_pendingText = newMark(kind, point);
        return;
    }
    if (kind == Annotation::Kind::Badge) {
        mark = newMark(kind, point);
    }
    if (!mark) {
        return;
    }
    if (!isPoint(kind) && std::max(length(gesture.start, point), gesture.reach) <= kLeastDrag) {
        return;
    }
    push();
    m_document.annotations.push_back(std::move(*mark));
}

void ShotEditing::releaseCrop()
{
    const std::optional<Rect> crop = std::exchange(m_cropDraft, std::nullopt);
    if (crop && crop->w > kLeastCrop && crop->h > kLeastCrop) {
        push();
        m_document.crop = crop;
    }
}

void ShotEditing::cancelGesture()
{
    if (!m_gesture) {
        return;
    }
    if (m_gesture->grabbed) {
        releaseSelect(*m_gesture->grabbed, /*isMoved=*/false);
    }
    m_draft.reset();
    m_cropDraft.reset();
    m_gesture.reset();
}

void ShotEditing::setTextInput(const std::string& text)
{
    if (m_pendingText) {
        m_pendingText->text = text;
    }
}

void ShotEditing::commitText()
{
    if (auto text = std::exchange(m_pendingText, std::nullopt); text && !text->text.empty()) {
        push();
        m_document.annotations.push_back(std::move(*text));
    }
}

void ShotEditing::deleteSelection()
{
    cancelGesture();
    if (selected() != nullptr) {
        push();
        std::erase_if(m_document.annotations, [this](const Annotation& mark) {
            return mark.id == m_selectedID;
        });
    }
    m_selectedID.clear();
}

void ShotEditing::uncrop()
{
    cancelGesture();
    if (m_document.crop) {
        push();
        m_document.crop.reset();
    }
}

void ShotEditing::undo()
{
    cancelGesture();
    if (m_steps.done.empty()) {
        return;
    }
    m_steps.undone.push_back(std::exchange(m_document, m_steps.done.back()));
    m_steps.done.pop_back();
    if (selected() == nullptr) {
        m_selectedID.clear();
    }
}

void ShotEditing::redo()
{
    cancelGesture();
    if (m_steps.undone.empty()) {
        return;
    }
    m_steps.done.push_back(std::exchange(m_document, m_steps.undone.back()));
    m_steps.undone.pop_back();
    if (selected() == nullptr) {
        m_selectedID.clear();
    }
}

bool ShotEditing::escape()
{
    if (m_gesture) {
        cancelGesture();
    } else if (m_pendingText) {
        m_pendingText.reset();
    } else if (selected() != nullptr) {
        m_selectedID.clear();
    } else if (!std::holds_alternative<Tool::Select>(m_tool)) {
        m_tool = Tool::Select{};
    } else {
        return true;
    }
    return false;
}

} // namespace zento
