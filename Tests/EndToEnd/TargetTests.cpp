#include "ClientWindow.h"
#include "DesktopTest.h"
#include "ZentoCapture/CaptureSpace.h"
#include "ZentoCore/Error.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <mutex>
#include <optional>
#include <vector>

namespace zento {
namespace {

constexpr std::uint32_t kRed = 0xC01010;
constexpr std::uint32_t kGreen = 0x10C010;
constexpr std::uint32_t kBlue = 0x1010C0;
constexpr std::uint32_t kYellow = 0xC0C010;
constexpr std::uint32_t kWhite = 0xFFFFFF;
constexpr std::uint32_t kBlack = 0;

/// All the pictures a source delivers while it lives.
class Film {
public:
    explicit Film(std::unique_ptr<FrameSource> source)
        : m_source(std::move(source))
    {
        m_source->start(
            [this](const CapturedFrame& frame) {
                const std::lock_guard lock(m_mutex);
                m_width = frame.picture.width;
                Picture& picture = m_pictures.emplace_back();
                for (int y = 0; y < frame.picture.height; ++y) {
                    const std::uint8_t* const row = frame.picture.data + y * frame.picture.stride;
                    for (int x = 0; x < m_width; ++x) {
                        const std::uint8_t* const b = row + std::ptrdiff_t{4} * x;
                        picture.push_back(
                            static_cast<std::uint32_t>(b[2] << 16 | b[1] << 8 | b[0]));
                    }
                }
                return FrameVerdict::Taken;
            },
            [this](const std::optional<Error>&) {
                const std::lock_guard lock(m_mutex);
                m_hasEnded = true;
            });
    }
    ~Film() { m_source->stop(); }
    Film(const Film&) = delete;
    Film& operator=(const Film&) = delete;

    std::size_t count() const
    {
        const std::lock_guard lock(m_mutex);
        return m_pictures.size();
    }
    bool hasEnded() const
    {
        const std::lock_guard lock(m_mutex);
        return m_hasEnded;
    }

    /// Of the last picture.
    std::uint32_t pixel(Vec2 place) const
    {
        const std::lock_guard lock(m_mutex);
        const auto index = static_cast<std::size_t>(place.y) * static_cast<std::size_t>(m_width)
                           + static_cast<std::size_t>(place.x);
        return m_pictures.empty() ? 0xFFFFFFFF : m_pictures.back().at(index);
    }

    bool shows(Vec2 place, std::uint32_t rgb) const
    {
        return eventually([&] { return pixel(place) == rgb; });
    }

    bool everShowed(std::uint32_t rgb) const
    {
        const std::lock_guard lock(m_mutex);
        return std::ranges::any_of(m_pictures, [rgb](const Picture& picture) {
            return std::ranges::find(picture, rgb) != picture.end();
        });
    }

private:
    using Picture = std::vector<std::uint32_t>; // R, G, B from the high byte down

    std::unique_ptr<FrameSource> m_source;
    mutable std::mutex m_mutex;
    int m_width = 0;
    std::vector<Picture> m_pictures;
    bool m_hasEnded = false;
};

class TargetTest : public DesktopTest {
protected:
    Rect frameOf(std::uint32_t window) const
    {
        const auto info = m_desktop->window(window);
        return info ? info->frame : Rect{};
    }

    bool isOnScreen(std::uint32_t window) const { return m_desktop->window(window).has_value(); }

    static int even(double size) { return static_cast<int>(size) / 2 * 2; }

    std::unique_ptr<FrameSource> sourceOf(std::uint32_t window) const
    {
        const Rect frame = frameOf(window);
        return m_desktop->frameSource(
            {.window = RequestedWindow{.id = window, .size = {frame.w, frame.h}},
             .pixelWidth = even(frame.w),
             .pixelHeight = even(frame.h)});
    }

