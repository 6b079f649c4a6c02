// What an export costs against what it cannot do without, and against a filter graph of ffmpeg that
// makes the same picture; its memory; and what skipping repeats saves. Ratios are of one run on one
// machine. Processor time holds on a busy machine, wall time on a quiet one alone.

#include "ChildRun.h"
#include "DemoRecording.h"
#include "FilterGraph.h"
#include "ReferenceFilm.h"
#include "Scenes.h"
#include "ZentoCore/FileIO.h"
#include "ZentoRender/OfflineExporter.h"

#include <hwy/highway.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace zento::bench {

namespace {

using Repeats = OfflineExporter::Repeats;

enum class Limit { AtMost, AtLeast };

void report(const std::string& what, double value, Limit kind, double limit)
{
    const bool isMet = kind == Limit::AtMost ? value <= limit : value >= limit;
    std::printf(
        "  %-58s %8.2f   %s %7.2f   %s\n",
        what.c_str(),
        value,
        kind == Limit::AtMost ? "at most " : "at least",
        limit,
        isMet ? "pass" : "MISS");
    std::fflush(stdout);
}

void note(const std::string& what, double value, const char* unit)
{
    std::printf("  %-58s %8.2f %s\n", what.c_str(), value, unit);
    std::fflush(stdout);
}

/// Each the least of some runs: what disturbs a run only ever adds to it.
struct Least {
    double processor = std::numeric_limits<double>::infinity();
    double wall = std::numeric_limits<double>::infinity();
    double peak = std::numeric_limits<double>::infinity();

    void add(const Cost& cost)
    {
        processor = std::min(processor, cost.processor);
        wall = std::min(wall, cost.wall);
        peak = std::min(peak, cost.peak);
    }
};

/// What a bench works on.
struct Workshop {
    SessionBundle bundle;
    std::filesystem::path folder; // for films
    Stretch stretch;              // of the recording, with scrolling and typing in it
    int rounds = 2;

    std::filesystem::path film(const char* name) const { return folder / name; }
    double frames() const { return (stretch.end - stretch.begin) * 60; }

    Cost exported(const EditPlan& plan, const char* name, Repeats repeats = Repeats::Reuse) const
    {
        const auto job = [&](auto) {
            OfflineExporter(bundle, plan, repeats).exportFilm(film(name));
        };
        return runInChild(job, {});
    }

    Cost reference(const EditPlan& plan) const
    {
        std::array<double, 2> results{};
        runInChild(
            [&](std::span<double> out) {
                const ReferenceCost cost = makeReferenceFilm(bundle, plan, film("reference.mp4"));
                out[0] = cost.processor;
                out[1] = cost.wall;
            },
            results);
        return {.processor = results[0], .wall = results[1]};
    }

