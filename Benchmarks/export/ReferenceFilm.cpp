#include "ReferenceFilm.h"

#include "ProcessorTime.h"
#include "ZentoCore/RemapCurve.h"
#include "ZentoMedia/FilmWriter.h"
#include "ZentoRender/BoundedQueue.h"
#include "ZentoRender/FrameCompositor.h"
#include "ZentoRender/FrameSequence.h"
#include "ZentoRender/OfflineExporter.h"
#include "ZentoRender/SourceReader.h"
#include "ZentoRender/WebcamSource.h"

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <future>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

namespace zento::bench {

namespace {

using Clock = std::chrono::steady_clock;
using Pictures = std::vector<std::shared_ptr<const Picture>>;

constexpr std::size_t kQueued = 4; // as an export has
constexpr int kPart = 300;         // frames; one of 1080p takes 3.1 MB

VideoFrame frameAt(SourceReader& reader, double time)
{
    auto frame = reader.frame(time);
    if (!frame)
        throw std::runtime_error("the recording has no picture");
    return *std::move(frame);
}

int frameCount(const EditPlan& plan, const RemapCurve& curve)
{
    return static_cast<int>(curve.outputDuration() * plan.output.fps);
}

/// The frames of a film, one after the other.
class Frames {
public:
    Frames(const SessionBundle& bundle, const EditPlan& plan, const RemapCurve& curve)
        : m_fps(plan.output.fps)
        , m_curve(curve)
        , m_reader(bundle.screenMovieURL())
        , m_webcam(plan.webcam, bundle.url)
        , m_compositor(plan.output, plan.style, m_reader.naturalSize())
        , m_sequence(plan, bundle.events, curve, m_reader.naturalSize(), 1 / plan.output.fps)
    {
    }

    VideoFrame decode(int i)
    {
        m_tOut = 1 / m_fps * i;
        m_sourceTime = m_curve.sourceTime(m_tOut);
        m_webcamFrame = m_webcam.frame(m_sourceTime);
        return frameAt(m_reader, m_sourceTime);
    }
    std::shared_ptr<const Picture> compose(VideoFrame frame)
    {
        return m_compositor.compose(m_sequence.next(
            {.tOut = m_tOut,
             .sourceTime = m_sourceTime,
             .frame = std::move(frame),
             .webcam = m_webcamFrame}));
    }

private:
    double m_fps;
    const RemapCurve& m_curve;
    SourceReader m_reader;
    WebcamSource m_webcam;
    FrameCompositor m_compositor;
    FrameSequence m_sequence;
    double m_tOut = 0;
    double m_sourceTime = 0;
    std::optional<VideoFrame> m_webcamFrame;
};

/// Decodes the frames of a part on one thread while another encodes what they became.
void decodeAndEncode(
    SourceReader& reader,
    const std::vector<double>& sourceTimes,
    const Pictures& pictures,
    int first,
    FilmWriter& writer)
{
    BoundedQueue<VideoFrame> decoded(kQueued);
    auto decoding = std::async(std::launch::async, [&] {
        for (const double time : sourceTimes)
            decoded.push(frameAt(reader, time));
        decoded.close();
    });
    auto encoding = std::async(std::launch::async, [&] {
        for (int i = 0; decoded.pop(); ++i) {
            const auto& picture = pictures.at(static_cast<std::size_t>(i));
            writer.append(picture->yuv(), picture, first + i);
        }
    });
    decoding.get();
    encoding.get();
}

} // namespace

ReferenceCost makeReferenceFilm(
    const SessionBundle& bundle, const EditPlan& plan, const std::filesystem::path& to)
{
    const RemapCurve curve(plan.timeRemap);
    const int total = frameCount(plan, curve);
    Frames frames(bundle, plan, curve);
    SourceReader reader(bundle.screenMovieURL());
    ReferenceCost cost;
    // This thread alone composes and does nothing else: what the process takes beside it counts,
    // the encoder's own threads and what they still do when a part is over.
    const double before = processSeconds() - threadSeconds();
    const auto opening = Clock::now();
    FilmWriter writer = std::async(std::launch::async, [&] {
                            return FilmWriter(to, filmFormat(plan.output));
                        }).get();
    cost.wall += std::chrono::duration<double>(Clock::now() - opening).count();
    for (int first = 0; first < total; first += kPart) {
        Pictures pictures;
        std::vector<double> sourceTimes;
        for (int i = first; i < std::min(first + kPart, total); ++i) {
            pictures.push_back(frames.compose(frames.decode(i)));
            sourceTimes.push_back(curve.sourceTime(1 / plan.output.fps * i));
        }
        const auto start = Clock::now();
        decodeAndEncode(reader, sourceTimes, pictures, first, writer);
        cost.wall += std::chrono::duration<double>(Clock::now() - start).count();
    }
    const auto finishing = Clock::now();
    std::async(std::launch::async, [&] { writer.finish(); }).get();
    cost.wall += std::chrono::duration<double>(Clock::now() - finishing).count();
    cost.processor = processSeconds() - threadSeconds() - before;
    return cost;
}

ComposeCost measureComposing(const SessionBundle& bundle, const EditPlan& plan)
{
    const RemapCurve curve(plan.timeRemap);
    const int total = frameCount(plan, curve);
    Frames frames(bundle, plan, curve);
    std::deque<std::shared_ptr<const Picture>> onTheirWay; // to the encoder
    std::vector<double> composing;
    std::vector<double> decoding;
    std::uint64_t lastDecoded = 0;
    for (int i = 0; i < total; ++i) {
        const double start = threadSeconds();
        VideoFrame frame = frames.decode(i);
        const double isDecoded = threadSeconds();
        if (i == 0 || frame.identity() != lastDecoded)
            decoding.push_back(isDecoded - start);
        lastDecoded = frame.identity();
        auto picture = frames.compose(std::move(frame));
        const double isComposed = threadSeconds();
        if (onTheirWay.empty() || picture != onTheirWay.back())
            composing.push_back(isComposed - isDecoded);
        onTheirWay.push_back(std::move(picture));
        if (onTheirWay.size() > kQueued + 1)
            onTheirWay.pop_front();
    }
    const auto quantile = [](std::vector<double>& times, double share) {
        const double index = static_cast<double>(times.size() - 1) * share;
        const auto wanted = times.begin() + static_cast<std::ptrdiff_t>(index);
        std::ranges::nth_element(times, wanted);
        return *wanted * 1e3;
    };
    return {
        .median = quantile(composing, 0.5),
        .quick = quantile(composing, 0.1),
        .composed = static_cast<double>(composing.size()) / total,
        .decoded = static_cast<double>(decoding.size()) / total,
        .decode = quantile(decoding, 0.5),
        .frames = static_cast<double>(total)};
}

} // namespace zento::bench
