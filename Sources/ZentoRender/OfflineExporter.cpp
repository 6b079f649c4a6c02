#include "ZentoRender/OfflineExporter.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/PartFile.h"
#include "ZentoCore/RemapCurve.h"
#include "ZentoMedia/FilmWriter.h"
#include "ZentoRender/AudioMixer.h"
#include "ZentoRender/BoundedQueue.h"
#include "ZentoRender/FilmFrames.h"
#include "ZentoRender/FilmSound.h"
#include "ZentoRender/FrameCompositor.h"
#include "ZentoRender/FrameSequence.h"
#include "ZentoRender/SourceReader.h"
#include "ZentoRender/WebcamSource.h"

#include <pthread.h>

#include <cmath>
#include <future>
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

/// Throws for a plan no film can be made of.
FilmFrames
checkedFrames(const EditPlan& plan, const RemapCurve& curve, const std::filesystem::path& to)
{
    const OutputSpec& output = plan.output;
    const auto refusal = [&](int code, const std::string& reason) {
        return Error(code, to.string() + " cannot be made: " + reason);
    };
    if (output.width <= 0 || output.height <= 0 || output.width % 2 != 0 || output.height % 2 != 0)
        throw refusal(
            ErrorCode::kWriterNotStarted,
            "a film of " + std::to_string(output.width) + " × " + std::to_string(output.height)
                + " pixels needs two even sides");
    if (!std::isfinite(output.fps) || output.fps < 1)
        throw refusal(
            ErrorCode::kWriterNotStarted,
            std::to_string(output.fps) + " frames per second are too few");
    std::error_code ignored;
    if (std::filesystem::is_directory(to, ignored))
        throw refusal(ErrorCode::kWriterNotStarted, "it is a folder");
    const auto frames = filmFrames(plan, curve);
    if (!frames)
        throw refusal(ErrorCode::kWriterNotStarted, "the plan is too long");
    if (frames->total() < 1)
        throw refusal(ErrorCode::kFilmNotFinished, "the plan keeps no frame");
    return *frames;
}

void decode(
    SourceReader& reader,
    WebcamSource& webcam,
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
        if (!out.push(
                {.tOut = tOut,
                 .sourceTime = sourceTime,
                 .frame = *std::move(frame),
                 .webcam = webcam.frame(sourceTime)}))
            return;
    }
    out.close();
}

/// Draws the frames of a film in their order.
void compose(
    FrameCompositor& compositor,
    FrameSequence& sequence,
    const EditPlan& plan,
    const FilmFrames& frames,
    OfflineExporter::Repeats repeats,
    DecodedFrames& in,
    ComposedFrames& out)
{
    const auto push = [&](auto&& composeOne) { // false once the film is abandoned
        if (repeats == OfflineExporter::Repeats::Compose)
            compositor.forgetLast();
        return out.push(composeOne());
    };
    const auto pushCard = [&](const std::optional<TextCard>& card, int count) {
        bool isWanted = true;
        for (int i = 0; i < count && isWanted; ++i)
            isWanted =
                push([&] { return compositor.composeCard(*card, static_cast<double>(i) / count); });
        return isWanted;
    };

    if (!pushCard(plan.titleCard, frames.title))
        return;
    while (auto scheduled = in.pop()) {
        const FrameLayers layers = sequence.next(*std::move(scheduled));
        if (!push([&] { return compositor.compose(layers); }))
            return;
    }
    if (pushCard(plan.endCard, frames.end))
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

/// The same error about the film under the name the user gave it.
Error renamed(Error error, const FilmPaths& paths, const std::filesystem::path& film)
{
    for (const auto& file : {paths.pictures, paths.soundtrack, paths.film})
        error = renamed(error, file, film);
    return error;
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

FilmFormat filmFormat(const OutputSpec& output)
{
    return {
        .width = output.width,
        .height = output.height,
        .fps = output.fps,
        .bitRate =
            static_cast<std::int64_t>(output.fps * output.width * output.height * kBitsPerPixel)};
}

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
    const FilmFrames frames = checkedFrames(m_plan, curve, to);
    PartFile part(to);
    const auto paths = FilmPaths::beside(to, part.path());
    const auto writePictures = [&](const auto& file, const std::stop_token& token) {
        writeFilm(file, curve, frames, onProgress, token);
    };
    try {
        if (AudioMixer::needsSound(m_plan))
            writeFilmWithSound(
                m_plan,
                frames.total() / m_plan.output.fps,
                m_bundle.url,
                paths,
                writePictures,
                stop);
        else
            writePictures(paths.film, stop);
    } catch (const Error& error) {
        throw renamed(error, paths, to);
    }
    part.renameToTarget();
}

void OfflineExporter::writeFilm(
    const std::filesystem::path& to,
    const RemapCurve& curve,
    const FilmFrames& frames,
    const ProgressCallback& onProgress,
    const std::stop_token& stop) const
{
    const std::filesystem::path movie = m_bundle.screenMovieURL();
    SourceReader reader(movie);
    WebcamSource webcam(m_plan.webcam, m_bundle.url);
    const VideoSize sourceSize = reader.naturalSize();
    FrameCompositor compositor(m_plan.output, m_plan.style, sourceSize);
    FrameSequence sequence(m_plan, m_bundle.events, curve, sourceSize, 1 / m_plan.output.fps);
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
        [&] { decode(reader, webcam, curve, m_plan.output.fps, frames.main, movie, decoded); },
        abandon);
    auto composing = startStage(
        "export.compose",
        [&] { compose(compositor, sequence, m_plan, frames, m_repeats, decoded, composed); },
        abandon);
    try {
        encode(composed, writer, frames.total(), onProgress);
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
