#include "ZentoRender/PreviewFrames.h"

#include "ZentoCore/Error.h"
#include "ZentoMedia/VideoSeeker.h"
#include "ZentoRender/FrameCompositor.h"
#include "ZentoRender/FrameReplay.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace zento {
namespace {

std::filesystem::path webcamPath(const WebcamPlan& webcam, const std::filesystem::path& bundle)
{
    const std::filesystem::path path = webcam.file;
    std::error_code ignored;
    return std::filesystem::exists(path, ignored) ? path : bundle / path;
}

/// A movie that is open for as long as it is asked for under the same name.
class OpenMovie {
public:
    /// True when it was opened anew. Throws `Error`.
    bool open(const std::filesystem::path& path)
    {
        if (m_seeker && m_path == path)
            return false;
        m_seeker.reset();
        m_seeker = std::make_unique<VideoSeeker>(path);
        m_path = path;
        return true;
    }

    void close() { m_seeker.reset(); }

    std::optional<VideoFrame>
    frame(double t, VideoSeeker::Accuracy accuracy = VideoSeeker::Accuracy::Exact)
    {
        return m_seeker->frame(t, accuracy);
    }

private:
    std::filesystem::path m_path;
    std::unique_ptr<VideoSeeker> m_seeker;
};

} // namespace

struct PreviewFrames::State {
    OpenMovie screen;
    OpenMovie webcam;
    std::shared_ptr<const PreviewFilm> film; // of the parts below
    std::unique_ptr<FrameCompositor> compositor;
    OutputSpec output; // of the compositor
    StyleSpec style;
    VideoSize master;
    std::unique_ptr<FrameReplay> replay;

    void take(const std::shared_ptr<const PreviewFilm>& newFilm);
    std::optional<VideoFrame>
    webcamFrame(const PreviewSource& source, double sourceTime, PreviewDetail detail);
    void forgetLast() const;
};

PreviewFrames::PreviewFrames()
    : m_state(std::make_unique<State>())
{
}

PreviewFrames::~PreviewFrames() = default;

std::shared_ptr<const Picture> PreviewFrames::frame(
    const std::shared_ptr<const PreviewFilm>& film,
    const PreviewSource& source,
    double tOut,
    PreviewDetail detail)
{
    State& state = *m_state;
    if (state.screen.open(source.screen))
        state.forgetLast();
    state.take(film);
    const double t = std::clamp(tOut, 0.0, film->curve->outputDuration());
    const double sourceTime = film->curve->sourceTime(t);
    auto frame = state.screen.frame(sourceTime);
    if (!frame)
        throw Error(
            ErrorCode::kReadingFailed,
            source.screen.string() + " has no picture that can be read at "
                + std::to_string(sourceTime) + " s");
    auto webcam = state.webcamFrame(source, sourceTime, detail);
    return state.compositor->compose(state.replay->layers(t, *std::move(frame), std::move(webcam)));
}

void PreviewFrames::close()
{
    m_state->screen.close();
    m_state->webcam.close();
    m_state->forgetLast();
}

void PreviewFrames::State::take(const std::shared_ptr<const PreviewFilm>& newFilm)
{
    if (film == newFilm)
        return;
    const EditPlan& plan = *newFilm->plan;
    if (!compositor || output != plan.output || style != plan.style || master != newFilm->master) {
        compositor = std::make_unique<FrameCompositor>(plan.output, plan.style, newFilm->master);
        output = plan.output;
        style = plan.style;
        master = newFilm->master;
    }
    replay = std::make_unique<FrameReplay>(plan, *newFilm->events, newFilm->curve, newFilm->master);
    film = newFilm;
}

std::optional<VideoFrame> PreviewFrames::State::webcamFrame(
    const PreviewSource& source, double sourceTime, PreviewDetail detail)
{
    const std::optional<WebcamPlan>& plan = film->plan->webcam;
    if (!plan)
        return std::nullopt;
    try {
        if (webcam.open(webcamPath(*plan, source.bundle)))
            forgetLast();
        return webcam.frame(
            std::max(sourceTime - plan->offset, 0.0),
            detail == PreviewDetail::Exact ? VideoSeeker::Accuracy::Exact
                                           : VideoSeeker::Accuracy::Nearby);
    } catch (const Error&) {
        return std::nullopt;
    }
}

/// Pictures of another decoder may have the identity of one that was drawn.
void PreviewFrames::State::forgetLast() const
{
    if (compositor)
        compositor->forgetLast();
}

} // namespace zento
