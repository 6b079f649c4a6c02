#include "Zento/Demo/RootBackground.h"

#include "Zento/Demo/XConnection.h"

#include <xcb/xcb.h>

#include <array>
#include <cmath>
#include <vector>

namespace zento {

namespace {

/// A 4x4 ordered dither: without it a gradient this soft shows bands of one level.
constexpr std::array<std::array<double, 4>, 4> kDither{
    {{0.0, 8.0, 2.0, 10.0}, {12.0, 4.0, 14.0, 6.0}, {3.0, 11.0, 1.0, 9.0}, {15.0, 7.0, 13.0, 5.0}}};

std::uint32_t blended(const VerticalGradient& gradient, double position, double threshold)
{
    std::uint32_t colour = 0;
    for (const int shift : {16, 8, 0}) {
        const double from = (gradient.top >> shift) & 0xffU;
        const double to = (gradient.bottom >> shift) & 0xffU;
        const double level = std::floor(std::lerp(from, to, position) + threshold);
        colour |= static_cast<std::uint32_t>(level) << shift;
    }
    return colour;
}

} // namespace

void paintRootBackground(const XConnection& connection, const VerticalGradient& gradient)
{
    xcb_connection_t* x = connection.get();
    const xcb_window_t root = connection.root().id;
    const std::uint16_t height = connection.root().height;
    constexpr std::uint16_t kTileWidth = kDither.size();

    // One column of the dither's width, repeated across by the server.
    std::vector<std::uint32_t> pixels;
    for (std::uint16_t y = 0; y < height; ++y) {
        for (const double cell : kDither.at(y % kDither.size())) {
            const double threshold = (cell + 0.5) / 16;
            pixels.push_back(blended(gradient, y / (height - 1.0), threshold));
        }
    }
    const xcb_pixmap_t tile = xcb_generate_id(x);
    xcb_create_pixmap(x, connection.root().depth, tile, root, kTileWidth, height);
    const xcb_gcontext_t context = xcb_generate_id(x);
    xcb_create_gc(x, context, tile, 0, nullptr);
    xcb_put_image(
        x,
        XCB_IMAGE_FORMAT_Z_PIXMAP,
        tile,
        context,
        kTileWidth,
        height,
        0,
        0,
        0,
        connection.root().depth,
        static_cast<std::uint32_t>(pixels.size() * sizeof(std::uint32_t)),
        reinterpret_cast<const std::uint8_t*>(pixels.data()));
    xcb_change_window_attributes(x, root, XCB_CW_BACK_PIXMAP, &tile);
    xcb_clear_area(x, 0, root, 0, 0, 0, 0);
    xcb_change_property(
        x,
        XCB_PROP_MODE_REPLACE,
        root,
        connection.atom("_XROOTPMAP_ID"),
        XCB_ATOM_PIXMAP,
        32,
        1,
        &tile);
    xcb_free_gc(x, context);
    xcb_set_close_down_mode(x, XCB_CLOSE_DOWN_RETAIN_PERMANENT);
    connection.synchronise();
}

} // namespace zento
