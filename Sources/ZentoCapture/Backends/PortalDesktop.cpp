#include "ZentoCapture/Backends/PortalDesktop.h"

#include "ZentoCapture/Backends/PortalInputSource.h"
#include "ZentoCapture/Backends/PortalScrollWheel.h"
#include "ZentoCapture/DesktopServices.h"
#include "ZentoCore/Error.h"

#include <gio/gio.h>

#include <cmath>
#include <utility>
#include <variant>

// The library's macros cast as C does.
#pragma GCC diagnostic ignored "-Wold-style-cast"

namespace zento {

namespace {

constexpr const char* kScreenshot = "org.freedesktop.portal.Screenshot";
constexpr std::uint32_t kChosen = 1; // the id of the one display

class PortalFrameSource final : public FrameSource {
public:
    PortalFrameSource(std::shared_ptr<PortalScreen> screen, const PixelRect& part)
        : m_screen(std::move(screen))
        , m_part(part)
    {
    }
    ~PortalFrameSource() override { stop(); }
    PortalFrameSource(const PortalFrameSource&) = delete;
    PortalFrameSource& operator=(const PortalFrameSource&) = delete;

    void start(FrameHandler onFrame, EndHandler onEnd) override
    {
        m_screen->begin(m_part, std::move(onFrame), std::move(onEnd));
    }

    void stop() override
    {
        if (m_screen) {
            m_screen->end();
            m_screen.reset();
        }
    }

private:
    std::shared_ptr<PortalScreen> m_screen;
    PixelRect m_part;
};

/// Each way to ask is remembered by itself: who records a window now and then is not asked for the
/// monitor again.
ScreenChoice choiceFor(const CaptureTarget& target)
{
    if (std::holds_alternative<Target::Window>(target)) {
        return {ScreenChoice::Kind::Window, "window"};
    }
    if (const auto* const screen = std::get_if<Target::Screen>(&target)) {
        return {ScreenChoice::Kind::Monitor, "screen " + std::to_string(screen->displayID)};
    }
    return {ScreenChoice::Kind::Monitor, "display"};
}

int nearestPixel(double points, double scale)
{
    return static_cast<int>(std::lround(points * scale));
}

} // namespace

PortalDesktop::PortalDesktop(Parts parts)
    : m_parts(std::move(parts))
    , m_pointer(std::make_shared<PointerTrack>())
{
}

void PortalDesktop::choose(const CaptureTarget& target, const std::stop_token& stop)
{
    if (m_hasHand && !std::holds_alternative<Target::Window>(target)) {
        return; // it was chosen with the wheel
    }
    show(choiceFor(target), stop);
}

void PortalDesktop::show(const ScreenChoice& choice, const std::stop_token& stop)
{
    m_screen =
        std::make_shared<PortalScreen>(choice, m_parts.tokens, m_parts.patience, m_pointer, stop);
    m_looked->set(m_screen);
    m_hasHand = choice.hand != ScreenChoice::Hand::None;
}

void PortalDesktop::forgetChoice(const CaptureTarget& target)
{
    m_parts.tokens.keep(choiceFor(target).name, {});
}

std::optional<std::string> PortalDesktop::shortcoming()
{
    if (m_screen && !m_screen->tellsPointer()) {
        return "This desktop does not tell where the pointer is, so the film shows the desktop's "
               "own pointer and stays wide. A newer desktop portal changes that.";
    }
    if (!m_readsDevices && deviceInputAccess() == InputAccess::None) {
        return "Zento sees the pointer here, but no clicks and keys, so it zooms to where the "
               "pointer rests. To let it see them, add yourself to the group input (sudo usermod "
               "-aG input $USER) and log in again; every program of yours can then see them.";
    }
    return {};
}

std::optional<std::filesystem::path> PortalDesktop::takePicture(const std::stop_token& stop)
{
    SessionBus bus;
    Portal portal(bus, m_parts.patience);
    if (portal.version(kScreenshot) == 0) {
        return {};
    }
    const Variant results = portal.request(
        kScreenshot,
        "Screenshot",
        [](PortalOptions& options) { options.set("interactive", /*value=*/false); },
        [](GVariant* options) { return g_variant_new("(s@a{sv})", "", options); },
        Portal::Asks::User,
        stop);
    const std::string uri = textEntry(results.get(), "uri").value_or("");
    const std::unique_ptr<char, decltype(&g_free)> path(
        g_filename_from_uri(uri.c_str(), nullptr, nullptr), &g_free);
    if (!path) {
        throw Error(ErrorCode::kPortalFailed, "the desktop's Screenshot portal gave no picture");
    }
    return path.get();
}

std::vector<DisplayInfo> PortalDesktop::displays()
{
    if (!m_screen) {
        return {};
    }
    return {
        {.id = kChosen,
         .name = "chosen",
         .bounds = m_screen->bounds(),
         .scale = m_screen->scale(),
         .role = DisplayRole::Main}};
}

std::optional<WindowInfo> PortalDesktop::window(std::uint32_t /*windowID*/)
{
    return m_screen ? std::optional(WindowInfo{.frame = m_screen->bounds()}) : std::nullopt;
}

/// A window's stream shows it wherever it is, and its points are told from its own corner.
Desktop::WindowFrameQuery PortalDesktop::windowFrameQuery(std::uint32_t /*windowID*/)
{
    return []() -> std::optional<Rect> { return {}; };
}

std::optional<Vec2> PortalDesktop::pointerPosition()
{
    return m_pointer->newest();
}

std::unique_ptr<FrameSource> PortalDesktop::frameSource(const FrameRequest& request)
{
    if (!m_screen) {
        throw Error(ErrorCode::kNoDisplay, "nothing has been chosen to be shown");
    }
    const Rect bounds = m_screen->bounds();
    const double scale = m_screen->scale();
    const Rect local = request.sourceRect.value_or(Rect{0, 0, bounds.w, bounds.h});
    const PixelRect part{
        .x = nearestPixel(local.x, scale),
        .y = nearestPixel(local.y, scale),
        .width = request.pixelWidth,
        .height = request.pixelHeight};
    const PixelRect whole{0, 0, nearestPixel(bounds.w, scale), nearestPixel(bounds.h, scale)};
    if (intersection(part, whole) != part) {
        throw Error(ErrorCode::kNoDisplay, "the area lies outside the monitor that was chosen");
    }
    return std::make_unique<PortalFrameSource>(m_screen, part);
}

std::unique_ptr<InputSource> PortalDesktop::inputSource()
{
    auto devices = m_parts.openDevices();
    m_readsDevices = devices != nullptr;
    return std::make_unique<PortalInputSource>(m_pointer, std::move(devices));
}

std::unique_ptr<ElementLookup> PortalDesktop::elementLookup()
{
    return std::make_unique<PortalLookup>(m_looked);
}

std::unique_ptr<ScrollWheel> PortalDesktop::scrollWheel(const std::stop_token& stop)
{
    show({ScreenChoice::Kind::Monitor, "wheel", ScreenChoice::Hand::Pointer}, stop);
    return std::make_unique<PortalScrollWheel>(m_screen, m_pointer, m_parts.openDevices());
}

} // namespace zento
