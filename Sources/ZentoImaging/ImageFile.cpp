#include "ZentoImaging/ImageFile.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoImaging/CanvasState.hpp"
#include "ZentoImaging/Convert.h"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <string>
#include <utility>

namespace zento {

namespace {

using Pixbuf = std::unique_ptr<GdkPixbuf, CallOnDelete<g_object_unref>>;

/// Orientation lies with the file's own pixbuf: a scaled copy has lost it.
Pixbuf upright(Pixbuf pixbuf)
{
    Pixbuf turned(gdk_pixbuf_apply_embedded_orientation(pixbuf.get()));
    return turned ? std::move(turned) : std::move(pixbuf);
}

Pixbuf readPixbuf(const std::filesystem::path& path)
{
    GError* error = nullptr;
    Pixbuf result(gdk_pixbuf_new_from_file(path.c_str(), &error));
    if (!result) {
        const std::unique_ptr<GError, CallOnDelete<g_error_free>> owned(error);
        throw Error(
            ErrorCode::kUndecodable,
            path.string() + " could not be read as an image: " + owned->message);
    }
    return upright(std::move(result));
}

Pixbuf decodePixbuf(std::span<const char> bytes)
{
    const std::unique_ptr<GdkPixbufLoader, CallOnDelete<g_object_unref>> loader(
        gdk_pixbuf_loader_new());
    const auto* data = reinterpret_cast<const guchar*>(bytes.data());
    const bool isWhole =
        gdk_pixbuf_loader_write(loader.get(), data, bytes.size(), nullptr) != FALSE;
    const bool isClosed = gdk_pixbuf_loader_close(loader.get(), nullptr) != FALSE;
    GdkPixbuf* const pixbuf = gdk_pixbuf_loader_get_pixbuf(loader.get());
    if (!isWhole || !isClosed || pixbuf == nullptr) {
        throw Error(ErrorCode::kUndecodable, "an image in memory could not be read");
    }
    return upright(Pixbuf(GDK_PIXBUF(g_object_ref(pixbuf))));
}

std::uint32_t premultiplied(const guchar* pixel, bool hasAlpha)
{
    const std::uint32_t alpha = hasAlpha ? pixel[3] : 255;
    const auto times = [&](std::uint32_t value) { return (value * alpha + 127) / 255; };
    return alpha << 24 | times(pixel[0]) << 16 | times(pixel[1]) << 8 | times(pixel[2]);
}

/// A photograph of a billion pixels, brought to where a canvas of it is no burden.
Pixbuf notMuchLarger(Pixbuf pixbuf, std::optional<int> maxPixels)
{
    constexpr int kRoomForGoodScaling = 2;
    const int width = gdk_pixbuf_get_width(pixbuf.get());
    const int height = gdk_pixbuf_get_height(pixbuf.get());
    const double longer = std::max(width, height);
    if (!maxPixels || longer <= double(*maxPixels) * kRoomForGoodScaling * 2) {
        return pixbuf;
    }
    const double scale = *maxPixels * kRoomForGoodScaling / longer;
    const auto scaled = [&](int size) { return std::max(1, int(std::lround(size * scale))); };
    Pixbuf smaller(
        gdk_pixbuf_scale_simple(pixbuf.get(), scaled(width), scaled(height), GDK_INTERP_BILINEAR));
    if (!smaller) {
        throw std::bad_alloc();
    }
    return smaller;
}

Canvas toCanvas(const GdkPixbuf* pixbuf)
{
    Canvas canvas(gdk_pixbuf_get_width(pixbuf), gdk_pixbuf_get_height(pixbuf));
    const Plane<std::uint32_t> to = canvas.pixels();
    const guchar* pixels = gdk_pixbuf_read_pixels(pixbuf);
    const std::ptrdiff_t stride = gdk_pixbuf_get_rowstride(pixbuf);
    const bool hasAlpha = gdk_pixbuf_get_has_alpha(pixbuf) != FALSE;
    const std::ptrdiff_t step = hasAlpha ? 4 : 3;
    for (int y = 0; y < to.height; ++y) {
        const guchar* from = pixels + y * stride;
        for (int x = 0; x < to.width; ++x) {
            to.row(y)[x] = premultiplied(from + x * step, hasAlpha);
        }
    }
    return canvas;
}

/// Straight alpha, in memory R, G, B, A.
void unpremultiplyRow(const std::uint32_t* row, int width, guchar* out)
{
    for (int x = 0; x < width; ++x) {
        const std::uint32_t alpha = row[x] >> 24;
        const auto straight = [&](std::uint32_t shift) {
            const std::uint32_t value = row[x] >> shift & 0xff;
            return alpha == 0
                       ? guchar{0}
                       : static_cast<guchar>(std::min(255U, (value * 255 + alpha / 2) / alpha));
        };
        out[0] = straight(16);
        out[1] = straight(8);
        out[2] = straight(0);
        out[3] = static_cast<guchar>(alpha);
        out += 4;
    }
}

Pixbuf toPixbuf(const Canvas& canvas)
{
    Pixbuf result(gdk_pixbuf_new(GDK_COLORSPACE_RGB, TRUE, 8, canvas.width(), canvas.height()));
    if (!result) {
        throw std::bad_alloc();
    }
    const Plane<const std::uint32_t> pixels = canvas.pixels();
    guchar* to = gdk_pixbuf_get_pixels(result.get());
    const std::ptrdiff_t stride = gdk_pixbuf_get_rowstride(result.get());
    for (int y = 0; y < pixels.height; ++y) {
        unpremultiplyRow(pixels.row(y), pixels.width, to + y * stride);
    }
    return result;
}

} // namespace

Canvas decodeImage(std::span<const char> bytes)
{
    return toCanvas(decodePixbuf(bytes).get());
}

Canvas loadImage(const std::filesystem::path& path, std::optional<int> maxPixels)
{
    Canvas full = toCanvas(notMuchLarger(readPixbuf(path), maxPixels).get());
    const int longer = std::max(full.width(), full.height());
    if (!maxPixels || longer <= *maxPixels) {
        return full;
    }
    const double scale = double(*maxPixels) / longer;
    const auto scaled = [&](int size) { return std::max(1, int(std::lround(size * scale))); };
    Canvas small(scaled(full.width()), scaled(full.height()));
    small.drawImage(full, small.bounds());
    return small;
}

std::vector<std::byte> encodePng(const Canvas& canvas, double density)
{
    const Pixbuf pixbuf = toPixbuf(canvas);
    const std::string dotsPerInch = std::to_string(std::lround(72 * std::max(density, 1.0)));
    gchar* data = nullptr;
    gsize size = 0;
    GError* error = nullptr;
    const gboolean done = gdk_pixbuf_save_to_buffer(
        pixbuf.get(),
        &data,
        &size,
        "png",
        &error,
        "x-dpi",
        dotsPerInch.c_str(),
        "y-dpi",
        dotsPerInch.c_str(),
        nullptr);
    if (done == FALSE) {
        const std::unique_ptr<GError, CallOnDelete<g_error_free>> owned(error);
        throw Error(
            ErrorCode::kNoPicture, std::string("a PNG image could not be made: ") + owned->message);
    }
    const std::unique_ptr<gchar, CallOnDelete<g_free>> owned(data);
    const auto* begin = reinterpret_cast<const std::byte*>(data);
    return {begin, begin + size};
}

void savePng(const Canvas& canvas, const std::filesystem::path& path, double density)
{
    const std::vector<std::byte> bytes = encodePng(canvas, density);
    writeFile(path, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

void savePng(const ConstPictureView& picture, const std::filesystem::path& path)
{
    savePng(toCanvas(picture), path);
}

} // namespace zento
