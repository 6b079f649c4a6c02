#include "ZentoImaging/Palette.h"

#include "ZentoCore/Error.h"
#include "ZentoImaging/CanvasState.hpp"

#include <libimagequant.h>

#include <algorithm>
#include <cassert>
#include <limits>
#include <new>

namespace zento {

namespace {

using Attributes = std::unique_ptr<liq_attr, CallOnDelete<liq_attr_destroy>>;
using Histogram = std::unique_ptr<liq_histogram, CallOnDelete<liq_histogram_destroy>>;
using Result = std::unique_ptr<liq_result, CallOnDelete<liq_result_destroy>>;

constexpr double kScreenGamma = 0; // the library's value for sRGB

// Of 1 (thorough) to 10. Measured on recordings: 3 is twice as slow as 7 and no better to see.
constexpr int kSpeed = 7;

std::vector<liq_histogram_entry> counted(std::span<const PackedRgb> pixels)
{
    std::vector<PackedRgb> sorted(pixels.begin(), pixels.end());
    std::ranges::sort(sorted);
    std::vector<liq_histogram_entry> entries;
    for (auto it = sorted.begin(); it != sorted.end();) {
        const auto end = std::find_if(it, sorted.end(), [it](PackedRgb c) { return c != *it; });
        const auto byte = [it](int shift) { return static_cast<unsigned char>(*it >> shift); };
        entries.push_back({{byte(16), byte(8), byte(0), 255}, static_cast<unsigned int>(end - it)});
        it = end;
    }
    return entries;
}

void check(liq_error error)
{
    if (error == LIQ_OUT_OF_MEMORY) {
        throw std::bad_alloc();
    }
    if (error != LIQ_OK) {
        throw Error(ErrorCode::kNoPicture, "a picture's colours could not be reduced");
    }
}

} // namespace

std::vector<PackedRgb> choosePalette(std::span<const PackedRgb> pixels, int maxColors)
{
    assert(!pixels.empty());
    std::vector<liq_histogram_entry> entries = counted(pixels);
    std::vector<PackedRgb> colors;
    if (entries.size() <= static_cast<std::size_t>(maxColors)) {
        for (const liq_histogram_entry& entry : entries) {
            colors.push_back(packRgb(entry.color.r, entry.color.g, entry.color.b));
        }
        return colors;
    }
    const Attributes attributes(liq_attr_create());
    check(attributes ? LIQ_OK : LIQ_OUT_OF_MEMORY);
    check(liq_set_max_colors(attributes.get(), std::max(maxColors, 2)));
    check(liq_set_speed(attributes.get(), kSpeed));
    const Histogram histogram(liq_histogram_create(attributes.get()));
    check(histogram ? LIQ_OK : LIQ_OUT_OF_MEMORY);
    check(liq_histogram_add_colors(
        histogram.get(),
        attributes.get(),
        entries.data(),
        static_cast<int>(entries.size()),
        kScreenGamma));
    liq_result* raw = nullptr;
    check(liq_histogram_quantize(histogram.get(), attributes.get(), &raw));
    const Result result(raw);
    const liq_palette* palette = liq_get_palette(result.get());
    for (const liq_color& c : std::span(palette->entries, palette->count)) {
        colors.push_back(packRgb(c.r, c.g, c.b));
    }
    return colors;
}

ColorTable::ColorTable(std::vector<PackedRgb> colors)
    : m_colors(std::move(colors))
    , m_found(std::size_t{1} << 16)
{
    assert(!m_colors.empty() && m_colors.size() <= 256);
}

std::uint8_t ColorTable::nearest(PackedRgb color)
{
    Found& found = m_found[(color * 0x9E3779B1U) >> 16]; // Fibonacci hashing
    if (found.color != color) {
        found = {color, search(color)};
    }
    return found.index;
}

std::uint8_t ColorTable::search(PackedRgb color) const
{
    std::size_t best = 0;
    std::uint32_t least = std::numeric_limits<std::uint32_t>::max();
    for (std::size_t i = 0; i < m_colors.size(); ++i) {
        const std::uint32_t distance = colorDistance(color, m_colors[i]);
        if (distance < least) {
            least = distance;
            best = i;
        }
    }
    return static_cast<std::uint8_t>(best);
}

} // namespace zento
