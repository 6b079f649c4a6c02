#include "Zento/Desktop/DesktopWindows.h"

#include "Zento/Desktop/Compositor.h"
#include "ZentoCapture/Desktop.h"
#include "ZentoCore/Error.h"

#include <QCoreApplication>
#include <QString>

#include <xcb/xcb.h>

#include <algorithm>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string_view>
#include <thread>
#include <utility>

namespace zento {

namespace {

struct Free {
    void operator()(void* memory) const noexcept { std::free(memory); } // NOLINT: libxcb's contract
};

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};

/// Questions about windows.
class Server {
public:
    explicit Server(const std::string& displayName)
    {
        int number = 0;
        m_connection.reset(
            xcb_connect(displayName.empty() ? nullptr : displayName.c_str(), &number));
        if (isConnected()) {
            auto screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection.get()));
            for (int i = 0; i < number; ++i) {
                xcb_screen_next(&screen);
            }
            m_root = screen.data->root;
        }
    }

    bool isConnected() const { return xcb_connection_has_error(m_connection.get()) == 0; }
    xcb_window_t root() const { return m_root; }

    std::string text(xcb_window_t window, const char* name) const
    {
        constexpr std::uint32_t kLongest = 4096; // of four bytes each
        const std::unique_ptr<xcb_get_property_reply_t, Free> reply(xcb_get_property_reply(
            m_connection.get(),
            xcb_get_property(m_connection.get(), 0, window, atom(name), XCB_ATOM_ANY, 0, kLongest),
            nullptr));
        if (!reply) {
            return {};
        }
        const auto* const bytes = static_cast<const char*>(xcb_get_property_value(reply.get()));
        return {bytes, static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
    }

    std::vector<std::uint32_t> values(xcb_window_t window, const char* name) const
    {
        const std::string bytes = text(window, name);
        std::vector<std::uint32_t> numbers(bytes.size() / sizeof(std::uint32_t));
        std::memcpy(numbers.data(), bytes.data(), numbers.size() * sizeof(std::uint32_t));
        return numbers;
    }

    xcb_atom_t atom(std::string_view name) const
    {
        const std::unique_ptr<xcb_intern_atom_reply_t, Free> reply(xcb_intern_atom_reply(
            m_connection.get(),
            xcb_intern_atom(
                m_connection.get(), 1, static_cast<std::uint16_t>(name.size()), name.data()),
            nullptr));
        return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    }

private:
    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    xcb_window_t m_root = XCB_WINDOW_NONE;
};

/// Normal windows and dialogs; one that does not say is a normal one.
bool isOrdinary(const Server& server, xcb_window_t window)
{
    const auto types = server.values(window, "_NET_WM_WINDOW_TYPE");
    return types.empty() || std::ranges::any_of(types, [&](xcb_atom_t type) {
               return type == server.atom("_NET_WM_WINDOW_TYPE_NORMAL")
                      || type == server.atom("_NET_WM_WINDOW_TYPE_DIALOG");
           });
}

std::string titleOf(const Server& server, xcb_window_t window)
{
    const std::string title = server.text(window, "_NET_WM_NAME");
    return title.empty() ? server.text(window, "WM_NAME") : title;
}

std::optional<std::string> named(const std::string& displayName)
{
    return displayName.empty() ? std::nullopt : std::optional(displayName);
}

/// The picture of a window, which the capture's thread hands over.
class WindowPicture {
public:
    FrameVerdict take(const CapturedFrame& frame)
    {
        if (frame.status == FrameStatus::Complete) {
            const std::lock_guard lock(m_mutex);
            const QImage borrowed(
                frame.picture.data,
                frame.picture.width,
                frame.picture.height,
                static_cast<qsizetype>(frame.picture.stride),
                QImage::Format_RGB32);
            m_image = borrowed.copy();
            m_arrived.notify_all();
        }
        return FrameVerdict::Taken;
    }

    /// The last one that comes within `more` of the first.
    QImage await(std::chrono::milliseconds more)
    {
        std::unique_lock lock(m_mutex);
        m_arrived.wait_for(lock, std::chrono::seconds(1), [this] { return !m_image.isNull(); });
        lock.unlock();
        std::this_thread::sleep_for(more);
        lock.lock();
        return m_image;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_arrived;
    QImage m_image;
};

} // namespace

std::vector<DesktopWindow> desktopWindows(const std::string& displayName)
try {
    const Server server(displayName);
    if (!server.isConnected()) {
        return {};
    }
    const auto desktop = openDesktop(named(displayName));
    auto ids = server.values(server.root(), "_NET_CLIENT_LIST_STACKING"); // from the back
    std::ranges::reverse(ids);
    const auto ownProcess = static_cast<std::uint32_t>(QCoreApplication::applicationPid());
    std::vector<DesktopWindow> windows;
    for (const std::uint32_t id : ids) {
        if (const auto window = desktop->window(id)) {
            const auto process = server.values(id, "_NET_WM_PID");
            windows.push_back(
                {.id = id,
                 .application = QString::fromStdString(window->application.value_or("")),
                 .title = QString::fromStdString(titleOf(server, id)),
                 .width = window->frame.w,
                 .height = window->frame.h,
                 .isOrdinary = isOrdinary(server, id),
                 .isOurs = !process.empty() && process.front() == ownProcess});
        }
    }
    return windows;
} catch (const Error&) {
    return {}; // no display
}

QImage windowThumbnail(std::uint32_t windowID, int width, const std::string& displayName)
try {
    const auto desktop = openDesktop(named(displayName));
    const auto window = desktop->window(windowID);
    const auto displays = desktop->displays();
    if (!window || displays.empty()) {
        return {};
    }
    const Vec2 size{window->frame.w, window->frame.h};
    const double scale = displays.front().scale;
    const auto source = desktop->frameSource(
        {.displayID = displays.front().id,
         .window = RequestedWindow{windowID, size},
         .pixelWidth = static_cast<int>(size.x * scale) / 2 * 2,
         .pixelHeight = static_cast<int>(size.y * scale) / 2 * 2});
    WindowPicture picture;
    source->start(
        [&picture](const CapturedFrame& frame) { return picture.take(frame); },
        [](const std::optional<Error>&) {});
    // Where nothing blends windows, what is covered is not there before its program has drawn it.
    constexpr std::chrono::milliseconds kTimeToDraw{150};
    const QImage image =
        picture.await(blendsWindows() ? std::chrono::milliseconds(0) : kTimeToDraw);
    source->stop();
    return image.width() > width ? image.scaledToWidth(width, Qt::SmoothTransformation) : image;
} catch (const Error&) {
    return {}; // the window has just gone
}

} // namespace zento
