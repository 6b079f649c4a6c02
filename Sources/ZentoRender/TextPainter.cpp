#include "ZentoRender/TextPainter.h"

#include "ZentoRender/PlacedDrawing.h"

namespace zento {
namespace {

PlacedSprite placedText(const TextOverlay& overlay, const OutputSpec& output, Layout layout)
{
    const TextBox box = textBox(overlay.kind, overlay.text, output);
    const auto drawing =
        drawVisible(box.place, output, [&](Canvas& part, Vec2 origin) { draw(box, part, origin); });
    return drawing ? PlacedSprite(Sprite(drawing->canvas, layout), drawing->origin)
                   : PlacedSprite();
}

} // namespace

void TextPainter::paint(const std::vector<TextOverlay>& texts, const PictureView& canvas)
{
    for (const TextOverlay& overlay : texts)
        cacheOf(overlay.kind)
            .get(overlay.text, [&] { return placedText(overlay, m_output, canvas.layout); })
            .draw(canvas, overlay.alpha);
}

TextPainter::Cache& TextPainter::cacheOf(TextOverlay::Kind kind)
{
    switch (kind) {
    case TextOverlay::Kind::Keystroke:
        return m_keystrokes;
    case TextOverlay::Kind::RaisedCaption:
        return m_raisedCaptions;
    case TextOverlay::Kind::Chapter:
        return m_chapters;
    case TextOverlay::Kind::Caption:
        break;
    }
    return m_captions;
}

} // namespace zento
