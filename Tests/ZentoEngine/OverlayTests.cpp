#include "Log.h"
#include "ZentoCore/Text.h"
#include "ZentoEngine/Captions.h"
#include "ZentoEngine/Chapters.h"
#include "ZentoEngine/CursorSmoothing.h"
#include "ZentoEngine/KeystrokeChips.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>

namespace zento::test {

namespace {

using namespace EditPlanner;

std::vector<std::string> labels(const std::vector<InputEvent>& events)
{
    std::vector<std::string> result;
    std::ranges::transform(
        keystrokeChips(EventLog(events), wholeFilm()),
        std::back_inserter(result),
        &KeystrokeChip::label);
    return result;
}

TEST(KeystrokeChips, GrowWithinARun)
{
    using Labels = std::vector<std::string>;
    EXPECT_EQ(labels({key(0), key(0.6, "b"), key(1.25, "c")}), (Labels{"a", "ab", "c"}));
    EXPECT_EQ(
        labels({key(1, "⌘S"), key(1.1, "x"), key(1.2, "Esc")}), (Labels{"⌘S", "⌘Sx", "⌘Sx  Esc"}));
    EXPECT_EQ(labels({key(1, ""), key(1.1, std::nullopt), key(1.2)}), (Labels{"", "a"}))
        << "an empty label is a label, a missing one is not";
}

TEST(KeystrokeChips, ShowTheEndOfALongText)
{
    std::vector<InputEvent> events;
    events.reserve(30);
    for (int i = 0; i < 30; ++i) {
        events.push_back(key(i * 0.1, std::string(1, static_cast<char>('A' + i))));
    }
    const auto shown = labels(events);
    EXPECT_EQ(shown[25], "ABCDEFGHIJKLMNOPQRSTUVWXYZ");
    EXPECT_EQ(shown[26], "…CDEFGHIJKLMNOPQRSTUVWXYZ[");
    EXPECT_EQ(characterCount(shown[29]), 26U);
}

TEST(KeystrokeChips, LastUntilTheNextKeyEvenIfThatIsCut)
{
    const std::vector<InputEvent> events = {key(1), key(1.4), key(1.8)};
    const auto chips = keystrokeChips(EventLog(events), RemapCurve({{0, 1.2, 1}, {1.6, 9, 1}}));
    ASSERT_EQ(chips.size(), 2U);
    EXPECT_NEAR(chips[0].tOutEnd, 1.2, 1e-9) << "where the cut is";
    EXPECT_EQ(chips[1].label, "aa");
    EXPECT_NEAR(chips[1].tOutEnd - chips[1].tOut, 0.9, 1e-9);
}

TEST(Captions, BreakAtSpacesOfTheirOwn)
{
    using Lines = std::vector<std::string>;
    EXPECT_EQ(splitCaption("fits as it  is", 14), (Lines{"fits as it  is"}));
    EXPECT_EQ(splitCaption("one two  three", 7), (Lines{"one two", "three"}));
    EXPECT_EQ(splitCaption("a muchtoolong b", 5), (Lines{"a", "muchtoolong", "b"}));
    EXPECT_EQ(splitCaption("tab\tis no space", 5), (Lines{"tab\tis", "no", "space"}));
    EXPECT_EQ(splitCaption("a \u0301b c", 3), (Lines{"a \u0301b", "c"}))
        << "a space that carries an accent is a letter, and é is one character";
    const std::string eighty = std::string(40, 'x') + " " + std::string(39, 'y');
    EXPECT_EQ(splitCaption(eighty, 80).size(), 1U);
    EXPECT_EQ(splitCaption(eighty + "y", 80).size(), 2U);
}

TEST(Captions, ShareTheirTimeByLength)
{
    const std::vector<TranscriptSegment> transcript = {
        {50, 56, "later"},
        {10, 16, "  " + std::string(60, 'x') + " " + std::string(30, 'y') + "\n"},
        {20, 21, " \t"},
        {30, 38, "middle is cut"},
        {40, 40.1, "short"},
    };
    const auto chips = buildCaptions(transcript, RemapCurve({{0, 33, 1}, {37, 100, 1}}));
    ASSERT_EQ(chips.size(), 4U);
    EXPECT_NEAR(chips[0].tOut, 10, 1e-9);
    EXPECT_NEAR(chips[0].tOutEnd, 14, 1e-9);
    EXPECT_NEAR(chips[1].tOutEnd, 16, 1e-9);
    EXPECT_EQ(chips[1].text, std::string(30, 'y'));
    EXPECT_EQ(chips[2].text, "short");
    EXPECT_NEAR(chips[2].tOutEnd - chips[2].tOut, 0.3, 1e-9);
    EXPECT_EQ(chips[3].text, "later");
}

TEST(Chapters, KeepTheirDistance)
{
    const std::vector<SemanticNotes::Chapter> chapters = {
        {0.2, "start"},
        {3.5, "too near"},
        {3.7, "taken"},
        {60, "cut"},
        {7, "measured from the last"}};
    const auto markers = chapterMarkers(chapters, wholeFilm(50));
    ASSERT_EQ(markers.size(), 3U);
    EXPECT_EQ(markers[0], (ChapterMarker{0, "start"}));
    EXPECT_NEAR(markers[1].tOut, 3.3, 1e-9);
    EXPECT_EQ(markers[2].title, "measured from the last");
}

std::string shapeAt(double t, const PlanConfig& config, double clickTime, const Moment& typing)
{
    const std::vector<InputEvent> events = {event(t, EventKind::Move), click(clickTime)};
    return smoothCursor(EventLog(events), std::vector{typing}, config).front().style;
}

TEST(Cursor, TakesTheShapeOfWhatGoesOn)
{
    const Moment typing = moment(Moment::Kind::Typing, 20, 21);
    PlanConfig noHand;
    noHand.pointerOnClick = false;
    EXPECT_EQ(shapeAt(10.4, {}, 10, typing), "pointingHand");
    EXPECT_EQ(shapeAt(10.41, {}, 10, typing), "arrow");
    EXPECT_EQ(shapeAt(9.86, {}, 10, typing), "pointingHand");
    EXPECT_EQ(shapeAt(9.84, {}, 10, typing), "arrow");
    EXPECT_EQ(shapeAt(10, noHand, 10, typing), "arrow");
    EXPECT_EQ(shapeAt(20, {}, 20, typing), "iBeam");
    EXPECT_EQ(shapeAt(21, noHand, 10, typing), "iBeam");
}

TEST(Cursor, IsTheMeanOfItsNeighbours)
{
    const std::vector<InputEvent> events = {
        event(1.05, EventKind::Move, {9, 9}),
        event(1, EventKind::Move, {1, 5}),
        event(1, EventKind::Move, {3, 7}),
        event(1.02, EventKind::Move, {5, 0}),
    };
    const auto samples = smoothCursor(EventLog(events), {}, {});
    ASSERT_EQ(samples.size(), 4U);
    EXPECT_EQ(samples[0].pos, (Vec2{3, 4}));
    EXPECT_EQ(samples[1].pos, (Vec2{3, 4}));
    EXPECT_EQ(samples[3], (CursorSample{1.05, {7, 4.5}, "arrow"}));
}

} // namespace

} // namespace zento::test
