#pragma once

#include "ZentoCapture/CaptureTarget.h"
#include "ZentoCapture/ElementLookup.h"
#include "ZentoCapture/FrameSource.h"
#include "ZentoCapture/InputSource.h"
#include "ZentoCapture/ScrollWheel.h"
#include "ZentoCore/Geometry.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

namespace zento {

enum class DisplayRole : unsigned char { Main, Further };

struct DisplayInfo {
    std::uint32_t id = 0; // the same for as long as the display is connected
    std::string name;     // as the system calls its connector: "DP-1"
    Rect bounds;          // global points
    double scale = 1;     // pixels per point
    DisplayRole role = DisplayRole::Further;
};

/// A window as its user sees it: with the title bar and borders its desktop gives it, without the
/// invisible margin some applications draw their shadow into.
struct WindowInfo {
    Rect frame; // global points
    std::optional<std::string> application;
};

/// The displays of a user's session and the sources a recording draws from.
///
/// Threading: `displays` and the factories may be called from any thread, one at a time. What the
/// factories make is independent of this object.
class Desktop {
public:
    virtual ~Desktop() = default;

    /// Whether what is recorded is named by the program, or chosen by the user in a dialog of the
    /// desktop's, which then knows no displays before and only the chosen one after.
    enum class Choice : unsigned char { ByProgram, ByUser };
    virtual Choice choice() const { return Choice::ByProgram; }

    /// Lets the user choose, where that is how it goes; to be called before anything is asked about
    /// a target that is to be recorded or shot. Blocks until the user has answered. Throws `Error`:
    /// kPortalDenied when the answer is no, kPortalSilent, kPortalFailed, and kCancelled once
    /// `stop` is requested.
    virtual void choose(const CaptureTarget& /*target*/, const std::stop_token& /*stop*/) {}

    /// The user is asked about such a target again, though the desktop would remember.
    virtual void forgetChoice(const CaptureTarget& /*target*/) {}

    /// What a recording here goes without and how to change that, in a sentence for the user;
    /// nothing where nothing is missing. May be asked after `choose`.
    virtual std::optional<std::string> shortcoming() { return {}; }

    /// A picture of the whole desktop that the desktop itself takes: a file for the caller to
    /// remove. Nothing where it takes none. Throws `Error` as `choose`.
    virtual std::optional<std::filesystem::path> takePicture(const std::stop_token& /*stop*/)
    {
        return {};
    }

    /// From left to right, then from top to bottom; none when nothing is connected. Throws `Error`.
    virtual std::vector<DisplayInfo> displays() = 0;

    /// The window of that number, if it is on the screen: not minimised, not closed. On X11 the
    /// number is the XID of the application's own window; that of the window manager's frame around
    /// it will do.
    virtual std::optional<WindowInfo> window(std::uint32_t windowID) = 0;

    /// Where a window is now; nothing while it is not on the screen. Global points.
    using WindowFrameQuery = std::function<std::optional<Rect>()>;

    /// A way to ask that again and again, for one further thread.
    virtual WindowFrameQuery windowFrameQuery(std::uint32_t windowID) = 0;

    /// In global points; nothing when it cannot be read.
    virtual std::optional<Vec2> pointerPosition() = 0;

    /// The name of the application whose window is in front, windows of this process apart.
    virtual std::optional<std::string> frontmostApplication() = 0;

    /// Throws `Error` when the display is gone or a part of the request lies outside the desktop,
    /// and the code 24 when the window is gone.
    virtual std::unique_ptr<FrameSource> frameSource(const FrameRequest& request) = 0;

    virtual std::unique_ptr<InputSource> inputSource() = 0;
    virtual std::unique_ptr<ElementLookup> elementLookup() = 0;

    /// A hand on the user's wheel. Where the user chooses, they are asked for it together with the
    /// monitor, and areas and displays are that monitor's for the rest of this object's life.
    /// Throws `Error` as `choose`, and kNoInput where no program may turn the wheel.
    virtual std::unique_ptr<ScrollWheel> scrollWheel(const std::stop_token& stop);
};

/// The desktop of this session. Throws `Error` with the code 20 when there is none.
/// `displayName` names an X display, ":1"; absent, the environment's `DISPLAY`.
std::unique_ptr<Desktop> openDesktop(const std::optional<std::string>& displayName = {});

/// The first display that holds the point, else the main one, else the first; nothing of nothing.
/// Global points.
std::optional<std::uint32_t> displayID(Vec2 containing, std::span<const DisplayInfo> displays);

/// The same for where the pointer is, or for (0, 0) when that cannot be read.
std::optional<std::uint32_t>
displayIDUnderCursor(Desktop& desktop, std::span<const DisplayInfo> displays);

} // namespace zento
