#pragma once

#include "ZentoCapture/Backends/X11Connection.h"
#include "ZentoCapture/Desktop.h"

#include <string>

namespace zento {

/// A desktop of the X Window System.
class X11Desktop final : public Desktop {
public:
    /// Throws `Error` with the code 20.
    explicit X11Desktop(std::string displayName);

    std::vector<DisplayInfo> displays() override;
    std::optional<WindowInfo> window(std::uint32_t windowID) override;
    WindowFrameQuery windowFrameQuery(std::uint32_t windowID) override;
    std::optional<Vec2> pointerPosition() override;
    std::optional<std::string> frontmostApplication() override;
    std::unique_ptr<FrameSource> frameSource(const FrameRequest& request) override;
    std::unique_ptr<InputSource> inputSource() override;
    std::unique_ptr<ElementLookup> elementLookup() override;
    std::unique_ptr<ScrollWheel> scrollWheel(const std::stop_token& stop) override;

private:
    std::string m_displayName;
    X11Connection m_connection;
};

} // namespace zento
