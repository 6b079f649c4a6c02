#include "Sight.h"

#include "Zento/Demo/AccessibilityBus.h"
#include "Zento/Demo/PrivateDesktop.h"
#include "Zento/Demo/Programs.h"
#include "Zento/Demo/Waiting.h"
#include "Zento/Demo/XConnection.h"
#include "ZentoCore/Error.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdint>
#include <span>

namespace zento::bench {

namespace {

constexpr double kOpenSeconds = 60; // a browser's first start beside builds
constexpr int kDeepest = 40;

/// The objects of all windows, parents first.
void walk(
    const AccessibilityBus& bus,
    const AccessibleObject& object,
    std::optional<std::size_t> parent,
    int depth,
    std::vector<Element>& elements)
{
    constexpr std::size_t kMost = 3000;
    for (const AccessibleObject& child : bus.children(object)) {
        if (elements.size() >= kMost || depth > kDeepest)
            return;
        const bool isWindow = depth == 1;
        if (depth > 0 && !isWindow && !bus.has(child, AccessibleState::Showing))
            continue;
        auto above = parent;
        if (const auto frame = depth == 0 ? std::nullopt : bus.frame(child)) {
            elements.push_back({*frame, bus.role(child), bus.name(child), parent});
            above = elements.size() - 1;
        }
        walk(bus, child, above, depth + 1, elements);
    }
}

Canvas pictureOf(const XConnection& connection)
{
    const RootWindow& root = connection.root();
    const auto reply = own(xcb_get_image_reply(
        connection.get(),
        xcb_get_image(
            connection.get(),
            XCB_IMAGE_FORMAT_Z_PIXMAP,
            root.id,
            0,
            0,
            root.width,
            root.height,
            ~0U),
        nullptr));
    if (!reply)
        throw Error(ErrorCode::kDesktopFailed, "The display cannot be read.");
    Canvas canvas(root.width, root.height);
    const Plane<std::uint32_t> pixels = canvas.pixels();
    const auto* from = reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(reply.get()));
    constexpr std::uint32_t kOpaque = 0xFF000000;
    for (int y = 0; y < pixels.height; ++y)
        for (int x = 0; x < pixels.width; ++x)
            pixels.data[static_cast<std::ptrdiff_t>(y) * pixels.stride + x] = *from++ | kOpaque;
    return canvas;
}

} // namespace

std::optional<Sight> look(const Program& program)
{
    const auto executable = findProgram(program.command.front(), programSearchPath());
    if (!executable)
        return std::nullopt;
    PrivateDesktop desktop;
    std::vector<std::string> command = {
        "/usr/bin/env",
        "QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1",
        "ACCESSIBILITY_ENABLED=1", // Chromium's
        executable->string()};
    command.insert(command.end(), program.command.begin() + 1, program.command.end());
    if (!program.opens.empty()) {
        const auto file = desktop.home().writeFile(program.opens, program.contents).string();
        for (std::string& argument : command)
            if (const auto at = argument.find("~/"); at != std::string::npos)
                argument.replace(at, std::string::npos, file);
    }
    // Not every program asks for the bus by itself.
    const auto ask = requireProgram("dbus-send", "dbus", programSearchPath());
    desktop.start(
        {ask,
         "--session",
         "--print-reply",
         "--dest=org.a11y.Bus",
         "/org/a11y/bus",
         "org.a11y.Bus.GetAddress"});
    const AccessibilityBus bus(desktop.awaitAccessibilityBus({}));
    desktop.start(command);
    std::vector<Element> elements;
    int unchanged = 0;
    // Measured: a window's objects are complete a second after they are the same twice.
    constexpr int kEnough = 4;
    const auto isComplete = [&] {
        std::vector<Element> now;
        walk(bus, AccessibilityBus::desktop(), std::nullopt, 0, now);
        unchanged = now.size() > 5 && now.size() == elements.size() ? unchanged + 1 : 0;
        elements = std::move(now);
        sleepFor(0.5, {});
        return unchanged >= kEnough;
    };
    waitUntil(isComplete, kOpenSeconds, program.name + " did not show its window", {});
    return Sight{pictureOf(XConnection(desktop.display())), std::move(elements)};
}

} // namespace zento::bench