    ComposeCost composing(const EditPlan& plan, std::int64_t target) const
    {
        std::array<double, 6> results{};
        runInChild(
            [&](std::span<double> out) {
                hwy::SetSupportedTargetsForTest(target);
                hwy::GetChosenTarget().Update(hwy::SupportedTargets());
                const ComposeCost cost = measureComposing(bundle, plan);
                const std::array<double, 6> values = {
                    cost.median, cost.quick, cost.composed, cost.decoded, cost.decode, cost.frames};
                std::ranges::copy(values, out.begin());
            },
            results);
        return {results[0], results[1], results[2], results[3], results[4], results[5]};
    }
};

void requireEqual(const std::filesystem::path& a, const std::filesystem::path& b)
{
    if (readFile(a) != readFile(b))
        throw std::runtime_error(
            a.filename().string() + " and " + b.filename().string() + " differ");
}

struct GraphToBeat {
    Graph graph;
    const char* name;
};

/// An export of a stretch against its limits from below and from above.
void measureExport(
    const Workshop& shop,
    const char* name,
    const EditPlan& plan,
    std::span<const GraphToBeat> graphs,
    double timesFaster)
{
    constexpr double kOverReference = 1.1;
    Least whole;
    Least reference;
    std::vector<Least> graph(graphs.size());
    for (int round = 0; round < shop.rounds; ++round) {
        whole.add(shop.exported(plan, "film.mp4"));
        reference.add(shop.reference(plan));
        requireEqual(shop.film("film.mp4"), shop.film("reference.mp4"));
        for (std::size_t i = 0; i < graphs.size(); ++i)
            graph[i].add(runFilterGraph(shop.bundle, shop.stretch, graphs[i].graph, shop.folder));
    }
    std::printf("%s, %.0f frames: ms a frame, processor and wall\n", name, shop.frames());
    const auto list = [&](const char* what, const Least& cost) {
        const double each = 1e3 / shop.frames();
        std::printf("  %-58s %8.2f %8.2f\n", what, cost.processor * each, cost.wall * each);
    };
    list("export", whole);
    list("decode + encode of the same pictures", reference);
    for (std::size_t i = 0; i < graphs.size(); ++i)
        list(graphs[i].name, graph[i]);
    report(
        "export / decode + encode, processor",
        whole.processor / reference.processor,
        Limit::AtMost,
        kOverReference);
    report(
        "export / decode + encode, wall",
        whole.wall / reference.wall,
        Limit::AtMost,
        kOverReference);
    for (std::size_t i = 0; i < graphs.size(); ++i) {
        const std::string what = std::string(graphs[i].name) + " / export, ";
        report(
            what + "processor", graph[i].processor / whole.processor, Limit::AtLeast, timesFaster);
        report(what + "wall", graph[i].wall / whole.wall, Limit::AtLeast, timesFaster);
    }
}

/// The film that the planner makes: what repeats in it is neither decoded nor composed.
void measureRepeats(const Workshop& shop, const EditPlan& plan)
{
    const Cost reusing = shop.exported(plan, "film.mp4");
    const Cost composing = shop.exported(plan, "composed.mp4", Repeats::Compose);
    requireEqual(shop.film("film.mp4"), shop.film("composed.mp4"));
    const Cost reference = shop.reference(plan);
    requireEqual(shop.film("film.mp4"), shop.film("reference.mp4"));
    const ComposeCost stages = shop.composing(plan, 0);
    std::printf(
        "the planner's film, %.0f frames: the same bytes with and without reuse\n", stages.frames);
    note("frames decoded", stages.decoded * 100, "%");
    note("frames composed", stages.composed * 100, "%");
    note("processor, all composed / reusing", composing.processor / reusing.processor, "");
    report(
        "export / decode + encode, processor",
        reusing.processor / reference.processor,
        Limit::AtMost,
        1.1);
}

void measureStages(const Workshop& shop)
{
    struct Stage {
        const char* name;
        EditPlan plan;
        bool isLimited = false;
    };
    const EditPlan moving = movingPlan(shop.bundle, shop.stretch, 1920, 1080);
    const EditPlan still = stillPlan(shop.bundle, shop.stretch, 1920, 1080);
    const auto withWebcam = [&](const EditPlan& plan, WebcamLook look) {
        return bench::withWebcam(plan, shop.bundle, look);
    };
    const std::vector<Stage> stages = {
        {"camera moving", moving, true},
        {"camera still", still, true},
        {"moving, motion blur", withMotionBlur(moving)},
        {"moving, webcam", withWebcam(moving, WebcamLook::Plain)},
        {"moving, webcam enhanced", withWebcam(moving, WebcamLook::Enhanced)},
        {"moving, webcam's background blurred", withWebcam(moving, WebcamLook::BlurredBackground)}};
    const std::vector<std::int64_t> targets = hwy::SupportedAndGeneratedTargets();
    for (const std::int64_t target : targets) {
        if (target != targets.front() && target != HWY_AVX2)
            continue;
        std::printf("composing, ms of processor time a frame, %s\n", hwy::TargetName(target));
        for (const Stage& stage : stages) {
            const ComposeCost cost = shop.composing(stage.plan, target);
            note(std::string(stage.name) + ", quickest tenth", cost.quick, "ms");
            const double limit = target == HWY_AVX3 ? 2.2 : 3.0;
            if (stage.isLimited)
                report(stage.name, cost.median, Limit::AtMost, limit);
            else
                note(stage.name, cost.median, "ms");
        }
    }
}

void measureMemory(const Workshop& shop)
{
    const Stretch all = shop.stretch;
    const auto peak = [&](Stretch stretch, int width, int height) {
        return shop.exported(movingPlan(shop.bundle, stretch, width, height), "film.mp4").peak;
    };
    std::printf("memory of an export, MB\n");
    const double shorter = peak({all.begin, all.begin + 3}, 1920, 1080);
    const double longer = peak(all, 1920, 1080);
    note("1080p, 3 s", shorter, "");
    report(
        "1080p, " + std::to_string(static_cast<int>(all.end - all.begin)) + " s",
        longer,
        Limit::AtMost,
        600);
    report("the longer / the shorter", longer / shorter, Limit::AtMost, 1.05);
    report("3840 x 2160", peak({all.begin, all.begin + 3}, 3840, 2160), Limit::AtMost, 1500);
}

Workshop workshop(std::filesystem::path folder)
{
    Workshop shop = {
        .bundle = SessionBundle::load(demoRecording(ZENTO_BENCH_RECORDING)),
        .folder = std::move(folder),
        .stretch = {}};
    const double end = shop.bundle.meta.duration;
    // Its last half has the scrolling and the typing.
    shop.stretch = {std::max(end - 13, 0.0), end - 5};
    return shop;
}

/// A folder that is gone when the bench is over, also when it failed.
struct ScratchFolder {
    std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("export_bench." + std::to_string(getpid()));

    ScratchFolder() { std::filesystem::create_directory(path); }
    ~ScratchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
};

/// `wanted`: names of sections; none for all.
void run(std::span<const std::string_view> wanted)
{
    const ScratchFolder folder;
    const Workshop shop = workshop(folder.path);
    std::printf("a recording of %.0f s, 1080p at 60 frames a second\n", shop.bundle.meta.duration);
    const auto isWanted = [&](std::string_view name) {
        return wanted.empty() || std::ranges::find(wanted, name) != wanted.end();
    };
    if (isWanted("stages"))
        measureStages(shop);
    if (isWanted("repeats"))
        measureRepeats(shop, plannedFilm(shop.bundle));
    if (isWanted("moving"))
        measureExport(
            shop,
            "camera moving",
            movingPlan(shop.bundle, shop.stretch, 1920, 1080),
            std::array{
                GraphToBeat{Graph::SubPixel, "ffmpeg, sub-pixel camera"},
                GraphToBeat{Graph::WholePixels, "ffmpeg, camera of whole pixels"}},
            1.9);
    if (isWanted("still"))
        measureExport(
            shop,
            "camera still",
            stillPlan(shop.bundle, shop.stretch, 1920, 1080),
            std::array{
                GraphToBeat{Graph::StillReread, "ffmpeg, stills with -loop 1"},
                GraphToBeat{Graph::Still, "ffmpeg, stills read once"}},
            2.5);
    if (isWanted("memory"))
        measureMemory(shop);
}

} // namespace

} // namespace zento::bench

int main(int count, char** words)
{
    try {
        const std::vector<std::string_view> wanted(words + 1, words + count);
        zento::bench::run(wanted);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "export_bench: %s\n", error.what());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
