#include "ZentoRender/GIFExporter.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/PartFile.h"
#include "ZentoImaging/Convert.h"
#include "ZentoImaging/GifWriter.h"
#include "ZentoMedia/VideoDecoder.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <system_error>

namespace zento::GIFExporter {
namespace {

/// A frame's time and a tick's are rounded apart: without this, a frame right on its tick would
/// now and then count as too early.
constexpr double kRoundingAllowance = 1e-6; // seconds

constexpr int kDecodingThreads = 2;
constexpr int kLargestSide = 65535; // of a GIF, pixels

VideoDecoder openFilm(const std::filesystem::path& video)
{
    try {
        return VideoDecoder(video, kDecodingThreads);
    } catch (const Error& error) {
        if (error.domain() != "Zento")
            throw;
        const int code = error.code() == ErrorCode::kNoVideoTrack ? ErrorCode::kGifNoVideoTrack
                                                                  : ErrorCode::kGifNotRead;
        throw Error(code, error.what());
    }
}

/// Never larger than the film.
VideoSize sizeOf(const VideoDecoder& film, double maxWidth)
{
    const VideoSize natural = film.naturalSize();
    const double scale = std::min(maxWidth / natural.width, 1.0);
    const auto scaled = [scale](int side) {
        return std::max(1, static_cast<int>(std::lround(side * scale)));
    };
    return {scaled(natural.width), scaled(natural.height)};
}

/// When a tick begins, in hundredths of a second: the nearest one, so that the error never adds up.
int hundredths(int tick, double fps)
{
    return static_cast<int>(std::lround(100 * (tick / fps)));
}

void check(const std::filesystem::path& to, double fps, double maxWidth)
{
    const auto refuse = [&](const std::string& reason) {
        throw Error(ErrorCode::kGifNotStarted, to.string() + " cannot be made: " + reason);
    };
    if (!(fps > 0) || fps > 100)
        refuse(std::to_string(fps) + " frames per second are not possible in a GIF");
    if (!(maxWidth >= 1))
        refuse("a width of " + std::to_string(maxWidth) + " pixels is too small");
    std::error_code ignored;
    if (std::filesystem::is_directory(to, ignored))
        refuse("it is a folder");
}

Picture gifPicture(const VideoFrame& frame, VideoSize size)
{
    return frame.bitDepth() == 8 ? toRgb(frame.planes8(), size.width, size.height)
                                 : toRgb(frame.planes10(), size.width, size.height);
}

/// Gives the frames that are due to `show`, with what each is shown for.
template <typename Show>
void sample(
    VideoDecoder& film,
    double fps,
    const ProgressCallback& onProgress,
    const std::stop_token& stop,
    Show show)
{
    const double duration = film.declaredDuration();
    int ticks = 0;
    while (auto frame = film.next()) {
        if (stop.stop_requested())
            return;
        if (frame->time() + kRoundingAllowance < ticks / fps)
            continue; // too early
        show(*frame, hundredths(ticks + 1, fps) - hundredths(ticks, fps));
        ++ticks;
        if (onProgress && duration > 0)
            onProgress(std::clamp(frame->time() / duration, 0.0, 1.0));
    }
}

} // namespace

void exportGif(
    const std::filesystem::path& video,
    const std::filesystem::path& to,
    double fps,
    double maxWidth,
    const ProgressCallback& onProgress,
    const std::stop_token& stop)
{
    check(to, fps, maxWidth);
    VideoDecoder film = openFilm(video);
    const VideoSize size = sizeOf(film, maxWidth);
    if (std::max(size.width, size.height) > kLargestSide)
        throw Error(
            ErrorCode::kGifNotStarted,
            to.string() + " cannot be made: its film is too large for a GIF");
    PartFile part(to);
    std::optional<GifWriter> writer; // made with the first frame: without one, nothing is created
    try {
        sample(film, fps, onProgress, stop, [&](const VideoFrame& frame, int delay) {
            const Picture picture = gifPicture(frame, size);
            if (writer)
                writer->append(picture.view(), delay);
            else
                writer.emplace(part.path(), picture.view(), delay);
        });
        if (stop.stop_requested())
            throw Error(ErrorCode::kCancelled, to.string() + " was cancelled");
        if (!writer)
            throw Error(ErrorCode::kGifNoFrames, video.string() + ": no frames to export");
        writer->finish();
    } catch (const Error& error) {
        throw renamed(error, part.path(), to);
    }
    part.renameToTarget();
}

} // namespace zento::GIFExporter
