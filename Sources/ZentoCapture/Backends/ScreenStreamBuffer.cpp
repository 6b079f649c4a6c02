#include "ZentoCapture/Backends/ScreenStreamBuffer.h"

#include <spa/buffer/buffer.h>
#include <spa/buffer/meta.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>

namespace zento {

namespace {

constexpr double kNanosecond = 1e-9;
constexpr double kLargestLag = 2; // seconds; a stamp further off is of another clock

template <typename Meta>
const Meta* meta(const spa_buffer& buffer, spa_meta_type type)
{
    return static_cast<const Meta*>(spa_buffer_find_meta_data(&buffer, type, sizeof(Meta)));
}

/// Within what can be reckoned with.
PixelRect rectOf(const spa_region& region)
{
    constexpr int kFar = 1 << 20; // pixels
    const auto size = [](std::uint32_t value) {
        return static_cast<int>(std::min<std::uint32_t>(value, kFar));
    };
    return {
        std::clamp(region.position.x, -kFar, kFar),
        std::clamp(region.position.y, -kFar, kFar),
        size(region.size.width),
        size(region.size.height)};
}

double timeOf(const spa_buffer& buffer, double now)
{
    const auto* const header = meta<spa_meta_header>(buffer, SPA_META_Header);
    if (header == nullptr || header->pts <= 0) {
        return now;
    }
    const double stamp = static_cast<double>(header->pts) * kNanosecond;
    return std::abs(now - stamp) < kLargestLag ? stamp : now;
}

bool isDamaged(const spa_buffer& buffer)
{
    const auto* const header = meta<spa_meta_header>(buffer, SPA_META_Header);
    const auto chunk = static_cast<unsigned>(buffer.datas[0].chunk->flags);
    return (chunk & SPA_CHUNK_FLAG_CORRUPTED) != 0
           || (header != nullptr && (header->flags & SPA_META_HEADER_FLAG_CORRUPTED) != 0);
}

/// A window's picture may be a part of its buffer.
PixelRect shownPart(const ScreenForm& form, const spa_buffer& buffer)
{
    const PixelRect whole{0, 0, form.width, form.height};
    const auto* const crop = meta<spa_meta_region>(buffer, SPA_META_VideoCrop);
    if (crop == nullptr) {
        return whole;
    }
    const PixelRect part = intersection(whole, rectOf(crop->region));
    return part.isEmpty() ? whole : part;
}

/// The memory of a buffer's first block; empty if it is not to be had.
std::span<const std::uint8_t> memoryOf(const spa_data& block, std::span<const std::uint8_t> mapped)
{
    if (block.data == nullptr) {
        return mapped;
    }
    return {static_cast<const std::uint8_t*>(block.data), block.maxsize};
}

std::optional<ForeignPicture>
pictureOf(const ScreenForm& form, const spa_buffer& buffer, std::span<const std::uint8_t> mapped)
{
    const spa_data& block = buffer.datas[0];
    const auto memory = memoryOf(block, mapped);
    if (memory.empty() || block.chunk->size == 0 || isDamaged(buffer)) {
        return {};
    }
    const std::ptrdiff_t rowBytes = std::ptrdiff_t{form.width} * form.order.bytes;
    const std::ptrdiff_t stride = block.chunk->stride == 0 ? rowBytes : block.chunk->stride;
    const std::ptrdiff_t needed = std::abs(stride) * (form.height - 1) + rowBytes;
    const auto offset = static_cast<std::ptrdiff_t>(block.chunk->offset);
    if (std::abs(stride) < rowBytes || needed > std::ssize(memory) - offset) {
        return {};
    }
    const std::uint8_t* first = memory.data() + offset;
    if (stride < 0) {
        first -= stride * (form.height - 1);
    }
    const PixelRect part = shownPart(form, buffer);
    return ForeignPicture{
        .data = first + part.y * stride + std::ptrdiff_t{part.x} * form.order.bytes,
        .stride = stride,
        .width = part.width,
        .height = part.height,
        .order = form.order};
}

std::vector<PixelRect> damageOf(const spa_buffer& buffer, const PixelRect& part)
{
    std::vector<PixelRect> damage;
    const spa_meta* const all = spa_buffer_find_meta(&buffer, SPA_META_VideoDamage);
    if (all == nullptr) {
        return damage;
    }
    const auto* const regions = static_cast<const spa_meta_region*>(all->data);
    for (std::size_t i = 0; i < all->size / sizeof(spa_meta_region); ++i) {
        if (!spa_meta_region_is_valid(&regions[i])) {
            break;
        }
        damage.push_back(rectOf(regions[i].region).movedBy(-part.x, -part.y));
    }
    return damage;
}

} // namespace

ScreenUpdate screenUpdate(
    const ScreenForm& form,
    const spa_buffer& buffer,
    std::span<const std::uint8_t> mapped,
    double now)
{
    ScreenUpdate update{.time = timeOf(buffer, now)};
    update.stream = {static_cast<double>(form.width), static_cast<double>(form.height)};
    const PixelRect part = shownPart(form, buffer);
    if (buffer.n_datas > 0) {
        update.picture = pictureOf(form, buffer, mapped);
        update.damage = damageOf(buffer, part);
    }
    const auto* const cursor = meta<spa_meta_cursor>(buffer, SPA_META_Cursor);
    if (cursor != nullptr && spa_meta_cursor_is_valid(cursor)) {
        update.pointer = Vec2{
            static_cast<double>(cursor->position.x) - part.x,
            static_cast<double>(cursor->position.y) - part.y};
    }
    return update;
}

} // namespace zento