    std::unique_ptr<FrameSource> screenWithout(std::vector<std::uint32_t> windows) const
    {
        return m_desktop->frameSource(
            {.displayID = m_desktop->displays().at(0).id,
             .excludedWindowIDs = std::move(windows),
             .pixelWidth = kWidth,
             .pixelHeight = kHeight});
    }
};

TEST_F(TargetTest, aWindowIsSeenWholeWithItsFrameAlsoWhenCovered)
{
    ClientWindow window(display(), 60, 60, 200, 120, kRed);
    const Rect frame = frameOf(window.id());
    EXPECT_GT(frame.w, 200); // the window manager's borders
    EXPECT_GT(frame.h, 120);
    EXPECT_EQ(m_desktop->window(window.id())->application, "Client");
    const ColourWindow cover(display(), 0, 0, kWidth, kHeight);
    const Film film(sourceOf(window.id()));
    const Vec2 mark{window.origin().x - frame.x + 2, window.origin().y - frame.y + 2};
    EXPECT_TRUE(film.shows(mark, kWhite));
    EXPECT_TRUE(film.shows({mark.x + 100, mark.y + 60}, kRed));
    window.setColour(kGreen);
    EXPECT_TRUE(film.shows({mark.x + 100, mark.y + 60}, kGreen));
    EXPECT_EQ(film.pixel(mark), kWhite);
}

TEST_F(TargetTest, aWindowThatMovesMakesNoFrame)
{
    ClientWindow window(display(), 60, 60, 200, 120, kRed);
    const Film film(sourceOf(window.id()));
    ASSERT_TRUE(film.shows({100, 80}, kRed));
    const Rect before = frameOf(window.id());
    const std::size_t count = film.count();
    window.moveTo(200, 150);
    ASSERT_TRUE(eventually([&] { return frameOf(window.id()).x > before.x + 100; }));
    window.setColour(kBlue);
    EXPECT_TRUE(film.shows({100, 80}, kBlue));
    EXPECT_EQ(film.count(), count + 1);
}

TEST_F(TargetTest, aResizedWindowStaysWholeInTheFrameAndUnderItsClicks)
{
    struct Case {
        const char* name;
        int width;
        int height;
    };
    constexpr Case kCases[] = {
        {"smaller", 100, 60},
        {"larger", 400, 240},
        {"narrower", 100, 120},
        {"wider", 400, 120},
        {"lower", 200, 40},
        {"as before", 200, 120},
    };
    ClientWindow window(display(), 60, 60, 200, 120, kRed);
    const Rect recorded = frameOf(window.id());
    const Film film(sourceOf(window.id()));
    ASSERT_TRUE(film.shows({100, 80}, kRed));
    std::uint32_t colour = kRed;
    for (const Case& row : kCases) {
        SCOPED_TRACE(row.name);
        window.resize(row.width, row.height);
        ASSERT_TRUE(eventually([&] {
            const Rect now = frameOf(window.id());
            return now.w == recorded.w - 200 + row.width && now.h == recorded.h - 120 + row.height;
        }));
        const Rect frame = frameOf(window.id());
        window.setMarkColour(colour ^= 0x00FF00);
        const CaptureSpace space = following({.scale = 1}, frame, {recorded.w, recorded.h});
        const double scale = space.windowScale * space.fitScale;
        // A click on the mark's middle lies on its picture.
        const double half = ClientWindow::kMark / 2.0;
        const Vec2 click = space.map(Vec2{window.origin().x + half, window.origin().y + half});
        EXPECT_TRUE(film.shows(click, colour)) << film.pixel(click);
        // The lower right corner of the inside is in the frame, and nothing lies beyond the window.
        const Vec2 corner = space.map(Vec2{
            window.origin().x + row.width - 4 / scale, window.origin().y + row.height - 4 / scale});
        EXPECT_EQ(film.pixel(corner), kRed);
        const Vec2 end{std::ceil(frame.w * scale), std::ceil(frame.h * scale)};
        if (end.x < even(recorded.w)) {
            EXPECT_EQ(film.pixel({end.x, click.y}), kBlack);
        }
        if (end.y < even(recorded.h)) {
            EXPECT_EQ(film.pixel({click.x, end.y}), kBlack);
        }
    }
    EXPECT_FALSE(film.hasEnded());
}

TEST_F(TargetTest, aMinimisedOrClosedWindowKeepsItsLastPicture)
{
    ClientWindow window(display(), 60, 60, 200, 120, kRed);
    const Film film(sourceOf(window.id()));
    ASSERT_TRUE(film.shows({100, 80}, kRed));
    const std::size_t count = film.count();
    window.minimise();
    ASSERT_TRUE(eventually([&] { return !isOnScreen(window.id()); }));
    EXPECT_FALSE(m_desktop->windowFrameQuery(window.id())());
    window.setColour(kGreen);
    EXPECT_EQ(film.pixel({100, 80}), kRed);
    window.restore();
    EXPECT_TRUE(film.shows({100, 80}, kGreen));
    EXPECT_GT(film.count(), count);

    window.close();
    ASSERT_TRUE(eventually([&] { return !isOnScreen(window.id()); }));
    // Until the source has seen it go: what happens on the server afterwards comes after that.
    const Film other(screenWithout({}));
    ColourWindow later(display(), 0, 0, kWidth, kHeight);
    later.setColour(kBlue);
    EXPECT_TRUE(other.shows({100, 80}, kBlue));
    EXPECT_EQ(film.pixel({100, 80}), kGreen);
    EXPECT_FALSE(film.hasEnded());
}

TEST_F(TargetTest, aWindowIsFollowedIntoAnotherFrame)
{
    // As when a window manager takes over windows that are there already.
    const XcbConnection connection = connectTo(display());
    ColourWindow window(display(), 60, 60, 200, 120);
    window.setColour(kRed);
    const Film film(sourceOf(window.id()));
    ASSERT_TRUE(film.shows({100, 80}, kRed));
    ColourWindow frame(display(), 300, 100, 200, 140);
    frame.setColour(kYellow);
    xcb_reparent_window(connection.get(), window.id(), frame.id(), 0, 20);
    roundTrip(connection.get());
    EXPECT_EQ(frameOf(window.id()), (Rect{300, 100, 200, 140}));
    const double scale = 120.0 / 140;
    EXPECT_TRUE(film.shows({100, 10 * scale}, kYellow));
    EXPECT_TRUE(film.shows({100, 80 * scale}, kRed));
    window.setColour(kBlue);
    EXPECT_TRUE(film.shows({100, 80 * scale}, kBlue));
    xcb_reparent_window(connection.get(), window.id(), rootOf(connection.get()), 10, 10);
    roundTrip(connection.get());
    EXPECT_TRUE(film.shows({100, 10}, kBlue));
}

TEST_F(TargetTest, aWindowThatIsNotThereIsRefused)
{
    ClientWindow window(display(), 60, 60, 200, 120, kRed);
    const std::uint32_t root = rootOf(connectTo(display()).get());
    window.close();
    for (const std::uint32_t id : {window.id(), root, 0U, 12345U}) {
        EXPECT_FALSE(m_desktop->window(id)) << id;
        try {
            (void)m_desktop->frameSource(
                {.window = RequestedWindow{.id = id, .size = {10, 10}},
                 .pixelWidth = 10,
                 .pixelHeight = 10});
            ADD_FAILURE() << id;
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), ErrorCode::kWindowGone) << id;
        }
    }
}

