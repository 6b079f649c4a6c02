// Loading and planning long recordings, against a bare pass of the JSON parser over the same bytes.

#include "HumanSession.h"
#include "ProcessorTime.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/SessionBundle.h"
#include "ZentoEngine/EditPlanner.h"

#include <malloc.h>
#include <simdjson.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <limits>
#include <string>
#include <string_view>

namespace zento::bench {

namespace {

constexpr int kRounds = 7;

double peakMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

/// The processor time of the fastest of some rounds.
template <typename Work>
double best(Work work)
{
    double result = std::numeric_limits<double>::infinity();
    for (int round = 0; round < kRounds; ++round) {
        const double begin = threadSeconds();
        work();
        result = std::min(result, threadSeconds() - begin);
    }
    return result;
}

/// Keeps a result from being optimised away.
std::size_t g_sink = 0;

/// `text` has the parser's padding behind its end, so that no line is copied.
void parseEveryLine(std::string_view text)
{
    simdjson::dom::parser parser;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        const simdjson::dom::element element = parser.parse(line.data(), line.size(), false);
        g_sink += element.is_object() ? 1U : 0U;
        text.remove_prefix(line.size() + 1);
    }
}

struct Timings {
    double megabytes = 0; // of the log
    double parse = 0;     // seconds of processor time
    double load = 0;
    double plan = 0;     // of the log alone
    double richPlan = 0; // with narration, hints, chips and edits
};

Timings measure(const std::filesystem::path& folder, double hours)
{
    SessionBundle session = humanSession(hours);
    session.url = folder;
    session.writeMetadata();
    session = {};

    Timings result;
    {
        std::string text = readFile(folder / "events.jsonl");
        result.megabytes = static_cast<double>(text.size()) * 1e-6;
        text.reserve(text.size() + simdjson::SIMDJSON_PADDING);
        result.parse = best([&] { parseEveryLine(text); });
    }
    result.load = best([&] { g_sink += SessionBundle::load(folder).events.size(); });
    session = SessionBundle::load(folder);
    EditPlanner::PlanInput input;
    input.events = session.events;
    input.meta = session.meta;
    result.plan = best([&] { g_sink += EditPlanner::plan(input).cursor.size(); });
    const EditPlanner::PlanInput rich = richInput(session);
    result.richPlan = best([&] { g_sink += EditPlanner::plan(rich).cursor.size(); });
    return result;
}

void report(const char* what, double value, double limit)
{
    std::printf(
        "  %-34s %8.2f  limit %6.1f  %s\n", what, value, limit, value <= limit ? "ok" : "OVER");
}

void run()
{
    // Every round gets fresh memory for what is large, as a process that plans once does. Left to
    // itself the allocator keeps the blocks of the one-hour plan for the next round but not those
    // of the two-hour plan, and their page faults alone made it three times as dear.
    mallopt(M_MMAP_THRESHOLD, 1 << 20); // NOLINT(concurrency-mt-unsafe): one thread
    const std::filesystem::path folder = std::filesystem::temp_directory_path()
                                         / ("plan_bench." + std::to_string(getpid()) + ".zento");
    const double before = peakMegabytes();
    const Timings one = measure(folder, 1);
    const double peak = peakMegabytes();
    const Timings two = measure(folder, 2);
    std::filesystem::remove_all(folder);

    for (const Timings& t : {one, two}) {
        std::printf(
            "log of %.1f MB: parse %.1f ms, load %.1f ms, plan %.1f ms, rich plan %.1f ms\n",
            t.megabytes,
            t.parse * 1e3,
            t.load * 1e3,
            t.plan * 1e3,
            t.richPlan * 1e3);
    }
    report("load / parse, one hour", one.load / one.parse, 6);
    report("plan / parse, one hour", one.plan / one.parse, 6);
    report("rich plan / parse, one hour", one.richPlan / one.parse, 6);
    report("plan, two hours / one", two.plan / one.plan, 2.2);
    report("rich plan, two hours / one", two.richPlan / one.richPlan, 2.2);
    report("load, two hours / one", two.load / one.load, 2.2);
    report("peak memory of one hour, MB", peak, 400);
    std::printf("  (%.1f MB before the first log; %zu)\n", before, g_sink);
}

} // namespace

} // namespace zento::bench

int main()
{
    try {
        zento::bench::run();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "plan_bench: %s\n", error.what());
    }
    return 0;
}
