#include "ZentoCapture/Backends/ScreenStreamBuffer.h"

#include <spa/buffer/buffer.h>
#include <spa/buffer/meta.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace zento {

namespace {

constexpr double kNanosecond = 1e-9;
constexpr double kLargestLag = 2; // seconds; a stamp further off is of another clock

template <typename Meta>
const Meta* meta(const spa_buffer& buffer, spa_meta_type type)
{
    return static_cast<const Meta*>(spa_buffer_find_meta_data(&buffer, type, sizeof(Meta)));
}

PixelRect rectOf(const spa_region& region)
{
    return {
        region.position.x,
        region.position.y,
        static_cast<int>(region.size.width),
        static_cast<int>(region.size.height)};
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

std::optional<ForeignPicture>
pictureOf(const ScreenForm& form, const spa_buffer& buffer, const void* data)
{
    const spa_data& block = buffer.datas[0];
    if (block.data != nullptr) {
        data = block.data;
    }
    if (data == nullptr || block.chunk->size == 0 || isDamaged(buffer)) {
        return {};
    }
    const std::ptrdiff_t rowBytes = std::ptrdiff_t{form.width} * form.order.bytes;
    const std::ptrdiff_t stride = block.chunk->stride == 0 ? rowBytes : block.chunk->stride;
    const std::ptrdiff_t needed = std::abs(stride) * (form.height - 1) + rowBytes;
    const std::ptrdiff_t offset = std::min(block.chunk->offset, block.maxsize);
    if (std::abs(stride) < rowBytes || needed > std::ptrdiff_t{block.maxsize} - offset) {
        return {};
    }
    const auto* first = static_cast<const std::uint8_t*>(data) + offset;
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

ScreenUpdate
screenUpdate(const ScreenForm& form, const spa_buffer& buffer, const void* data, double now)
{
    ScreenUpdate update{.time = timeOf(buffer, now)};
    update.stream = {static_cast<double>(form.width), static_cast<double>(form.height)};
    const PixelRect part = shownPart(form, buffer);
    if (buffer.n_datas > 0) {
        update.picture = pictureOf(form, buffer, data);
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