/// A wallpaper the way desktops name it: a tile of one colour.
class Wallpaper {
public:
    Wallpaper(const std::string& display, std::uint32_t rgb)
        : m_connection(connectTo(display))
    {
        constexpr std::uint16_t kTile = 50;
        constexpr std::string_view kName = "_XROOTPMAP_ID";
        xcb_connection_t* const connection = m_connection.get();
        const xcb_window_t root = rootOf(connection);
        const xcb_pixmap_t pixmap = xcb_generate_id(connection);
        xcb_create_pixmap(connection, 24, pixmap, root, kTile, kTile);
        const xcb_gcontext_t gc = xcb_generate_id(connection);
        xcb_create_gc(connection, gc, pixmap, XCB_GC_FOREGROUND, &rgb);
        const xcb_rectangle_t all{0, 0, kTile, kTile};
        xcb_poly_fill_rectangle(connection, pixmap, gc, 1, &all);
        xcb_change_window_attributes(connection, root, XCB_CW_BACK_PIXMAP, &pixmap);
        xcb_clear_area(connection, 0, root, 0, 0, 0, 0);
        xcb_intern_atom_reply_t* const atom = xcb_intern_atom_reply(
            connection,
            xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(kName.size()), kName.data()),
            nullptr);
        m_property = atom->atom;
        std::free(atom);
        xcb_change_property(
            connection, XCB_PROP_MODE_REPLACE, root, m_property, XCB_ATOM_PIXMAP, 32, 1, &pixmap);
        roundTrip(connection);
    }
    ~Wallpaper()
    {
        const xcb_window_t root = rootOf(m_connection.get());
        xcb_delete_property(m_connection.get(), root, m_property);
        const std::uint32_t black = kBlack;
        xcb_change_window_attributes(m_connection.get(), root, XCB_CW_BACK_PIXEL, &black);
        xcb_clear_area(m_connection.get(), 0, root, 0, 0, 0, 0);
        roundTrip(m_connection.get());
    }
    Wallpaper(const Wallpaper&) = delete;
    Wallpaper& operator=(const Wallpaper&) = delete;

