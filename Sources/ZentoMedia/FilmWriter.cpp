#include "ZentoMedia/FilmWriter.h"

#include "ZentoCore/Error.h"
#include "ZentoMedia/Ffmpeg/BorrowedFrame.h"
#include "ZentoMedia/Ffmpeg/MovieEncoder.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

namespace zento {

using namespace ffmpeg;

namespace {

Error refused(int code, const std::filesystem::path& path, const std::string& reason)
{
    return {code, "Could not write " + path.string() + ": " + reason};
}

void checkFormat(const std::filesystem::path& path, const FilmFormat& format)
{
    constexpr double kTooFast = 2147483648.0;
    const bool hasRate = format.fps >= 1 && format.fps < kTooFast;
    if (!hasRate)
        throw refused(
            ErrorCode::kWriterNotStarted,
            path,
            "a film cannot have " + std::to_string(format.fps) + " frames per second");
    if (format.bitRate < 1000)
        throw refused(
            ErrorCode::kWriterNotStarted,
            path,
            "a film cannot have " + std::to_string(format.bitRate) + " bits per second");
}

CodecHandle openFilmEncoder(const std::filesystem::path& path, const FilmFormat& format)
{
    checkFormat(path, format);
    const int timescale = static_cast<int>(format.fps);
    auto codec = makePictureEncoder(
        "libx264", path, format.width, format.height, {1, timescale}, ErrorCode::kWriterNotStarted);
    codec->pix_fmt = AV_PIX_FMT_YUV420P;
    codec->framerate = {timescale, 1};
    codec->bit_rate = format.bitRate;
    codec->thread_count = format.encoderThreads;
    Options options;
    options.set("preset", format.preset == FilmPreset::Draft ? "superfast" : "veryfast");
    options.set("profile", "high");
    openEncoder(*codec, path, options, ErrorCode::kWriterNotStarted);
    return codec;
}

std::size_t sampleCount(const Plane<const std::uint8_t>& plane)
{
    return static_cast<std::size_t>(plane.width) * static_cast<std::size_t>(plane.height);
}

/// Copies a plane to `target`, rows close together, and moves `target` behind it.
Plane<const std::uint8_t> copied(const Plane<const std::uint8_t>& plane, std::uint8_t*& target)
{
    const Plane<const std::uint8_t> copy{target, plane.width, plane.height, plane.width};
    for (int y = 0; y < plane.height; ++y)
        target = std::copy_n(plane.row(y), plane.width, target);
    return copy;
}

} // namespace

struct FilmWriter::State {
    std::filesystem::path path;
    int width;
    int height;
    MovieEncoder movie;
    std::int64_t lastIndex = -1;

    State(const std::filesystem::path& target, const FilmFormat& format)
        : path(target)
        , width(format.width)
        , height(format.height)
        , movie(
              target,
              MovieForm::Mp4,
              openFilmEncoder(target, format),
              1,
              ErrorCode::kWriterNotStarted)
    {
    }

    void check(const YuvPlanes<const std::uint8_t>& picture, std::int64_t index) const;
};

FilmWriter::FilmWriter(const std::filesystem::path& path, const FilmFormat& format)
    : m_state(std::make_unique<State>(path, format))
{
}

FilmWriter::~FilmWriter() = default;
FilmWriter::FilmWriter(FilmWriter&&) noexcept = default;
FilmWriter& FilmWriter::operator=(FilmWriter&&) noexcept = default;

void FilmWriter::State::check(
    const YuvPlanes<const std::uint8_t>& picture, std::int64_t index) const
{
    const bool fits = picture.y.width == width && picture.y.height == height
                      && picture.cb.width == width / 2 && picture.cb.height == height / 2
                      && picture.cr.width == width / 2 && picture.cr.height == height / 2;
    if (!fits)
        throw refused(ErrorCode::kAppendRefused, path, "a picture has another size than the film");
    if (index <= lastIndex || index > INT32_MAX)
        throw refused(
            ErrorCode::kAppendRefused, path, "frame " + std::to_string(index) + " is out of order");
}

void FilmWriter::append(YuvPlanes<const std::uint8_t> picture, std::int64_t index)
{
    m_state->check(picture, index);
    const auto samples = std::make_shared_for_overwrite<std::uint8_t[]>(
        sampleCount(picture.y) + sampleCount(picture.cb) + sampleCount(picture.cr));
    std::uint8_t* target = samples.get();
    YuvPlanes<const std::uint8_t> copy;
    copy.y = copied(picture.y, target);
    copy.cb = copied(picture.cb, target);
    copy.cr = copied(picture.cr, target);
    append(copy, samples, index);
}

void FilmWriter::append(
    YuvPlanes<const std::uint8_t> picture, std::shared_ptr<const void> owner, std::int64_t index)
{
    m_state->check(picture, index);
    const auto frame = borrowedFrame(picture, AV_PIX_FMT_YUV420P, std::move(owner), index);
    m_state->movie.encode(*frame, ErrorCode::kAppendRefused);
    m_state->lastIndex = index;
}

void FilmWriter::finish()
{
    m_state->movie.drain(ErrorCode::kFilmNotFinished);
    if (m_state->movie.framesWritten() == 0)
        throw refused(ErrorCode::kFilmNotFinished, m_state->path, "the film has no frames");
    m_state->movie.close(ErrorCode::kFilmNotFinished);
    m_state.reset();
}

void FilmWriter::cancel() noexcept
{
    m_state.reset();
}

} // namespace zento
