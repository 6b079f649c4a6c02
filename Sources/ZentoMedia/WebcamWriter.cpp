#include "ZentoMedia/WebcamWriter.h"

#include "ZentoCore/Error.h"
#include "ZentoMedia/Ffmpeg/BorrowedFrame.h"
#include "ZentoMedia/Ffmpeg/CameraFrames.h"
#include "ZentoMedia/Ffmpeg/MovieEncoder.h"
#include "ZentoMedia/Ffmpeg/PictureConverter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace zento {

using namespace ffmpeg;

namespace {

constexpr int kTimescale = 60000;
constexpr int kLastFrameTicks = 2000;

CodecHandle openWebcamEncoder(const std::filesystem::path& path)
{
    auto codec = makePictureEncoder(
        "libx264",
        path,
        WebcamWriter::kSize.width,
        WebcamWriter::kSize.height,
        {1, kTimescale},
        ErrorCode::kCameraNotWritten);
    codec->pix_fmt = AV_PIX_FMT_YUV420P;
    codec->framerate = {30, 1};
    codec->gop_size = 30;    // an edit looks at single pictures: few are decoded to get at one
    codec->thread_count = 1; // in the caller's thread
    Options options;
    options.set("preset", "superfast");
    options.set(
        "tune", "zerolatency"); // nothing is held back that a dying process would take along
    options.set("profile", "high");
    options.set("crf", 20);
    openEncoder(*codec, path, options, ErrorCode::kCameraNotWritten);
    return codec;
}

} // namespace

struct WebcamWriter::State {
    explicit State(const std::filesystem::path& target)
        : path(target)
        , movie(
              target,
              MovieForm::QuickTime,
              openWebcamEncoder(target),
              kLastFrameTicks,
              ErrorCode::kCameraNotWritten)
    {
    }

    std::filesystem::path path;
    CameraFrames frames;
    PictureConverter converter{kSize};
    MovieEncoder movie;
    std::int64_t lastTicks = -1;
};

WebcamWriter::WebcamWriter(const std::filesystem::path& path)
    : m_state(std::make_unique<State>(path))
{
}

WebcamWriter::~WebcamWriter() = default;

bool WebcamWriter::append(const CameraPicture& picture, double time)
{
    FrameHandle camera = m_state->frames.frame(picture);
    if (!camera)
        return false;
    cropToShape(*camera, kSize.width, kSize.height);
    const auto scaled = m_state->converter.convert(std::move(camera), time, 0);
    if (!scaled || scaled->bitDepth() != 8)
        return false;
    const auto ticks = static_cast<std::int64_t>(std::llround(std::max(time, 0.0) * kTimescale));
    m_state->lastTicks = std::max(ticks, m_state->lastTicks + 1);
    const auto frame =
        borrowedFrame(scaled->planes8(), AV_PIX_FMT_YUV420P, scaled->owner(), m_state->lastTicks);
    m_state->movie.encode(*frame, ErrorCode::kCameraNotWritten);
    return true;
}

void WebcamWriter::finish()
{
    m_state->movie.drain(ErrorCode::kCameraNotWritten);
    if (m_state->movie.framesWritten() == 0)
        throw Error(
            ErrorCode::kCameraNotWritten,
            "Could not write " + m_state->path.string() + ": the camera showed no picture");
    m_state->movie.close(ErrorCode::kCameraNotWritten);
}

} // namespace zento
