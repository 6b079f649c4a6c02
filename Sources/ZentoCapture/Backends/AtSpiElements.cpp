#include "ZentoCapture/Backends/AtSpiElements.h"

#include "ZentoCapture/Backends/AxRoles.h"

#include <atspi/atspi.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace zento {

namespace {

constexpr int kCallTimeoutMs = 500;
constexpr int kApplicationStartMs = 2000; // how long a young application is given more time
constexpr int kDeepestNesting = 40;

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
struct FreeText {
    void operator()(gchar* text) const { g_free(text); }
};
struct FreeRect {
    void operator()(AtspiRect* rect) const { g_free(rect); }
};
using Accessible = std::unique_ptr<AtspiAccessible, Unref>;
using Component = std::unique_ptr<AtspiComponent, Unref>;
using Text = std::unique_ptr<gchar, FreeText>;

/// Takes the error a call may leave; its result already says that there is none.
class IgnoredError {
public:
    IgnoredError() = default;
    ~IgnoredError() { g_clear_error(&m_error); }
    IgnoredError(const IgnoredError&) = delete;
    IgnoredError& operator=(const IgnoredError&) = delete;

    operator GError**() // NOLINT(google-explicit-constructor): stands for the out parameter
    {
        g_clear_error(&m_error);
        return &m_error;
    }

private:
    GError* m_error = nullptr;
};

std::vector<Accessible> children(AtspiAccessible* parent)
{
    IgnoredError error;
    std::vector<Accessible> result;
    const int count = atspi_accessible_get_child_count(parent, error);
    for (int i = 0; i < count; ++i) {
        if (Accessible child{atspi_accessible_get_child_at_index(parent, i, error)}) {
            result.push_back(std::move(child));
        }
    }
    return result;
}

std::optional<PixelRect>
frameOf(AtspiAccessible* accessible, AtspiCoordType origin = ATSPI_COORD_TYPE_SCREEN)
{
    IgnoredError error;
    const Component component(atspi_accessible_get_component_iface(accessible));
    if (!component) {
        return {};
    }
    const std::unique_ptr<AtspiRect, FreeRect> rect(
        atspi_component_get_extents(component.get(), origin, error));
    if (!rect) {
        return {};
    }
    return PixelRect{rect->x, rect->y, rect->width, rect->height};
}

/// The common area, in pixels, less what each has alone: the best match of a window is the
/// greatest.
double agreement(const PixelRect& a, const PixelRect& b)
{
    const double width = std::min(a.x + a.width, b.x + b.width) - std::max(a.x, b.x);
    const double height = std::min(a.y + a.height, b.y + b.height) - std::max(a.y, b.y);
    const double common = std::max(0.0, width) * std::max(0.0, height);
    const auto area = [](const PixelRect& rect) { return 1.0 * rect.width * rect.height; };
    return 3 * common - area(a) - area(b);
}

Accessible applicationOf(std::uint32_t processID)
{
    IgnoredError error;
    const Accessible desktop(atspi_get_desktop(0));
    if (!desktop) {
        return nullptr;
    }
    for (Accessible& application : children(desktop.get())) {
        if (atspi_accessible_get_process_id(application.get(), error) == processID) {
            return std::move(application);
        }
    }
    return nullptr;
}

Accessible windowOf(AtspiAccessible* application, const PixelRect& window)
{
    Accessible best;
    double bestAgreement = 0;
    for (Accessible& candidate : children(application)) {
        const auto frame = frameOf(candidate.get());
        if (!frame) {
            continue;
        }
        const double candidateAgreement = agreement(*frame, window);
        if (!best || candidateAgreement > bestAgreement) {
            best = std::move(candidate);
            bestAgreement = candidateAgreement;
        }
    }
    return best;
}

/// Toolkits answer one level a call or the innermost element at once; both end here.
Accessible innermost(Accessible window, Vec2 pixel, AtspiCoordType origin = ATSPI_COORD_TYPE_SCREEN)
{
    IgnoredError error;
    for (int depth = 0; depth < kDeepestNesting; ++depth) {
        const Component component(atspi_accessible_get_component_iface(window.get()));
        if (!component) {
            break;
        }
        Accessible inner(atspi_component_get_accessible_at_point(
            component.get(),
            static_cast<gint>(pixel.x),
            static_cast<gint>(pixel.y),
            origin,
            error));
        if (!inner || inner == window) {
            break;
        }
        window = std::move(inner);
    }
    return window;
}

bool hasState(AtspiAccessible* accessible, AtspiStateType state)
{
    const std::unique_ptr<AtspiStateSet, Unref> states(atspi_accessible_get_state_set(accessible));
    return states && atspi_state_set_contains(states.get(), state) != FALSE;
}

std::optional<std::string> roleOf(AtspiAccessible* accessible)
{
    IgnoredError error;
    const Text name(atspi_accessible_get_role_name(accessible, error));
    if (!name) {
        return {};
    }
    std::string role = axRole(name.get());
    return role == "AXTextField" && hasState(accessible, ATSPI_STATE_MULTI_LINE) ? "AXTextArea"
                                                                                 : role;
}

/// An element without a name has an empty one here, so empty is absent.
std::optional<std::string> titleOf(AtspiAccessible* accessible)
{
    IgnoredError error;
    const Text name(atspi_accessible_get_name(accessible, error));
    return name && *name != '\0' ? std::optional<std::string>(name.get()) : std::nullopt;
}

/// libatspi ends the process when it is started without a bus, so the bus comes first. One that is
/// not there yet is asked for again at the next lookup.
bool isConnected()
{
    static bool isStarted = false;
    if (isStarted) {
        return true;
    }
    if (atspi_get_a11y_bus() == nullptr) {
        return false;
    }
    atspi_init(); // a result of 1 says that it was started before
    atspi_set_timeout(kCallTimeoutMs, kApplicationStartMs);
    isStarted = true;
    return true;
}

/// A window of its own that belongs to none the user has arranged.
bool isOpenPopup(AtspiAccessible* top)
{
    IgnoredError error;
    switch (atspi_accessible_get_role(top, error)) {
    case ATSPI_ROLE_FRAME:
    case ATSPI_ROLE_DIALOG:
    case ATSPI_ROLE_ALERT:
    case ATSPI_ROLE_FILE_CHOOSER:
    case ATSPI_ROLE_COLOR_CHOOSER:
        return false;
    default:
        return hasState(top, ATSPI_STATE_SHOWING);
    }
}

/// Nothing if there is none, more than one, or a popup of its application.
Accessible activeWindow()
{
    const Accessible desktop(atspi_get_desktop(0));
    Accessible found;
    for (const Accessible& application : children(desktop.get())) {
        std::vector<Accessible> windows = children(application.get());
        const auto active = std::ranges::find_if(windows, [](const Accessible& window) {
            return hasState(window.get(), ATSPI_STATE_ACTIVE);
        });
        if (active == windows.end()) {
            continue;
        }
        const bool hasPopup = std::ranges::any_of(windows, [&](const Accessible& window) {
            return window != *active && isOpenPopup(window.get());
        });
        if (found || hasPopup) {
            return nullptr;
        }
        found = std::move(*active);
    }
    return found;
}

std::optional<Element> elementOf(AtspiAccessible* accessible, AtspiCoordType origin)
{
    const auto frame = frameOf(accessible, origin);
    if (!frame) {
        return {};
    }
    return Element{
        .role = roleOf(accessible),
        .title = titleOf(accessible),
        .frame = {
            static_cast<double>(frame->x),
            static_cast<double>(frame->y),
            static_cast<double>(frame->width),
            static_cast<double>(frame->height)}};
}

} // namespace

std::optional<Element>
elementOfProcess(std::uint32_t processID, const PixelRect& window, Vec2 pixel)
{
    if (!isConnected()) {
        return {};
    }
    const Accessible application = applicationOf(processID);
    Accessible top = application ? windowOf(application.get(), window) : nullptr;
    if (!top) {
        return {};
    }
    const Accessible element = innermost(std::move(top), pixel);
    return elementOf(element.get(), ATSPI_COORD_TYPE_SCREEN);
}

std::optional<Element> elementOfActiveWindow(Vec2 size, Vec2 point)
{
    constexpr double kRounding = 1; // points
    if (!isConnected()) {
        return {};
    }
    Accessible window = activeWindow();
    const auto frame = window ? frameOf(window.get(), ATSPI_COORD_TYPE_WINDOW) : std::nullopt;
    if (!frame || std::abs(frame->width - size.x) > kRounding
        || std::abs(frame->height - size.y) > kRounding) {
        return {};
    }
    const Accessible element = innermost(std::move(window), point, ATSPI_COORD_TYPE_WINDOW);
    return elementOf(element.get(), ATSPI_COORD_TYPE_WINDOW);
}

} // namespace zento
