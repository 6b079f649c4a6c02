#include "TestSupport/Random.h"
#include "Zento/Timeline/MusicSection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace zento {
namespace {

constexpr TrackScale kStrip{.width = 300, .duration = 60}; // 5 points a second

SavedOverrides chosen(double start, double end)
{
    SavedOverrides edits;
    edits.musicStart = start;
    edits.musicEnd = end;
    return edits;
}

SavedOverrides dragged(const SavedOverrides& edits, double from, double to)
{
    return sectionTo(kStrip, edits, beginSection(kStrip, edits, from), to).edits;
}

TEST(MusicSectionTest, APressTakesTheNearerEdgeOrAllOfIt)
{
    using Kind = SectionDrag::Kind;
    struct Case {
        const char* name;
        SavedOverrides edits;
        double x;
        Kind kind;
    };
    const std::vector<Case> cases = {
        {"the start, from inside", chosen(10, 40), 59, Kind::Start},
        {"just too far from it", chosen(10, 40), 60, Kind::Move},
        {"the end, from inside", chosen(10, 40), 191, Kind::End},
        {"outside, before it", chosen(10, 40), 2, Kind::Start},
        {"outside, behind it", chosen(10, 40), 290, Kind::End},
        {"the whole track's own start", {}, 0, Kind::Start},
        {"the whole track's own end", {}, 299, Kind::End},
        {"a narrow one, its start", chosen(10, 13), 54, Kind::Start},
        {"a narrow one, its middle", chosen(10, 13), 57, Kind::Move},
        {"a narrow one, its end", chosen(10, 13), 61, Kind::End},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(beginSection(kStrip, c.edits, c.x).kind, c.kind) << c.name;
    }
}

TEST(MusicSectionTest, DragsMoveWhatTheyTook)
{
    struct Case {
        const char* name;
        SavedOverrides edits;
        double from;
        double to;
        double start;
        double end;
    };
    const std::vector<Case> cases = {
        {"an edge without a jump", chosen(10, 40), 54, 79, 15, 40},
        {"an edge from outside comes to the pointer", chosen(10, 40), 20, 25, 5, 40},
        {"the start stops before the end", chosen(10, 40), 50, 290, 37.9, 40},
        {"the end stops behind the start", chosen(10, 40), 200, 0, 10, 12.1},
        {"all of it keeps its length", chosen(10, 40), 100, 150, 20, 50},
        {"all of it stops at the track's end, unset there", chosen(10, 40), 100, 290, 30, 0},
        {"all of it stops at the track's start, unset there", chosen(10, 40), 100, 0, 0, 30},
        {"the first drag of an end", {}, 300, 200, 0, 40},
        {"an edge back to the track's own is unset", chosen(10, 40), 50, 0, 0, 40},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const SavedOverrides edits = dragged(c.edits, c.from, c.to);
        EXPECT_NEAR(edits.musicStart, c.start, 1e-9);
        EXPECT_NEAR(edits.musicEnd, c.end, 1e-9);
    }
}

TEST(MusicSectionTest, WhateverIsDoneTheSectionLiesInTheTrackAndIsLongEnough)
{
    test::Random random(3);
    for (int round = 0; round < 2000; ++round) {
        const TrackScale strip{
            .width = random.uniform(0, 400), .duration = random.uniform(0.01, 200)};
        SavedOverrides edits = chosen(random.uniform(0, 250), random.uniform(0, 250));
        const SectionDrag drag = beginSection(strip, edits, random.uniform(-20, 420));
        const auto step = sectionTo(strip, edits, drag, random.uniform(-50, 450));
        EXPECT_EQ(step.name, "Music Section");
        const MusicSection section = musicSection(step.edits, strip.duration);
        EXPECT_GE(section.start, 0);
        EXPECT_LE(section.end, strip.duration);
        const bool wasLong =
            musicSection(edits, strip.duration).end - musicSection(edits, strip.duration).start
            >= kShortestSection;
        if (wasLong) {
            EXPECT_GE(section.end - section.start, kShortestSection - 0.06);
        }
    }
}

TEST(MusicSectionTest, KeysDoWhatDragsDo)
{
    using Kind = SectionDrag::Kind;
    const SavedOverrides edits = chosen(10, 40);
    EXPECT_NEAR(nudgeSection(kStrip, edits, Kind::Start, 1).edits.musicStart, 11, 1e-9);
    EXPECT_NEAR(nudgeSection(kStrip, edits, Kind::End, -100).edits.musicEnd, 12.1, 1e-9);
    EXPECT_EQ(nudgeSection(kStrip, edits, Kind::Move, 1).edits, chosen(11, 41));
    EXPECT_EQ(resetSection(edits).edits, SavedOverrides{});
    EXPECT_TRUE(isSectionChosen(edits, 60));
    EXPECT_FALSE(isSectionChosen({}, 60));
    EXPECT_FALSE(isSectionChosen(chosen(0, 90), 60)); // of a longer track before this one
}

} // namespace
} // namespace zento
