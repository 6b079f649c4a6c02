#include "ZentoRender/CardPainter.h"

#include "ZentoImaging/Blend.h"
#include "ZentoImaging/MotionBlur.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <utility>

namespace zento {
namespace {

constexpr Color kShadowColor = {0, 0, 0, 1};

bool leavesCanvasVisible(const Rect& card, const PictureView& canvas)
{
    return card.x > 0 || card.y > 0 || canvas.width > card.x + card.w
           || canvas.height > card.y + card.h;
}

/// Where the whole of a source of that size lies when it fills the card.
PicturePlacement placementOf(const Rect& card, int width, int height)
{
    return {.origin = {card.x, card.y}, .scaleX = card.w / width, .scaleY = card.h / height};
}

std::size_t count(SampleRange range)
{
    return static_cast<std::size_t>(range.size());
}

} // namespace

/// One plane while it is painted.
struct CardPainter::PlaneRows {
    RoundedRect card;
    Plane<const std::uint8_t> background;
    Plane<std::uint8_t> canvas;
    Shadow* shadow = nullptr;     // none if the card hides it
    std::uint8_t shadowValue = 0; // what the shadow's colour is in this plane
};

CardPainter::CardPainter(Picture background, const StyleSpec& style)
    : m_background(std::move(background))
    , m_cornerRadius(std::max(style.cornerRadius, 0.0))
    , m_shadowOpacity(std::clamp(style.shadowOpacity, 0.0, 1.0))
    , m_shadowSigma(std::max(style.shadowRadius, 0.0) * 0.5)
    , m_shadowOffsetY(style.shadowOffsetY)
    , m_scaledRow(static_cast<std::size_t>(m_background.width()))
    , m_mask(static_cast<std::size_t>(m_background.width()))
{
}

void CardPainter::paint(
    const VideoFrame& source, const Rect& card, const CardBlur& blur, const PictureView& canvas)
{
    const auto paintYuv = [&](const auto& planes) {
        m_scaler.prepare(planes, placementOf(card, source.width(), source.height()), canvas, card);
        paintPlanes(std::array{planes.y, planes.cb, planes.cr}, card, blur, canvas);
    };
    if (source.bitDepth() == 8)
        paintYuv(source.planes8());
    else
        paintYuv(source.planes10());
}

void CardPainter::paint(const ConstPictureView& source, const Rect& card, const PictureView& canvas)
{
    m_scaler.prepare(source, placementOf(card, source.width, source.height), canvas, card);
    paintPlanes(source.planes, card, {}, canvas);
}

void CardPainter::paintBelow(const Rect& card, const PictureView& canvas)
{
    for (std::size_t p = 0; p < canvas.planes.size(); ++p) {
        const PlaneRows rows = planeRows(p, card, canvas);
        for (int y = 0; y < rows.canvas.height; ++y)
            paintMargin(rows, y, {0, rows.canvas.width});
    }
}

CardPainter::PlaneRows
CardPainter::planeRows(std::size_t plane, const Rect& card, const PictureView& canvas)
{
    assert(canvas.width == m_background.width() && canvas.height == m_background.height());
    const PlaneGrid grid = canvas.grid(plane);
    const bool hasShadow = m_shadowOpacity > 0 && leavesCanvasVisible(card, canvas);
    const RoundedRect shadowShape = {
        {card.x, card.y + m_shadowOffsetY, card.w, card.h}, m_cornerRadius};
    const int width = canvas.planes[plane].width;
    return {
        .card = RoundedRect{card, m_cornerRadius}.inPlane(grid),
        .background = std::as_const(m_background).plane(plane),
        .canvas = canvas.planes[plane],
        .shadow = hasShadow ? &m_shadows.placed(shadowShape, m_shadowSigma, grid, width) : nullptr,
        .shadowValue = planeValues(kShadowColor, canvas.layout)[plane]};
}

template <typename Sample>
void CardPainter::paintPlanes(
    const Planes<Sample>& source, const Rect& card, const CardBlur& blur, const PictureView& canvas)
{
    for (std::size_t p = 0; p < source.size(); ++p) {
        const PlaneRows rows = planeRows(p, card, canvas);
        PlaneScaler& scaler = m_scaler.plane(p);
        Plane<const std::uint8_t> blurredSource;
        if (!blur.isNone())
            blurredSource = blurred(source[p], scaler, blur, canvas.grid(p));
        CoveredRows cover(rows.card, rows.canvas.width);
        for (int y = 0; y < rows.canvas.height; ++y) {
            prefetchRow(rows.canvas, y + 1);
            cover.moveTo(y);
            if (cover.touched().size() <= 0) {
                paintMargin(rows, y, {0, rows.canvas.width});
                continue;
            }
            const std::uint8_t* scaled = m_scaledRow.data();
            if (blurredSource.data)
                scaled = blurredSource.row(y - scaler.rows().begin);
            else
                scaler.scaleRow(source[p], y, m_scaledRow.data());
            paintCardRow(rows, y, cover, scaled, scaler.columns().begin);
        }
    }
}

template <typename Sample>
Plane<const std::uint8_t> CardPainter::blurred(
    Plane<const Sample> source, PlaneScaler& scaler, const CardBlur& blur, const PlaneGrid& grid)
{
    const SampleRange columns = scaler.columns();
    const SampleRange rows = scaler.rows();
    m_blurred.resize(count(columns) * count(rows));
    const Plane<std::uint8_t> layer = {
        m_blurred.data(), columns.size(), rows.size(), columns.size()};
    for (int y = 0; y < layer.height; ++y)
        scaler.scaleRow(source, rows.begin + y, layer.row(y));
    directionalBlur(layer, {blur.reach.x * grid.perPixel.x, blur.reach.y * grid.perPixel.y});
    const Vec2 middle = grid.toPlane(Vec2{m_background.width() * 0.5, m_background.height() * 0.5});
    zoomBlur(layer, {middle.x - columns.begin, middle.y - rows.begin}, blur.stretch);
    return layer;
}

void CardPainter::paintCardRow(
    const PlaneRows& rows,
    int y,
    const CoveredRows& cover,
    const std::uint8_t* scaled,
    int firstScaled)
{
    const SampleRange touched = cover.touched();
    const SampleRange opaque = cover.opaque();
    paintMargin(rows, y, {0, opaque.begin});
    paintMargin(rows, y, {opaque.end, rows.canvas.width});

    std::uint8_t* const row = rows.canvas.row(y);
    const auto sourceAt = [&](int x) { return scaled + (x - firstScaled); };
    std::copy_n(sourceAt(opaque.begin), opaque.size(), row + opaque.begin);
    for (const SampleRange edge :
         {SampleRange{touched.begin, opaque.begin}, SampleRange{opaque.end, touched.end}}) {
        std::uint8_t* const out = row + edge.begin;
        blendMasked(out, out, sourceAt(edge.begin), cover.mask() + edge.begin, count(edge));
    }
}

void CardPainter::paintMargin(const PlaneRows& rows, int y, SampleRange columns)
{
    if (columns.size() <= 0)
        return;
    std::uint8_t* const row = rows.canvas.row(y);
    std::copy_n(rows.background.row(y) + columns.begin, columns.size(), row + columns.begin);
    if (!rows.shadow)
        return;
    const SampleRange shaded = rows.shadow->columns(rows.canvas.width);
    const SampleRange seen = {
        std::max(columns.begin, shaded.begin), std::min(columns.end, shaded.end)};
    const SampleRange shadedRows = rows.shadow->rows(rows.canvas.height);
    if (seen.size() <= 0 || y < shadedRows.begin || y >= shadedRows.end)
        return;
    rows.shadow->maskRow(y, seen, m_shadowOpacity, m_mask.data());
    blendConstant(row + seen.begin, m_mask.data(), rows.shadowValue, count(seen));
}

} // namespace zento
