#include "PlainPlanner.h"
#include "TestSupport/RandomSession.h"
#include "ZentoEngine/CursorSmoothing.h"
#include "ZentoEngine/EditPlanner.h"
#include "ZentoEngine/KeystrokeChips.h"
#include "ZentoEngine/MomentDetection.h"
#include "ZentoEngine/RemovedRanges.h"
#include "ZentoEngine/TimeRemapConstruction.h"
#include "ZentoEngine/ZoomEdits.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// Sweeps and binary searches against plain search, on many random sessions.

namespace zento::test {

namespace {

using namespace EditPlanner;

constexpr std::uint64_t kSessions = 300;

template <typename Check>
void forEachSession(Check check)
{
    for (const LogOrder order : {LogOrder::Ascending, LogOrder::Disturbed}) {
        for (std::uint64_t seed = 0; seed < kSessions && !testing::Test::HasFailure(); ++seed) {
            SCOPED_TRACE(
                "seed " + std::to_string(seed)
                + (order == LogOrder::Ascending ? " ascending" : " disturbed"));
            const RandomSession session(seed, order);
            check(session.input);
        }
    }
}

TEST(FastPaths, MomentsAndZoomEditsEqualPlainSearch)
{
    std::size_t typing = 0;
    std::size_t edited = 0;
    forEachSession([&](const PlanInput& input) {
        const auto moments = detectMoments(EventLog(input.events), input.meta, input.framingHints);
        EXPECT_EQ(moments, plain::detectMoments(input));
        const auto changed = applyZoomEdits(moments, input.overrides, EventLog(input.events));
        EXPECT_EQ(changed, plain::applyZoomEdits(moments, input));
        typing += static_cast<std::size_t>(std::ranges::count_if(
            moments, [](const auto& m) { return m.kind == Moment::Kind::Typing && m.focus; }));
        edited += static_cast<std::size_t>(std::ranges::count_if(
            changed, [](const auto& m) { return m.kind != Moment::Kind::Added && m.editKey; }));
    });
    EXPECT_GT(typing, kSessions) << "the sessions must exercise text targets";
    EXPECT_GT(edited, kSessions) << "the sessions must exercise edits";
}

TEST(FastPaths, SegmentsEqualPlainSearch)
{
    std::size_t segmentCount = 0;
    forEachSession([&](const PlanInput& input) {
        const auto moments = detectMoments(EventLog(input.events), input.meta, input.framingHints);
        const auto speech = speechRanges(input.transcript, kSpeechPad);
        const auto segments = buildTimeRemap(moments, input.meta.duration, input.config, speech);
        EXPECT_EQ(segments, plain::buildTimeRemap(moments, input, speech));
        const auto& removed = input.overrides.removedRanges;
        EXPECT_EQ(subtract(segments, removed), plain::subtract(segments, removed));
        segmentCount += segments.size();
    });
    EXPECT_GT(segmentCount, 10 * kSessions);
}

TEST(FastPaths, CursorEqualsPlainSearch)
{
    forEachSession([](const PlanInput& input) {
        const auto moments = detectMoments(EventLog(input.events), input.meta, input.framingHints);
        EXPECT_EQ(
            smoothCursor(EventLog(input.events), moments, input.config),
            plain::smoothCursor(moments, input));
    });
}

/// Crowded windows are summed in another order, so the last bits may differ.
TEST(FastPaths, CursorInCrowdedWindowsIsTheMean)
{
    std::vector<InputEvent> events;
    for (int i = 0; i < 2000; ++i) {
        InputEvent move;
        const int crowd = i / 700;
        move.t = crowd * 0.04 + (i % 7 == 0 ? 1e-4 * (i % 700) : 0);
        move.pos = {i * 0.37, 1000.0 - i};
        events.push_back(move);
    }
    PlanInput input;
    input.events = events;
    const auto samples = smoothCursor(EventLog(events), {}, input.config);
    const auto expected = plain::smoothCursor({}, input);
    ASSERT_EQ(samples.size(), expected.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        ASSERT_NEAR(samples[i].pos.x, expected[i].pos.x, 1e-9) << i;
        ASSERT_NEAR(samples[i].pos.y, expected[i].pos.y, 1e-9) << i;
    }
}

TEST(FastPaths, KeystrokesEqualTheWholeGrowingText)
{
    std::size_t shortened = 0;
    forEachSession([&](const PlanInput& input) {
        const RemapCurve remap(plan(input).timeRemap);
        const auto chips = keystrokeChips(EventLog(input.events), remap);
        EXPECT_EQ(chips, plain::keystrokeChips(input, remap));
        shortened += static_cast<std::size_t>(std::ranges::count_if(
            chips, [](const auto& chip) { return chip.label.starts_with("…"); }));
    });
    EXPECT_GT(shortened, kSessions) << "the sessions must exercise long texts";
}

} // namespace

} // namespace zento::test
