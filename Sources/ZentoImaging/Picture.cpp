#include "ZentoImaging/Picture.h"

#include "ZentoCore/Error.h"

#include <cassert>
#include <cstring>
#include <new>

namespace zento {

namespace {

constexpr std::ptrdiff_t kAlignment = 64; // a cache line, and the widest vector

std::ptrdiff_t aligned(std::ptrdiff_t size)
{
    return (size + kAlignment - 1) / kAlignment * kAlignment;
}

template <typename Sample>
BasicPictureView<Sample> viewOf(const YuvPlanes<Sample>& planes)
{
    assert(planes.cb.height == (planes.y.height + 1) / 2);
    return {Layout::Yuv420, planes.y.width, planes.y.height, {planes.y, planes.cb, planes.cr}};
}

} // namespace

PictureView pictureView(const YuvPlanes<std::uint8_t>& planes)
{
    return viewOf(planes);
}

ConstPictureView pictureView(const YuvPlanes<const std::uint8_t>& planes)
{
    return viewOf(planes);
}

Picture::Picture(int width, int height, Layout layout)
{
    if (width <= 0 || height <= 0) {
        throw Error(ErrorCode::kNoPicture, "a picture cannot be empty");
    }
    m_view = {layout, width, height, {}};
    std::ptrdiff_t total = 0;
    std::array<std::ptrdiff_t, 3> begin{};
    for (std::size_t i = 0; i < 3; ++i) {
        const int half = layout == Layout::Yuv420 && i > 0 ? 1 : 0;
        Plane<std::uint8_t>& plane = m_view.planes[i];
        plane.width = (width + half) >> half;
        plane.height = (height + half) >> half;
        plane.stride = aligned(plane.width);
        begin[i] = total;
        total += plane.stride * plane.height;
    }
    const auto size = static_cast<std::size_t>(total);
    m_memory = allocatePicture(size);
    // All of it, the ends of the rows as well: vectors read them.
    std::memset(m_memory.get(), 0, size);
    for (std::size_t i = 0; i < 3; ++i) {
        m_view.planes[i].data = reinterpret_cast<std::uint8_t*>(m_memory.get()) + begin[i];
    }
    fill(m_view, Color{});
}

Picture Picture::clone() const
{
    if (isEmpty()) {
        return {};
    }
    Picture result(width(), height(), layout());
    copy(m_view, result.m_view);
    return result;
}

YuvPlanes<std::uint8_t> Picture::yuv()
{
    assert(layout() == Layout::Yuv420);
    return {m_view.planes[0], m_view.planes[1], m_view.planes[2]};
}

YuvPlanes<const std::uint8_t> Picture::yuv() const
{
    assert(layout() == Layout::Yuv420);
    return {m_view.planes[0], m_view.planes[1], m_view.planes[2]};
}

void fill(const PictureView& picture, const Color& color)
{
    const std::array<std::uint8_t, 3> values = planeValues(color, picture.layout);
    for (std::size_t i = 0; i < 3; ++i) {
        const Plane<std::uint8_t>& plane = picture.planes[i];
        for (int y = 0; y < plane.height; ++y) {
            std::memset(plane.row(y), values[i], static_cast<std::size_t>(plane.width));
        }
    }
}

void copy(const ConstPictureView& source, const PictureView& destination)
{
    assert(source.layout == destination.layout);
    assert(source.width == destination.width && source.height == destination.height);
    for (std::size_t i = 0; i < 3; ++i) {
        const Plane<const std::uint8_t>& from = source.planes[i];
        const Plane<std::uint8_t>& to = destination.planes[i];
        for (int y = 0; y < to.height; ++y) {
            std::memcpy(to.row(y), from.row(y), static_cast<std::size_t>(to.width));
        }
    }
}

void prefetchRow(const Plane<std::uint8_t>& plane, int y)
{
    constexpr int kCacheLine = 64;
    if (y < 0 || y >= plane.height) {
        return;
    }
    const std::uint8_t* row = plane.row(y);
    for (int x = 0; x < plane.width; x += kCacheLine) {
        __builtin_prefetch(row + x, 1);
    }
}

} // namespace zento
