#include "Animation.h"

#include "TestSupport/Random.h"

#include <pthread.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <vector>

namespace zento::bench {

namespace {

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using Connection = std::unique_ptr<xcb_connection_t, Disconnect>;

class Page {
public:
    Page(const std::string& display, int width, int height)
        : m_connection(xcb_connect(display.c_str(), nullptr))
        , m_width(static_cast<std::uint16_t>(width))
        , m_height(static_cast<std::uint16_t>(height))
    {
        if (xcb_connection_has_error(m_connection.get()) != 0) {
            throw std::runtime_error("no X server at " + display);
        }
        xcb_connection_t* const server = m_connection.get();
        const xcb_screen_t* const screen = xcb_setup_roots_iterator(xcb_get_setup(server)).data;
        m_window = xcb_generate_id(server);
        const std::uint32_t unmanaged = 1;
        xcb_create_window(
            server,
            XCB_COPY_FROM_PARENT,
            m_window,
            screen->root,
            0,
            0,
            m_width,
            m_height,
            0,
            XCB_WINDOW_CLASS_INPUT_OUTPUT,
            XCB_COPY_FROM_PARENT,
            XCB_CW_OVERRIDE_REDIRECT,
            &unmanaged);
        xcb_map_window(server, m_window);
        m_gc = xcb_generate_id(server);
        xcb_create_gc(server, m_gc, m_window, 0, nullptr);
        m_page = xcb_generate_id(server);
        const auto pageHeight = static_cast<std::uint16_t>(2 * height);
        xcb_create_pixmap(server, screen->root_depth, m_page, m_window, m_width, pageHeight);
        paint(screen->root_depth);
    }

    void scrollTo(int line)
    {
        const auto top = static_cast<std::int16_t>(line % m_height);
        xcb_copy_area(m_connection.get(), m_page, m_window, m_gc, 0, top, 0, 0, m_width, m_height);
        xcb_flush(m_connection.get());
    }

private:
    /// Lines of dark dashes on white: a text, as far as an encoder is concerned.
    void paint(std::uint8_t depth)
    {
        test::Random random(1);
        constexpr std::size_t kDash = 6;
        std::vector<std::uint32_t> row(m_width);
        for (int y = 0; y < 2 * m_height; ++y) {
            for (std::size_t x = 0; x < row.size(); ++x) {
                const bool isInk = y % 18 < 11 && random.chance(0.4);
                row[x] = x % kDash != 0 ? row[x - 1] : isInk ? 0x303030 : 0xFAFAF8;
            }
            xcb_put_image(
                m_connection.get(),
                XCB_IMAGE_FORMAT_Z_PIXMAP,
                m_page,
                m_gc,
                m_width,
                1,
                0,
                static_cast<std::int16_t>(y),
                0,
                depth,
                static_cast<std::uint32_t>(row.size() * sizeof(std::uint32_t)),
                reinterpret_cast<const std::uint8_t*>(row.data()));
        }
    }

    Connection m_connection;
    std::uint16_t m_width;
    std::uint16_t m_height;
    xcb_window_t m_window = 0;
    xcb_gcontext_t m_gc = 0;
    xcb_pixmap_t m_page = 0;
};

} // namespace

Animation::Animation(const std::string& display, int screenWidth, int screenHeight, double share)
{
    const int height = static_cast<int>(screenHeight * std::sqrt(share));
    const int width = static_cast<int>(screenWidth * std::sqrt(share));
    m_thread = std::jthread(
        [page = std::make_shared<Page>(display, width, height)](const std::stop_token& stop) {
            pthread_setname_np(pthread_self(), "stage");
            auto next = std::chrono::steady_clock::now();
            for (int frame = 0; !stop.stop_requested(); ++frame) {
                page->scrollTo(3 * frame);
                next += std::chrono::microseconds(16667);
                std::this_thread::sleep_until(next);
            }
        });
}

} // namespace zento::bench
