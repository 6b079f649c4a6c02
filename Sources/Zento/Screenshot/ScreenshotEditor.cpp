#include "Zento/Screenshot/ScreenshotEditor.h"

#include "Zento/Model/PictureImage.h"
#include "ZentoImaging/Font.h"
#include "ZentoRender/Screenshot/AnnotationRenderer.h"

#include <QUrl>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace zento {

namespace {

constexpr double kTolerance = 8; // points of the view

QRectF qRect(const Rect& rect)
{
    return {rect.x, rect.y, rect.w, rect.h};
}

QPointF qPoint(Vec2 point)
{
    return {point.x, point.y};
}

QString qString(std::string_view text)
{
    return QString::fromStdString(std::string(text));
}

/// A picture that is shown at less than half its size is averaged here: the view looks at four
/// neighbours only.
QImage reduced(QImage picture, const QSize& size)
{
    if (picture.width() <= 2 * size.width() || size.isEmpty()) {
        return picture;
    }
    return picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

ShotOutput::MakePng pngOf(const Shot& shot)
{
    return [shot](const ShotLook& look) -> QByteArray {
        const std::vector<std::byte> bytes = AnnotationRenderer::pngData(
            flattened(*shot.image, look.document, look.style), shot.scale);
        return {reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())};
    };
}

/// What the preset bar shows: see `drawSwatch`.
QString swatchAddress(const ShotPreset& preset)
{
    if (const auto* image = std::get_if<Background::Image>(&preset.style.background)) {
        return QStringLiteral("shotpicture/")
               + QString::fromLatin1(QUrl::toPercentEncoding(QString::fromStdString(image->path)));
    }
    return QStringLiteral("shot/") + QString::fromStdString(preset.id);
}

Vec2 sizeOf(const Shot& shot)
{
    return {static_cast<double>(shot.image->width()), static_cast<double>(shot.image->height())};
}

} // namespace

ScreenshotEditor::ScreenshotEditor(Shot shot, EditorPorts ports, QObject* parent)
    : QObject(parent)
    , m_shot(std::move(shot))
    , m_ports(std::move(ports))
    , m_editing(sizeOf(m_shot), m_ports.document)
    , m_groups(ShotPresets::groups(
          m_ports.style, ShotPresets::wallpapers(m_ports.desktop, m_ports.wallpapers)))
    , m_style(m_groups.front().presets.front().style)
    , m_presetID(QString::fromStdString(m_groups.front().presets.front().id))
    , m_output(
          pngOf(m_shot),
          {.worker = m_ports.output, .files = m_ports.files, .folder = m_ports.exportFolder})
{
    connect(&m_output, &ShotOutput::done, this, &ScreenshotEditor::note);
    connect(&m_output, &ShotOutput::failed, this, &ScreenshotEditor::failed);
    connect(&m_output, &ShotOutput::rested, this, &ScreenshotEditor::finishIfClosed);
    redraw();
}

ScreenshotEditor::~ScreenshotEditor() = default;

QString ScreenshotEditor::sizeText() const
{
    const Rect kept = AnnotationRenderer::keptArea(m_editing.document().crop, sizeOf(m_shot));
    return QStringLiteral("%1 × %2").arg(kept.w).arg(kept.h);
}

QString ScreenshotEditor::notice() const
{
    const bool isUnframed = look(ShotEditing::PendingText::Hidden).style.bare && !m_style.bare;
    return isUnframed ? tr("The picture is too large for this look, so it stands without one. Crop "
                           "it to give it its look back.")
                      : QString();
}

QVariantList ScreenshotEditor::tools()
{
    QVariantList list;
    for (const EditorToolEntry& entry : editorTools()) {
        list.append(QVariantMap{
            {"id", qString(entry.id)},
            {"key", QString(QLatin1Char(entry.key)).toUpper()},
            {"help", tr(std::string(entry.help).c_str())}});
    }
    return list;
}

QString ScreenshotEditor::tool() const
{
    return qString(entry(m_editing.tool()).id);
}

QStringList ScreenshotEditor::palette()
{
    QStringList list;
    for (const std::string_view color : AnnotationRenderer::kPalette) {
        list.append(qString(color));
    }
    return list;
}

ShotLook ScreenshotEditor::look(ShotEditing::PendingText text) const
{
    ShotLook look{m_editing.shown(text), m_style};
    const Rect kept = AnnotationRenderer::keptArea(look.document.crop, sizeOf(m_shot));
    look.style.bare = look.style.bare || !ShotComposer::fits(m_style, kept.w, kept.h);
    return look;
}

ShotPlacement ScreenshotEditor::placement(const ShotLook& look) const
{
    return {
        sizeOf(m_shot),
        look.document.crop,
        look.style,
        {m_viewSize.width(), m_viewSize.height()},
        1 / m_density};
}

QSizeF ScreenshotEditor::pictureSize(const ShotLook& look) const
{
    const Rect picture = placement(look).picture;
    return {picture.w, picture.h};
}

