#pragma once

#include "ZentoCapture/Backends/InputDevices.h"
#include "ZentoCapture/Backends/PortalLookup.h"
#include "ZentoCapture/Backends/PortalScreen.h"
#include "ZentoCapture/Backends/RestoreTokens.h"
#include "ZentoCapture/Desktop.h"

#include <functional>
#include <memory>

namespace zento {

/// A desktop that shows nothing but what its user has chosen in its own dialog: Wayland, through
/// the ScreenCast portal.
///
/// Its one display is the monitor or the window that was chosen, and its points are those of the
/// desktop. There are no windows to be named: a window is chosen, too.
class PortalDesktop final : public Desktop {
public:
    struct Parts {
        RestoreTokens tokens;
        PortalPatience patience;
        std::function<std::unique_ptr<InputDevices>()> openDevices = openInputDevices;
    };

    explicit PortalDesktop(Parts parts);

    Choice choice() const override { return Choice::ByUser; }
    void choose(const CaptureTarget& target, const std::stop_token& stop) override;
    void forgetChoice(const CaptureTarget& target) override;
    std::optional<std::string> shortcoming() override;
    std::optional<std::filesystem::path> takePicture(const std::stop_token& stop) override;

    std::vector<DisplayInfo> displays() override;
    std::optional<WindowInfo> window(std::uint32_t windowID) override;
    WindowFrameQuery windowFrameQuery(std::uint32_t windowID) override;
    std::optional<Vec2> pointerPosition() override;
    std::optional<std::string> frontmostApplication() override { return {}; }
    std::unique_ptr<FrameSource> frameSource(const FrameRequest& request) override;
    std::unique_ptr<InputSource> inputSource() override;
    std::unique_ptr<ElementLookup> elementLookup() override;
    std::unique_ptr<ScrollWheel> scrollWheel(const std::stop_token& stop) override;

private:
    void show(const ScreenChoice& choice, const std::stop_token& stop);

    Parts m_parts;
    std::shared_ptr<PointerTrack> m_pointer;
    std::shared_ptr<PortalScreen> m_screen; // once chosen
    std::shared_ptr<PortalLookup::Screen> m_looked = std::make_shared<PortalLookup::Screen>();
    bool m_readsDevices = false;
    bool m_hasHand = false; // on the pointer of what was chosen
};

} // namespace zento