private:
    XcbConnection m_connection;
    xcb_atom_t m_property = 0;
};

TEST_F(TargetTest, anExcludedWindowIsNeverSeenAndAllElseIs)
{
    const Wallpaper wallpaper(display(), kYellow);
    ColourWindow below(display(), 100, 100, 100, 100);
    below.setColour(kGreen);
    ColourWindow excluded(display(), 120, 120, 300, 60);
    excluded.setColour(kRed);
    ColourWindow above(display(), 300, 110, 50, 40);
    above.setColour(kBlue);
    const Film film(screenWithout({excluded.id(), 12345}));
    EXPECT_TRUE(film.shows({150, 150}, kGreen));
    EXPECT_EQ(film.pixel({250, 150}), kYellow);
    EXPECT_EQ(film.pixel({310, 140}), kBlue);

    // Changes that the excluded window hides are seen all the same.
    below.setColour(kWhite);
    EXPECT_TRUE(film.shows({150, 150}, kWhite));
    excluded.setColour(kRed + 1);
    excluded.moveTo(200, 130);
    below.moveTo(200, 140);
    EXPECT_TRUE(film.shows({250, 150}, kWhite));
    EXPECT_TRUE(film.shows({150, 150}, kYellow));
    {
        ColourWindow popup(display(), 400, 150, 30, 30);
        popup.setColour(kGreen);
        EXPECT_TRUE(film.shows({410, 160}, kGreen));
    }
    EXPECT_TRUE(film.shows({410, 160}, kYellow));
    EXPECT_FALSE(film.everShowed(kRed));
    EXPECT_FALSE(film.everShowed(kRed + 1));
}

TEST_F(TargetTest, aFramedWindowIsExcludedWithItsFrameAlsoFromAnArea)
{
    const Wallpaper wallpaper(display(), kYellow);
    ClientWindow excluded(display(), 60, 60, 200, 120, kRed);
    const Rect frame = frameOf(excluded.id());
    const Film film(m_desktop->frameSource(
        {.displayID = m_desktop->displays().at(0).id,
         .sourceRect = frame,
         .excludedWindowIDs = {excluded.id()},
         .pixelWidth = even(frame.w),
         .pixelHeight = even(frame.h)}));
    ASSERT_TRUE(film.shows({0, 0}, kYellow));
    ColourWindow other(display(), 70, 70, 20, 20);
    other.setColour(kBlue);
    EXPECT_TRUE(film.shows({75 - frame.x, 75 - frame.y}, kBlue));
    EXPECT_FALSE(film.everShowed(kRed));
    EXPECT_EQ(film.pixel({100, 5}), kYellow); // where the title was
}

TEST_F(TargetTest, whatIsNoLongerThereKeepsItsLastPicture)
{
    ColourWindow left(display(), 20, 20, 100, 100);
    ColourWindow right(display(), 520, 20, 100, 100);
    left.setColour(kRed);
    right.setColour(kRed);
    constexpr double kHalf = kWidth / 2.0;
    TestMonitors two(display(), {{0, 0, kHalf, kHeight}, {kHalf, 0, kHalf, kHeight}});
    const Film film(m_desktop->frameSource(
        {.displayID = m_desktop->displays().at(0).id,
         .sourceRect = Rect{0, 0, kWidth, kHeight},
         .pixelWidth = kWidth,
         .pixelHeight = kHeight}));
    ASSERT_TRUE(film.shows({600, 50}, kRed));

    two.unplug(1);
    right.setColour(kGreen);
    left.setColour(kGreen);
    EXPECT_TRUE(film.shows({50, 50}, kGreen));
    EXPECT_EQ(film.pixel({600, 50}), kRed);

    two.resizeScreen(400, 200); // the screen itself becomes too small to be read
    left.setColour(kBlue);
    EXPECT_TRUE(film.shows({50, 50}, kBlue));
    EXPECT_EQ(film.pixel({600, 50}), kRed);

    two.resizeScreen(kWidth, kHeight);
    two.unplug(0); // the server's own monitor, all of the screen, is back
    EXPECT_TRUE(film.shows({600, 50}, kGreen));
    EXPECT_EQ(film.pixel({50, 50}), kBlue);
    EXPECT_FALSE(film.hasEnded());
}

} // namespace
} // namespace zento
