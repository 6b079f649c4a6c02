#include "Sheet.h"

#include "ZentoImaging/ImageFile.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zento {
namespace {

constexpr int kGap = 12;
constexpr int kLabelHeight = 22;
constexpr Font kLabelFont = {.size = 13};
const Color kPaper = Color::gray(0.55);

Rect fitted(const Canvas& picture, Vec2 corner, int width, int height)
{
    const double scale = std::min(
        {1.0,
         static_cast<double>(width) / picture.width(),
         static_cast<double>(height) / picture.height()});
    const double w = std::round(picture.width() * scale);
    const double h = std::round(picture.height() * scale);
    return {corner.x + std::floor((width - w) / 2), corner.y + std::floor((height - h) / 2), w, h};
}

} // namespace

Sheet::Sheet(int tileWidth, int tileHeight, int columns)
    : m_tileWidth(tileWidth)
    , m_tileHeight(tileHeight)
    , m_columns(columns)
{
}

void Sheet::add(std::string label, Canvas picture)
{
    m_tiles.push_back({std::move(label), std::move(picture)});
}

void Sheet::save(const std::filesystem::path& file) const
{
    const int rows = (static_cast<int>(m_tiles.size()) + m_columns - 1) / m_columns;
    const int stepX = m_tileWidth + kGap;
    const int stepY = m_tileHeight + kLabelHeight + kGap;
    Canvas sheet(m_columns * stepX + kGap, std::max(rows, 1) * stepY + kGap);
    sheet.fillAll(kPaper);
    int index = 0;
    for (const Tile& tile : m_tiles) {
        const int row = index / m_columns;
        const int column = index % m_columns;
        const Vec2 corner = {
            static_cast<double>(kGap + column * stepX), static_cast<double>(kGap + row * stepY)};
        sheet.drawImage(tile.picture, fitted(tile.picture, corner, m_tileWidth, m_tileHeight));
        sheet.drawText(
            tile.label, kLabelFont, {corner.x, corner.y + m_tileHeight + 16}, Color::gray(0));
        ++index;
    }
    savePng(sheet, file);
}

} // namespace zento
