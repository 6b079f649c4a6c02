#include "ZentoCapture/ScreenshotTool.h"

#include "ZentoCapture/CaptureLayout.h"
#include "ZentoCore/Error.h"
#include "ZentoImaging/ImageFile.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <system_error>
#include <utility>
#include <variant>
#include <vector>

namespace zento::ScreenshotTool {

namespace {

using namespace std::chrono_literals;

constexpr auto kLongestWait = 3s;
/// Where nothing blends windows, what is covered is not there before its program has drawn it.
constexpr auto kWindowSettles = 150ms;

Canvas opaque(const BgraView& picture)
{
    Canvas canvas(picture.width, picture.height);
    const Plane<std::uint32_t> pixels = canvas.pixels();
    for (int y = 0; y < picture.height; ++y) {
        std::uint32_t* const row = pixels.row(y);
        std::memcpy(
            row,
            picture.data + y * picture.stride,
            static_cast<std::size_t>(picture.width) * sizeof(std::uint32_t));
        std::for_each(row, row + picture.width, [](std::uint32_t& p) { p |= 0xFF000000U; });
    }
    return canvas;
}

/// The last picture that the capture's thread hands over.
class Arrival {
public:
    FrameVerdict take(const CapturedFrame& frame)
    {
        if (frame.status == FrameStatus::Complete) {
            Canvas image = opaque(frame.picture);
            const std::lock_guard lock(m_mutex);
            m_image = std::make_shared<const Canvas>(std::move(image));
            m_changed.notify_all();
        }
        return FrameVerdict::Taken;
    }

    void end(const std::optional<Error>& error)
    {
        const std::lock_guard lock(m_mutex);
        m_hasEnded = true;
        m_error = error;
        m_changed.notify_all();
    }

    std::shared_ptr<const Canvas>
    await(const std::stop_token& stop, std::chrono::milliseconds settles)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, stop, kLongestWait, [this] { return m_image || m_hasEnded; });
        if (m_image && !m_hasEnded) {
            m_changed.wait_for(lock, stop, settles, [this] { return m_hasEnded; });
        }
        if (stop.stop_requested()) {
            throw Error(ErrorCode::kCancelled, "the screenshot was given up");
        }
        if (!m_image) {
            throw m_error ? *m_error
                          : Error(ErrorCode::kNoShot, "what was to be shot shows nothing");
        }
        return m_image;
    }

private:
    std::mutex m_mutex;
    std::condition_variable_any m_changed;
    std::shared_ptr<const Canvas> m_image;
    std::optional<Error> m_error;
    bool m_hasEnded = false;
};

bool isGone(const CaptureTarget& target, const DisplayInfo& display)
{
    const auto* const screen = std::get_if<Target::Screen>(&target);
    return screen != nullptr && screen->displayID != display.id;
}

/// The desktop's own picture of all there is, where it takes one. It does not say its scale.
std::optional<Shot> desktopPicture(Desktop& desktop, const std::stop_token& stop)
{
    const auto file = desktop.takePicture(stop);
    if (!file) {
        return {};
    }
    auto image = std::make_shared<const Canvas>(loadImage(*file));
    std::error_code ignored;
    std::filesystem::remove(*file, ignored); // it was made for us
    return Shot{.image = std::move(image), .scale = 1, .tellsScale = false};
}

} // namespace

Shot capture(Desktop& desktop, const CaptureTarget& target, const std::stop_token& stop)
{
    if (std::holds_alternative<Target::Display>(target)) {
        if (auto shot = desktopPicture(desktop, stop)) {
            return *std::move(shot);
        }
    }
    desktop.choose(target, stop);
    return captureChosen(desktop, target, stop);
}

Shot captureChosen(Desktop& desktop, const CaptureTarget& target, const std::stop_token& stop)
{
    const CaptureLayout layout = captureLayout(target, desktop, {});
    if (desktop.choice() == Desktop::Choice::ByProgram && isGone(target, layout.display)) {
        throw Error(ErrorCode::kShotDisplayGone, "the display is no longer connected");
    }
    if (layout.request.pixelWidth < 2 || layout.request.pixelHeight < 2) {
        throw Error(ErrorCode::kNoShot, "what was to be shot is smaller than two pixels");
    }
    Arrival arrival;
    const auto source = desktop.frameSource(layout.request);
    source->start(
        [&arrival](const CapturedFrame& frame) { return arrival.take(frame); },
        [&arrival](const std::optional<Error>& error) { arrival.end(error); });
    struct Stopping { // before `arrival` goes
        FrameSource& source;
        ~Stopping() { source.stop(); }
    };
    const Stopping stopping{*source};
    return {
        .image = arrival.await(stop, layout.window ? kWindowSettles : 0ms),
        .scale = std::max(layout.display.scale, 1.0)};
}

} // namespace zento::ScreenshotTool
