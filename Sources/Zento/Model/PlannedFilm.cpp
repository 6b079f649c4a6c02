#include "Zento/Model/PlannedFilm.h"

#include "ZentoEngine/EditPlanner.h"

#include <algorithm>
#include <future>
#include <utility>

namespace zento {

namespace {

constexpr double kPreviewLines = 720;

std::shared_ptr<const RemapCurve> curveOf(const EditPlan& plan)
{
    return std::make_shared<const RemapCurve>(plan.timeRemap);
}

/// The beats of the film's music. Its first sample is a beat of the track, and the film's first
/// one, under the title card.
std::optional<HeardBeats> heardBeats(const FilmSources& sources, const PlannedFilm& planned)
{
    const std::optional<MusicPlan>& music = planned.film->plan->music;
    if (!music || !sources.music || !(sources.music->grid.period > 0)) {
        return std::nullopt;
    }
    const double card = sources.settings.titleCard ? sources.settings.cardSeconds : 0;
    const double rest = sources.music->grid.duration - music->sourceOffset;
    return HeardBeats{
        .first = -card,
        .period = sources.music->grid.period,
        .end = std::min(music->playDuration.value_or(rest) - card, planned.duration)};
}

void markBeats(PlannedFilm& planned, const FilmSources& sources)
{
    const auto beats = heardBeats(sources, planned);
    if (!beats) {
        return;
    }
    for (const double beat : beats->times()) {
        planned.beats.push_back(planned.toTimeline(beat));
    }
    constexpr double kBefore = 1e-3; // source seconds
    const RemapCurve& film = *planned.film->curve;
    for (CutMark& cut : planned.cuts) {
        cut.isOnBeat =
            film.contains(cut.cutAfter - kBefore) && beats->isOn(film.outputTime(cut.cutAfter));
    }
}

} // namespace

double PlannedFilm::toTimeline(double tOut) const
{
    return timelineCurve->outputTime(film->curve->sourceTime(tOut));
}

double PlannedFilm::fromTimeline(double stripTime) const
{
    const double source = timelineCurve->sourceTime(stripTime);
    return std::clamp(film->curve->outputTime(source), 0.0, duration);
}

OutputSpec previewOutput(const AppSettings& settings)
{
    const OutputSpec film = settings.outputSpec();
    const double aspect = static_cast<double>(film.width) / film.height;
    return {
        .width = 2 * static_cast<int>(aspect * kPreviewLines * 0.5),
        .height = static_cast<int>(kPreviewLines),
        .fps = film.fps};
}

PlannedFilm planFilm(const FilmSources& sources)
{
    const SessionBundle& bundle = *sources.bundle;
    EditPlanner::PlanInput input =
        planInput(bundle, *sources.analyses, sources.settings, sources.edits, sources.desktopImage);
    input.output = previewOutput(sources.settings);
    input.music = sources.music;
    if (input.music) {
        input.music->start = sources.edits.musicStart;
        input.music->end = sources.edits.musicEnd;
    }
    const auto planOf = [&settings = sources.settings](const EditPlanner::PlanInput& of) {
        return std::make_shared<const EditPlan>(planAtLevels(of, settings));
    };
    // Of an hour each takes a good part of what a replan may: the second one beside the first.
    std::future<std::shared_ptr<const EditPlan>> untrimmed;
    if (!input.overrides.removedRanges.empty()) {
        EditPlanner::PlanInput whole = input;
        whole.overrides.removedRanges.clear();
        untrimmed = std::async(std::launch::async, planOf, std::move(whole));
    }
    auto plan = planOf(input);
    auto curve = curveOf(*plan);
    PlannedFilm planned = {.timelinePlan = plan, .timelineCurve = curve};
    if (untrimmed.valid()) {
        planned.timelinePlan = untrimmed.get();
        planned.timelineCurve = curveOf(*planned.timelinePlan);
    }
    planned.duration = curve->outputDuration();
    planned.timelineDuration = planned.timelineCurve->outputDuration();
    planned.zoomBars = zoomBars(
        *planned.timelinePlan, *planned.timelineCurve, planned.timelineDuration, input.overrides);
    planned.cuts = cutMarks(planned.timelinePlan->timeRemap);
    planned.words = timelineWords(sources.analyses->transcript, planned.timelineCurve.get());
    planned.film = std::make_shared<const PreviewFilm>(PreviewFilm{
        .plan = std::move(plan),
        .curve = std::move(curve),
        .events = {sources.bundle, &bundle.events},
        .master = {bundle.meta.pixelWidth, bundle.meta.pixelHeight}});
    markBeats(planned, sources);
    return planned;
}

} // namespace zento
