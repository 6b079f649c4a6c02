#include "ZentoRender/OfflineExporter.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/RemapCurve.h"
#include "ZentoMedia/FilmWriter.h"
#include "ZentoRender/BoundedQueue.h"
#include "ZentoRender/FrameCompositor.h"
#include "ZentoRender/FrameSequence.h"
#include "ZentoRender/PartFile.h"
#include "ZentoRender/SourceReader.h"

#include <pthread.h>

#include <cmath>
#include <future>
#include <limits>
#include <string>
#include <utility>

namespace zento {
namespace {

/// Frames that may wait between two stages: enough to even out slow frames, few enough to keep the
/// memory of a film of 4K small.
constexpr std::size_t kQueuedFrames = 4;

constexpr double kBitsPerPixel = 0.12;

using DecodedFrames = BoundedQueue<ScheduledFrame>;
using ComposedFrames = BoundedQueue<std::shared_ptr<const Picture>>;

void nameThread(const char* name)
{
    pthread_setname_np(pthread_self(), name); // at most 15 characters
}

/// Throws for a plan no film can be made of. Returns the number of frames.
int checkedFrameCount(
    const OutputSpec& output, const RemapCurve& curve, const std::filesystem::path& to)
{
    const auto refuse = [&](int code, const std::string& reason) {
        throw Error(code, to.string() + " cannot be made: " + reason);
    };
    if (output.width <= 0 || output.height <= 0 || output.width % 2 != 0 || output.height % 2 != 0)
        refuse(
            ErrorCode::kWriterNotStarted,
            "a film of " + std::to_string(output.width) + " × " + std::to_string(output.height)
                + " pixels needs two even sides");
    if (!std::isfinite(output.fps) || output.fps < 1)
        refuse(
            ErrorCode::kWriterNotStarted,
            std::to_string(output.fps) + " frames per second are too few");
    std::error_code ignored;
    if (std::filesystem::is_directory(to, ignored))
        refuse(ErrorCode::kWriterNotStarted, "it is a folder");
    const double frames = std::floor(curve.outputDuration() * output.fps);
    if (!(frames >= 1))
        refuse(ErrorCode::kFilmNotFinished, "the plan keeps no frame");
    if (frames > std::numeric_limits<int>::max())
        refuse(ErrorCode::kWriterNotStarted, "the plan is too long");
    return static_cast<int>(frames);
}

FilmFormat filmFormat(const OutputSpec& output)
{
    return {
        .width = output.width,
        .height = output.height,
        .fps = output.fps,
        .bitRate =
            static_cast<std::int64_t>(output.fps * output.width * output.height * kBitsPerPixel)};
}

void decode(
    SourceReader& reader,
    const RemapCurve& curve,
    double fps,
    int frames,
    const std::filesystem::path& movie,
    DecodedFrames& out)
{
    for (int i = 0; i < frames; ++i) {
        const double tOut = 1 / fps * i;
        const double sourceTime = curve.sourceTime(tOut);
        auto frame = reader.frame(sourceTime);
        if (!frame)
            throw Error(
                ErrorCode::kReadingFailed, movie.string() + " holds no picture that can be read");
        if (!out.push({.tOut = tOut, .sourceTime = sourceTime, .frame = *std::move(frame)}))
            return;
    }
    out.close();
}

void compose(
    FrameCompositor& compositor,
    FrameSequence& sequence,
    OfflineExporter::Repeats repeats,
    DecodedFrames& in,
    ComposedFrames& out)
{
    while (auto scheduled = in.pop()) {
        const FrameLayers layers = sequence.next(*std::move(scheduled));
        if (repeats == OfflineExporter::Repeats::Compose)
            compositor.forgetLast();
        if (!out.push(compositor.compose(layers)))
            return;
    }
    out.close();
}

void encode(
    ComposedFrames& in,
    FilmWriter& writer,
    int total,
    const OfflineExporter::ProgressCallback& onProgress)
{
    int written = 0;
    while (auto picture = in.pop()) {
        writer.append((*picture)->yuv(), *picture, written);
        ++written;
        if (onProgress)
            onProgress({.frame = written, .totalFrames = total});
    }
}

/// Runs a stage on a thread of its own. Its failure ends all stages and waits in the future.
template <typename Stage, typename Abandon>
std::future<void> startStage(const char* name, Stage stage, Abandon abandon)
{
    return std::async(std::launch::async, [name, stage, abandon] {
        nameThread(name);
        try {
            stage();
        } catch (...) {
            abandon();
            throw;
        }
    });
}

} // namespace

OfflineExporter::OfflineExporter(SessionBundle bundle, EditPlan plan, Repeats repeats)
    : m_bundle(std::move(bundle))
    , m_plan(std::move(plan))
    , m_repeats(repeats)
{
}

void OfflineExporter::exportFilm(
    const std::filesystem::path& to,
    const ProgressCallback& onProgress,
    const std::stop_token& stop) const
{
    const RemapCurve curve(m_plan.timeRemap);
    const int total = checkedFrameCount(m_plan.output, curve, to);
    PartFile part(to);
    try {
        writeFilm(part.path(), curve, total, onProgress, stop);
    } catch (const Error& error) {
        throw part.aboutTarget(error);
    }
    part.renameToTarget();
}

void OfflineExporter::writeFilm(
    const std::filesystem::path& to,
    const RemapCurve& curve,
    int total,
    const ProgressCallback& onProgress,
    const std::stop_token& stop) const
{
    const std::filesystem::path movie = m_bundle.screenMovieURL();
    SourceReader reader(movie);
    const VideoSize sourceSize = reader.naturalSize();
    FrameCompositor compositor(m_plan.output, m_plan.style, sourceSize);
    FrameSequence sequence(m_plan, m_bundle.events, curve, sourceSize);
    FilmWriter writer(to, filmFormat(m_plan.output));

    DecodedFrames decoded(kQueuedFrames);
    ComposedFrames composed(kQueuedFrames);
    const auto abandon = [&decoded, &composed] {
        decoded.abandon();
        composed.abandon();
    };
    const std::stop_callback wake(stop, abandon);
    auto decoding = startStage(
        "export.decode",
        [&] { decode(reader, curve, m_plan.output.fps, total, movie, decoded); },
        abandon);
    auto composing = startStage(
        "export.compose",
        [&] { compose(compositor, sequence, m_repeats, decoded, composed); },
        abandon);
    try {
        encode(composed, writer, total, onProgress);
    } catch (...) {
        abandon();
        throw; // the futures wait for their threads
    }
    decoding.get();
    composing.get();
    if (stop.stop_requested())
        throw Error(ErrorCode::kCancelled, to.string() + " was cancelled");
    writer.finish();
}

} // namespace zento
