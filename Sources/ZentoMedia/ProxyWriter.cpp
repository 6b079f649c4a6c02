#include "ZentoMedia/ProxyWriter.h"

#include "ZentoCore/Error.h"
#include "ZentoMedia/Ffmpeg/BorrowedFrame.h"
#include "ZentoMedia/Ffmpeg/MovieEncoder.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zento {

using namespace ffmpeg;

namespace {

constexpr int kTimescale = 60000;
constexpr int kLastFrameTicks = 1000;
constexpr std::int64_t kBitRate = 8'000'000;

CodecHandle openProxyEncoder(const std::filesystem::path& path, int width, int height)
{
    auto codec = makePictureEncoder(
        "libx264", path, width, height, {1, kTimescale}, ErrorCode::kProxyNotStarted);
    codec->pix_fmt = AV_PIX_FMT_YUV420P;
    codec->framerate = {60, 1};
    codec->bit_rate = kBitRate;
    codec->gop_size = 1;
    codec->max_b_frames = 0;
    codec->thread_count = 1;
    Options options;
    options.set("preset", "ultrafast");
    openEncoder(*codec, path, options, ErrorCode::kProxyNotStarted);
    return codec;
}

} // namespace

struct ProxyWriter::State {
    std::filesystem::path path;
    MovieEncoder movie;
    std::int64_t lastTicks = -1;
};

ProxyWriter::ProxyWriter(const std::filesystem::path& path, int width, int height)
    : m_state(new State{
          .path = path,
          .movie = MovieEncoder(
              path,
              MovieForm::Mp4Cache,
              openProxyEncoder(path, width, height),
              kLastFrameTicks,
              ErrorCode::kProxyNotStarted)})
{
}

ProxyWriter::~ProxyWriter() = default;
ProxyWriter::ProxyWriter(ProxyWriter&&) noexcept = default;
ProxyWriter& ProxyWriter::operator=(ProxyWriter&&) noexcept = default;

void ProxyWriter::append(
    YuvPlanes<const std::uint8_t> picture, std::shared_ptr<const void> owner, double time)
{
    const auto ticks = std::max(
        static_cast<std::int64_t>(std::llround(time * kTimescale)), m_state->lastTicks + 1);
    const auto frame = borrowedFrame(picture, AV_PIX_FMT_YUV420P, std::move(owner), ticks);
    m_state->movie.encode(*frame, ErrorCode::kProxyNotFinished);
    m_state->lastTicks = ticks;
}

void ProxyWriter::finish()
{
    m_state->movie.drain(ErrorCode::kProxyNotFinished);
    if (m_state->movie.framesWritten() == 0)
        throw Error(
            ErrorCode::kProxyNotFinished,
            "Could not write " + m_state->path.string() + ": the recording has no pictures");
    m_state->movie.close(ErrorCode::kProxyNotFinished);
}

} // namespace zento