Vec2 ScreenshotEditor::raw(const QPointF& point) const
{
    return placement(look(ShotEditing::PendingText::Hidden)).toRaw({point.x(), point.y()});
}

double ScreenshotEditor::rawTolerance() const
{
    return kTolerance / placement(look(ShotEditing::PendingText::Hidden)).scale;
}

QVariantList ScreenshotEditor::handles() const
{
    const Annotation* const mark = m_editing.selected();
    if (mark == nullptr || !hasEnds(mark->kind)) {
        return {};
    }
    const ShotPlacement place = placement(look(ShotEditing::PendingText::Hidden));
    return {qPoint(place.toCanvas(mark->start)), qPoint(place.toCanvas(mark->end))};
}

QRectF ScreenshotEditor::selectionFrame() const
{
    const Annotation* const mark = m_editing.selected();
    if (mark == nullptr || hasEnds(mark->kind)) {
        return {};
    }
    const ShotPlacement place = placement(look(ShotEditing::PendingText::Hidden));
    const double w = baseLineWidth(place.kept.h) * mark->width;
    Rect rect = mark->rect();
    double room = w;
    if (mark->kind == Annotation::Kind::Badge) {
        room = kBadgeRadius * w;
    } else if (mark->kind == Annotation::Kind::Text) {
        const Font font{.size = kTextSize * w, .weight = FontWeight::Bold};
        rect = {mark->start.x, mark->start.y, measureText(mark->text, font).width, font.size};
    }
    rect = {rect.x - room, rect.y - room, rect.w + 2 * room, rect.h + 2 * room};
    return qRect(place.toCanvas(rect));
}

QRectF ScreenshotEditor::cropFrame() const
{
    const auto& crop = m_editing.cropDraft();
    return crop ? qRect(placement(look(ShotEditing::PendingText::Hidden)).toCanvas(*crop))
                : QRectF();
}

QVariantMap ScreenshotEditor::writing() const
{
    const auto& text = m_editing.pendingText();
    if (!text) {
        return {};
    }
    const ShotPlacement place = placement(look(ShotEditing::PendingText::Hidden));
    const Font font{
        .size = kTextSize * baseLineWidth(place.kept.h) * text->width, .weight = FontWeight::Bold};
    const Vec2 baseline{
        text->start.x, text->start.y + font.size - measureText(text->text, font).descent};
    const Vec2 point = place.toCanvas(baseline);
    return {
        {"x", point.x},
        {"baseline", point.y},
        {"size", font.size * place.scale},
        {"color", QString::fromStdString(text->colorHex)}};
}

QStringList ScreenshotEditor::presetGroups() const
{
    QStringList names;
    for (const ShotPresetGroup& group : m_groups) {
        names.append(tr(group.name.c_str()));
    }
    return names;
}

QVariantList ScreenshotEditor::presets() const
{
    QVariantList list;
    for (const ShotPreset& preset : m_groups[static_cast<std::size_t>(m_presetGroup)].presets) {
        QString address = swatchAddress(preset);
        if (preset.id == ShotPresets::kMatch) {
            for (const ShotPresetGroup& group : m_groups) {
                const auto same = std::ranges::find_if(group.presets, [&](const ShotPreset& other) {
                    return other.id != preset.id
                           && other.style.background == preset.style.background;
                });
                if (same != group.presets.end()) {
                    address = swatchAddress(*same);
                    break;
                }
            }
        }
        list.append(QVariantMap{
            {"value", QString::fromStdString(preset.id)},
            {"name", QString::fromStdString(preset.name)},
            {"address", address}});
    }
    return list;
}

QRectF ScreenshotEditor::pictureFrame() const
{
    return m_pictured ? qRect(placement(*m_pictured).picture) : QRectF();
}

/// After every change of the document or what is shown of it.
void ScreenshotEditor::edited()
{
    Q_EMIT changed();
    redraw();
}

void ScreenshotEditor::restyled()
{
    Q_EMIT styleChanged();
    Q_EMIT changed(); // the placement is another one
    redraw();
}

void ScreenshotEditor::redraw()
{
    ShotLook wanted = look(ShotEditing::PendingText::Hidden);
    const QSize size = (pictureSize(wanted) * m_density).toSize();
    const bool isThere = m_pictured && *m_pictured == wanted && m_picturedSize == size;
    if (m_underWay || isThere) {
        return; // what comes back asks again
    }
    m_picturedSize = size;
    m_underWay = wanted;
    compute(
        m_ports.drawing,
        this,
        [image = m_shot.image, drawing = m_drawing, wanted, size]() mutable {
            auto made = drawing ? drawing : std::make_shared<ShotDrawing>(DisplayShot::of(image));
            return std::pair(
                made, reduced(toImage(made->draw(wanted.document, wanted.style)), size));
        },
        [this, wanted](auto outcome) {
            if (outcome) {
                m_drawing = outcome->first;
                drawn(wanted, std::move(outcome->second));
            } else {
                drawn(wanted, std::unexpected(outcome.error()));
            }
        });
}

