#include "Zento/Demo/Presenter.h"

#include "ZentoCore/Error.h"
#include "ZentoImaging/Convert.h"
#include "ZentoImaging/ImageFile.h"
#include "ZentoImaging/Scale.h"
#include "ZentoMedia/FilmWriter.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace zento {

std::span<const char> presenterPhotograph();

namespace {

constexpr int kWidth = 480; // pixels
constexpr int kHeight = 360;
constexpr double kFps = 30;
constexpr std::int64_t kBitRate = 4'000'000;

double wave(double t, double period)
{
    return std::sin(2 * std::numbers::pi * t / period);
}

/// Where the photograph stands at `t`: it covers the picture at all times.
PicturePlacement
pose(const Picture& photograph, double t, std::span<const TranscriptSegment> speech)
{
    const double cover = std::max(
        kWidth / static_cast<double>(photograph.width()),
        kHeight / static_cast<double>(photograph.height()));
    const double scale = cover * (1.08 + 0.01 * wave(t, 7.1));
    const bool speaks = std::ranges::any_of(
        speech, [t](const TranscriptSegment& span) { return t >= span.start && t <= span.end; });
    const double nod = speaks ? 3 * std::abs(wave(t, 1.1)) : 0;
    const Vec2 room = {photograph.width() * scale - kWidth, photograph.height() * scale - kHeight};
    const double left = std::clamp(room.x * 0.5 + 6 * wave(t, 5.3), 0.0, room.x);
    const double top = std::clamp(room.y * 0.2 + 2 * wave(t, 4.1) - nod, 0.0, room.y);
    return {.origin = {-left, -top}, .scaleX = scale, .scaleY = scale};
}

} // namespace

void writePresenter(
    const std::filesystem::path& movie,
    double seconds,
    std::span<const TranscriptSegment> speech,
    const std::stop_token& stop)
{
    const Picture source = toPicture(decodeImage(presenterPhotograph()), Layout::Yuv420);
    FilmWriter writer(
        movie, {.width = kWidth, .height = kHeight, .fps = kFps, .bitRate = kBitRate});
    PictureScaler scaler;
    Picture frame(kWidth, kHeight, Layout::Yuv420);
    const auto frames = std::max(1, static_cast<int>(seconds * kFps));
    for (int i = 0; i < frames; ++i) {
        if (stop.stop_requested())
            throw Error(ErrorCode::kDemoStopped, "The demo was stopped.");
        const PicturePlacement placement = pose(source, i / kFps, speech);
        drawScaled(scaler, source.view(), placement, frame.view(), {0, 0, kWidth, kHeight});
        writer.append(std::as_const(frame).yuv(), i);
    }
    writer.finish();
}

} // namespace zento
