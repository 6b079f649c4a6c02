#pragma once

#include "ZentoCapture/Backends/PixelTarget.h"
#include "ZentoCapture/Backends/X11Damage.h"
#include "ZentoCapture/Backends/X11Redirection.h"
#include "ZentoCapture/Backends/X11Subject.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

namespace zento {

/// Takes windows out of a picture of the screen: where they are, all the other windows are drawn
/// again over the wallpaper, from the pictures the server keeps of them.
///
/// The wallpaper is the one the desktop names (_XROOTPMAP_ID). A desktop that draws its wallpaper
/// in another way leaves only what was last seen at that place, which may be a window that has gone
/// since; and where nothing was seen yet, a bridge between the pixels above and below. Shadows and
/// fading that a compositor adds are not drawn again.
///
/// Threading: as `X11Subject`. The connection must outlive it.
class X11Underlay {
public:
    /// What the owner of the connection must select on the root window for `handle`.
    static constexpr std::uint32_t kRootEvents =
        XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;

    /// Throws `Error` when the server cannot keep the pictures of covered windows.
    X11Underlay(const X11Connection& connection, std::vector<xcb_window_t> excludedWindows);

    /// Whether the picture may have changed in a way that the screen's own damage does not tell.
    X11Subject::News handle(const xcb_generic_event_t& event);

    /// Works on the next picture, which shows `captured` of the root window.
    void paint(X11Frames& frames, const PixelRect& captured);

    /// Whether an excluded window has moved or come since `paint`, which then missed it.
    bool isOutdated() const { return m_isOutdated; }

private:
    /// A window that an excluded one may hide, or be hidden by.
    struct Layer {
        PixelRect rect;               // root pixels, with its border
        std::vector<PixelRect> shape; // root pixels: where it has any
        bool isTranslucent = false;
        X11WindowPixmap pixmap;
        std::unique_ptr<X11Damage> damage; // what is hidden changes without the screen's doing so
    };

    /// Where an excluded window is, or was a moment ago.
    struct Hole {
        PixelRect rect;                                         // root pixels
        double until = std::numeric_limits<double>::infinity(); // seconds of CLOCK_MONOTONIC
    };

    struct Wallpaper {
        xcb_pixmap_t pixmap = XCB_NONE;
        PixelRect tile; // its size; repeated from the screen's corner on
    };

    bool concernsExcluded(const xcb_generic_event_t& event) const;
    void readStack();
    void setHoles(const std::vector<PixelRect>& rects, double formerUntil);
    bool isExcluded(xcb_window_t topLevel) const;
    bool hasCompositor() const;
    void addLayer(xcb_window_t window, const PixelRect& rect, int border, bool isTranslucent);
    Wallpaper wallpaper() const;
    void paintWallpaper(const PixelTarget& target, const PixelRect& area, X11Frames& frames);
    void paintTiles(const PixelTarget& target, const PixelRect& area);
    void paintLayer(const PixelTarget& target, const PixelRect& area, const Layer& layer);

    const X11Connection& m_connection;
    std::vector<xcb_window_t> m_excluded;
    std::vector<xcb_window_t> m_excludedTopLevels;
    std::vector<Hole> m_holes;
    std::vector<Layer> m_layers; // from the lowest up
    Wallpaper m_wallpaper;
    bool m_mustReadStack = true;
    bool m_isOutdated = false;
    X11Pixels m_part; // while it is read
};

} // namespace zento