void ScreenshotEditor::drawn(const ShotLook& look, Outcome<QImage> picture)
{
    m_underWay.reset();
    m_pictured = look; // one that cannot be drawn is not tried again
    if (picture) {
        m_picture = std::move(*picture);
        Q_EMIT pictureChanged();
    } else {
        Q_EMIT failed(QString::fromStdString(picture.error()));
    }
    redraw();
}

void ScreenshotEditor::setTool(const QString& id)
{
    if (const auto tool = editorTool(id.toStdString())) {
        m_editing.setTool(*tool);
        edited();
    }
}

void ScreenshotEditor::setColor(const QString& color)
{
    m_editing.setColor(color.toStdString());
    edited();
}

void ScreenshotEditor::setStrokeWidth(double width)
{
    m_editing.setStrokeWidth(width);
    edited();
}

void ScreenshotEditor::setPresetGroup(int group)
{
    if (group >= 0 && group < std::ssize(m_groups) && group != m_presetGroup) {
        m_presetGroup = group;
        Q_EMIT styleChanged();
    }
}

void ScreenshotEditor::setPresetID(const QString& id)
{
    for (const ShotPresetGroup& group : m_groups) {
        const auto found = std::ranges::find(group.presets, id.toStdString(), &ShotPreset::id);
        if (found != group.presets.end()) {
            m_presetID = id;
            m_style = found->style;
            restyled();
            return;
        }
    }
}

void ScreenshotEditor::setPadding(double padding)
{
    m_style.padding = std::clamp(padding, 0.0, 1.0);
    restyled();
}

void ScreenshotEditor::setCornerRadius(double radius)
{
    m_style.cornerRadius = std::max(radius, 0.0);
    restyled();
}

void ScreenshotEditor::setShadowOpacity(double opacity)
{
    m_style.shadowOpacity = std::clamp(opacity, 0.0, 1.0);
    restyled();
}

void ScreenshotEditor::setView(const QSizeF& size, double density)
{
    if (size.isEmpty() || !(density > 0)) {
        return;
    }
    m_viewSize = size;
    m_density = density;
    Q_EMIT changed();
    Q_EMIT pictureChanged();
    redraw();
}

void ScreenshotEditor::press(const QPointF& point)
{
    m_editing.press(raw(point), rawTolerance());
    edited();
}

void ScreenshotEditor::drag(const QPointF& point)
{
    m_editing.drag(raw(point));
    edited();
}

void ScreenshotEditor::release(const QPointF& point)
{
    m_editing.release(raw(point));
    edited();
}

bool ScreenshotEditor::pressKey(const QString& text)
{
    const QString lower = text.toLower();
    const auto tool =
        lower.size() == 1 ? editorTool(lower.front().toLatin1()) : std::optional<EditorTool>();
    if (tool) {
        m_editing.setTool(*tool);
        edited();
    }
    return tool.has_value();
}

void ScreenshotEditor::setTextInput(const QString& text)
{
    m_editing.setTextInput(text.toStdString());
}

void ScreenshotEditor::commitText()
{
    m_editing.commitText();
    edited();
}

void ScreenshotEditor::deleteSelection()
{
    m_editing.deleteSelection();
    edited();
}

void ScreenshotEditor::uncrop()
{
    m_editing.uncrop();
    edited();
}

void ScreenshotEditor::undo()
{
    m_editing.undo();
    edited();
}

void ScreenshotEditor::redo()
{
    m_editing.redo();
    edited();
}

bool ScreenshotEditor::escape()
{
    const bool isOver = m_editing.escape();
    edited();
    return isOver;
}

void ScreenshotEditor::copy()
{
    m_output.copy(look(ShotEditing::PendingText::Shown));
}

QString ScreenshotEditor::proposedPath() const
{
    return ShotOutput::proposedPath();
}

void ScreenshotEditor::save(const QString& path)
{
    m_output.save(look(ShotEditing::PendingText::Shown), path);
}

void ScreenshotEditor::startDrag()
{
    m_output.drag(look(ShotEditing::PendingText::Shown), m_picture);
}

void ScreenshotEditor::openWith()
{
    m_output.openWith(look(ShotEditing::PendingText::Shown));
}

void ScreenshotEditor::composeMail()
{
    m_output.composeMail(look(ShotEditing::PendingText::Shown));
}

ShotExport ScreenshotEditor::shotExport() const
{
    return m_output.shotExport(look(ShotEditing::PendingText::Shown));
}

void ScreenshotEditor::note(const QString& note)
{
    m_savedNote = note;
    Q_EMIT noted();
}

void ScreenshotEditor::close()
{
    m_isClosed = true;
    finishIfClosed();
}

void ScreenshotEditor::finishIfClosed()
{
    if (m_isClosed && !m_output.isBusy()) {
        Q_EMIT closed();
        deleteLater();
    }
}

} // namespace zento
