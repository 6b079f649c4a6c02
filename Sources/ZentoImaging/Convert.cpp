#include "ZentoImaging/Convert.h"

#include "ZentoImaging/Kernels/ConvertRows.hpp"
#include "ZentoImaging/Scale.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstring>

namespace zento {

namespace {

static_assert(std::endian::native == std::endian::little, "a pixel's bytes are B, G, R, A");

BgraView bytesOf(const Canvas& canvas)
{
    const Plane<const std::uint32_t> pixels = canvas.pixels();
    return {
        reinterpret_cast<const std::uint8_t*>(pixels.data),
        pixels.width,
        pixels.height,
        pixels.stride * 4};
}

void splitIntoRgb(const BgraView& source, const PictureView& out)
{
    for (int y = 0; y < source.height; ++y) {
        const std::uint8_t* from = source.data + y * source.stride;
        std::uint8_t* red = out.planes[0].row(y);
        std::uint8_t* green = out.planes[1].row(y);
        std::uint8_t* blue = out.planes[2].row(y);
        for (int x = 0; x < source.width; ++x) {
            blue[x] = from[0];
            green[x] = from[1];
            red[x] = from[2];
            from += 4;
        }
    }
}

Picture toYuv420(const BgraView& source)
{
    Picture result(source.width, source.height, Layout::Yuv420);
    Picture full(source.width, source.height, Layout::Rgb); // its planes hold Y', Cb, Cr
    for (int y = 0; y < source.height; ++y) {
        kernel::convertRowToYuv(
            source.data + y * source.stride,
            std::size_t(source.width),
            kernel::Alpha::Opaque,
            result.plane(0).row(y),
            full.plane(1).row(y),
            full.plane(2).row(y),
            nullptr);
    }
    PlaneScaler scaler;
    const auto [x, y] = planePlacement({}, kFullGrid, kChroma420Grid);
    for (std::size_t i = 1; i < 3; ++i) {
        const Plane<std::uint8_t> to = result.plane(i);
        scaler.prepare(
            source.width, source.height, x, y, {0, to.width}, {0, to.height}, ScaleFilter::Soft);
        scalePlane<std::uint8_t>(scaler, full.plane(i), to);
    }
    return result;
}

/// Brings all planes of Y'CbCr to one size and 8 bit. The result's planes hold Y', Cb, Cr.
template <typename Sample>
Picture toSize(const YuvPlanes<const Sample>& source, int width, int height)
{
    Picture full(width, height, Layout::Rgb);
    PlaneScaler scaler;
    const PlaneGrid chroma = chromaGrid(source);
    const PicturePlacement placement = {
        .scaleX = double(width) / source.y.width, .scaleY = double(height) / source.y.height};
    const std::array<Plane<const Sample>, 3> planes{source.y, source.cb, source.cr};
    for (std::size_t i = 0; i < 3; ++i) {
        const auto [x, y] = planePlacement(placement, i == 0 ? kFullGrid : chroma, kFullGrid);
        scaler.prepare(
            planes[i].width, planes[i].height, x, y, {0, full.width()}, {0, full.height()});
        scalePlane<Sample>(scaler, planes[i], full.plane(i));
    }
    return full;
}

struct Rgb {
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;
};

/// BT.709 limited range to full range; 65536 is one.
Rgb toRgbPixel(int y, int cb, int cr)
{
    const int luma = 76309 * (y - 16) + 32768; // 255 / 219
    const int u = cb - 128;
    const int v = cr - 128;
    const auto byte = [](int value) {
        return static_cast<std::uint8_t>(std::clamp(value >> 16, 0, 255));
    };
    // 255 / 224 times 1.5748, 0.1873, 0.4681 and 1.8556.
    return {byte(luma + 117489 * v), byte(luma - 13975 * u - 34925 * v), byte(luma + 138438 * u)};
}

/// From full-size Y', Cb, Cr to R', G', B' in place.
void toRgbInPlace(const PictureView& full)
{
    for (int y = 0; y < full.height; ++y) {
        std::uint8_t* a = full.planes[0].row(y);
        std::uint8_t* b = full.planes[1].row(y);
        std::uint8_t* c = full.planes[2].row(y);
        for (int x = 0; x < full.width; ++x) {
            const Rgb rgb = toRgbPixel(a[x], b[x], c[x]);
            a[x] = rgb.red;
            b[x] = rgb.green;
            c[x] = rgb.blue;
        }
    }
}

Canvas joinRgb(const ConstPictureView& rgb)
{
    Canvas canvas(rgb.width, rgb.height);
    const Plane<std::uint32_t> out = canvas.pixels();
    for (int y = 0; y < rgb.height; ++y) {
        const std::uint8_t* red = rgb.planes[0].row(y);
        const std::uint8_t* green = rgb.planes[1].row(y);
        const std::uint8_t* blue = rgb.planes[2].row(y);
        std::uint32_t* to = out.row(y);
        for (int x = 0; x < rgb.width; ++x) {
            to[x] = 0xff000000U | std::uint32_t{red[x]} << 16 | std::uint32_t{green[x]} << 8
                    | std::uint32_t{blue[x]};
        }
    }
    return canvas;
}

template <typename Sample>
Picture yuvToRgb(const YuvPlanes<const Sample>& planes, int width, int height)
{
    Picture full = toSize(planes, width, height);
    toRgbInPlace(full.view());
    return full;
}

template <typename Sample>
Canvas yuvToCanvas(const YuvPlanes<const Sample>& planes)
{
    const Picture rgb = yuvToRgb(planes, planes.y.width, planes.y.height);
    return joinRgb(rgb.view());
}

YuvPlanes<const std::uint8_t> yuvOf(const ConstPictureView& picture)
{
    return {picture.planes[0], picture.planes[1], picture.planes[2]};
}

} // namespace

void convert(const BgraView& source, const YuvPlanes<std::uint16_t>& destination)
{
    assert(destination.y.width == source.width && destination.y.height == source.height);
    assert(destination.cb.width == (source.width + 1) / 2);
    for (int y = 0; y < source.height; ++y) {
        kernel::convertRowTo422(
            source.data + y * source.stride,
            std::size_t(source.width),
            destination.y.row(y),
            destination.cb.row(y),
            destination.cr.row(y));
    }
}

Picture toPicture(const BgraView& source, Layout layout)
{
    if (layout == Layout::Yuv420) {
        return toYuv420(source);
    }
    Picture result(source.width, source.height, Layout::Rgb);
    splitIntoRgb(source, result.view());
    return result;
}

Picture toPicture(const Canvas& canvas, Layout layout)
{
    return toPicture(bytesOf(canvas), layout);
}

Canvas toCanvas(const ConstPictureView& picture)
{
    return picture.layout == Layout::Rgb ? joinRgb(picture) : yuvToCanvas(yuvOf(picture));
}

Canvas toCanvas(const YuvPlanes<const std::uint8_t>& planes)
{
    return yuvToCanvas(planes);
}
Canvas toCanvas(const YuvPlanes<const std::uint16_t>& planes)
{
    return yuvToCanvas(planes);
}

Picture toRgb(const ConstPictureView& picture)
{
    if (picture.layout == Layout::Rgb) {
        Picture same(picture.width, picture.height, Layout::Rgb);
        copy(picture, same.view());
        return same;
    }
    return yuvToRgb(yuvOf(picture), picture.width, picture.height);
}

Picture toRgb(const YuvPlanes<const std::uint8_t>& planes, int width, int height)
{
    return yuvToRgb(planes, width, height);
}
Picture toRgb(const YuvPlanes<const std::uint16_t>& planes, int width, int height)
{
    return yuvToRgb(planes, width, height);
}

} // namespace zento
