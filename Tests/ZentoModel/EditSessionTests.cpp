#include "EditorFixture.h"
#include "TestSupport/Random.h"
#include "Zento/Timeline/ZoomEditing.h"
#include "ZentoCore/FileIO.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace zento {
namespace {

using namespace std::chrono_literals;

class UndoHistoryTest : public testing::Test {
protected:
    /// Changes one value under a name, `after` the last change.
    void change(
        std::string_view name,
        double SavedOverrides::* value,
        double to,
        std::chrono::milliseconds after = 900ms)
    {
        m_now += after;
        const UndoableState before = m_state;
        m_state.edits.*value = to;
        m_history.record(name, before, m_state, m_now);
    }

    bool undo() { return take(m_history.undo(m_state)); }
    bool redo() { return take(m_history.redo(m_state)); }

    bool take(std::optional<UndoableState> state)
    {
        if (state)
            m_state = *state;
        return state.has_value();
    }

    Clock::Instant m_now;
    UndoableState m_state;
    UndoHistory m_history;
};

TEST_F(UndoHistoryTest, ChangesOfOneNameInABurstAreOneStep)
{
    change("Trim", &SavedOverrides::trimStart, 1);
    for (int i = 2; i < 20; ++i)
        change("Trim", &SavedOverrides::trimStart, i, 700ms);
    change("Trim", &SavedOverrides::trimEnd, 50, 700ms); // both ends, as a moved stretch has
    change("Trim", &SavedOverrides::trimStart, 30, 900ms);
    EXPECT_TRUE(undo());
    EXPECT_EQ(m_state.edits.trimStart, 19);
    EXPECT_EQ(m_state.edits.trimEnd, 50);
    EXPECT_TRUE(undo());
    EXPECT_EQ(m_state, UndoableState{});
    EXPECT_FALSE(undo());
    EXPECT_TRUE(redo());
    EXPECT_TRUE(redo());
    EXPECT_EQ(m_state.edits.trimStart, 30);
    EXPECT_FALSE(redo());
}

TEST_F(UndoHistoryTest, DifferentNamesNeverMergeAndPutBackTheirOwnValues)
{
    change("Trim", &SavedOverrides::trimStart, 1);
    change("Music Section", &SavedOverrides::musicStart, 5, 100ms);
    change("Trim", &SavedOverrides::trimStart, 2, 100ms); // still the first step's burst
    EXPECT_EQ(m_history.undoName(), "Music Section");
    EXPECT_TRUE(undo());
    EXPECT_EQ(m_state.edits.trimStart, 2);
    EXPECT_EQ(m_state.edits.musicStart, 0);
    EXPECT_TRUE(undo());
    EXPECT_EQ(m_state, UndoableState{});
    EXPECT_EQ(m_history.redoName(), "Trim");
}

TEST_F(UndoHistoryTest, AnEditAfterAnUndoIsAStepOfItsOwnAndEndsRedoing)
{
    change("Trim", &SavedOverrides::trimStart, 1);
    change("Trim", &SavedOverrides::trimStart, 2);
    undo();
    change("Trim", &SavedOverrides::trimStart, 3, 10ms);
    EXPECT_FALSE(redo());
    undo();
    EXPECT_EQ(m_state.edits.trimStart, 1);
    change("Trim", &SavedOverrides::trimStart, 1); // nothing: no step
    EXPECT_EQ(m_history.undoName(), "Trim");
    undo();
    EXPECT_EQ(m_history.undoName(), "");
}

TEST_F(UndoHistoryTest, RandomWalksComeBackThroughTheSameStates)
{
    test::Random random(3);
    std::vector<UndoableState> states = {m_state};
    for (int i = 0; i < 200; ++i) {
        change(
            random.pick(std::array{"Zoom", "Trim", "Settings"}),
            random.pick(std::array{&SavedOverrides::trimStart, &SavedOverrides::musicEnd}),
            random.uniform(0, 9));
        states.push_back(m_state);
    }
    for (std::size_t i = states.size() - 1; i-- > 0;) {
        ASSERT_TRUE(undo());
        EXPECT_EQ(m_state, states[i]);
    }
    for (std::size_t i = 1; i < states.size(); ++i) {
        ASSERT_TRUE(redo());
        EXPECT_EQ(m_state, states[i]);
    }
}

using EditSessionTest = test::EditorTest;

TEST_F(EditSessionTest, ABurstOfEditsReplansAndSavesOnce)
{
    const auto path = bundle("a.zento");
    open(path);
    EXPECT_EQ(m_plans, 1);
    EXPECT_FALSE(m_session->isRenderStale());
    EXPECT_FALSE(m_session->canUndo());
    for (int i = 1; i <= 10; ++i) {
        m_session->apply(addZoom(m_session->edits(), i, 1.5));
        m_clock.advance(79ms);
    }
    EXPECT_EQ(m_plans, 1);
    EXPECT_FALSE(std::filesystem::exists(path / "overrides.json"));
    m_clock.advance(1ms);
    EXPECT_EQ(m_plans, 2);
    m_clock.advance(600ms);
    EXPECT_EQ(loadSavedOverrides(*m_session->bundle()), m_session->edits());
    EXPECT_EQ(m_session->undoName(), "Zoom");
    EXPECT_TRUE(m_session->isRenderStale());
    m_session->undo();
    EXPECT_TRUE(m_session->edits().addedZooms.empty());
    settle();
    EXPECT_EQ(m_plans, 3);
}

TEST_F(EditSessionTest, APlanOfOtherValuesThanThePresentOnesNeverLands)
{
    open(bundle("a.zento"));
    int landed = 0;
    QObject::connect(&*m_session, &EditSession::planned, [&] { ++landed; });
    const auto trim = [&](double end) {
        SavedOverrides edits = m_session->edits();
        edits.trimEnd = end;
        m_session->apply({edits, EditName::kTrim});
    };
    m_edits.isHeld = true;
    trim(40);
    m_clock.advance(80ms); // its plan is on its way
    trim(30);
    m_clock.advance(80ms); // waits for the one before
    EXPECT_EQ(m_edits.waiting(), 1U);
    trim(20);
    m_edits.step(); // the first plan comes back, stale, before the third edit is due
    EXPECT_EQ(landed, 0);
    m_clock.advance(80ms);
    m_edits.isHeld = false;
    m_edits.release();
    EXPECT_EQ(landed, 1);
    EXPECT_LE(m_session->film()->duration, 20.5);
    EXPECT_GT(m_session->film()->timelineDuration, m_session->film()->duration + 1);
}

TEST_F(EditSessionTest, WhatBelongsToARecordingThatWasLeftNeverLands)
{
    const auto a = bundle("a.zento");
    const auto b = bundle("b.zento", 30);
    open(a);
    m_session->apply(addZoom(m_session->edits(), 5, 1.5));
    m_edits.isHeld = true;
    m_clock.advance(80ms);
    for (int i = 0; i < 20; ++i) // there and back
        open(i % 2 == 0 ? b : a);
    open(b);
    EXPECT_FALSE(m_session->isLoaded());
    m_session->apply(addZoom({}, 9, 1.5)); // not editable yet
    m_session->undo();
    m_edits.isHeld = false;
    m_edits.release();
    settle();
    EXPECT_EQ(m_session->bundle()->url, b);
    EXPECT_EQ(m_session->film()->film->events->size(), m_session->bundle()->events.size());
    EXPECT_TRUE(m_session->edits().addedZooms.empty());
    EXPECT_FALSE(std::filesystem::exists(b / "overrides.json"));
    EXPECT_LE(m_plans, 3); // those in between were not begun
    open(a);               // with the edit that was left, though its save had not been due
    EXPECT_EQ(m_session->edits().addedZooms.size(), 1U);
    EXPECT_FALSE(m_session->canUndo());
    EXPECT_FALSE(m_session->isRenderStale());
}

TEST_F(EditSessionTest, SettingsAreUndoneWithTheEdits)
{
    open(bundle("a.zento"));
    const double padding = m_settings.current().padding;
    AppSettings settings = m_settings.current();
    settings.padding = 0.15;
    m_settings.replace(settings);
    m_session->apply(addZoom(m_session->edits(), 5, 1.5));
    settle();
    EXPECT_EQ(plan().style.padding, 0.15);
    m_session->undo();
    m_session->undo();
    settle();
    EXPECT_EQ(m_settings.current().padding, padding);
    EXPECT_EQ(plan().style.padding, padding);
    m_session->redo();
    m_session->redo();
    EXPECT_EQ(m_session->edits().addedZooms.size(), 1U);
    EXPECT_FALSE(m_session->canRedo());
}

TEST_F(EditSessionTest, BadFilesLeaveASessionThatCanBeEdited)
{
    struct Case {
        const char* name;
        const char* file;
        std::string text;
    };
    const Case cases[] = {
        {"edits that are torn", "overrides.json", R"({"disabledZooms":[1,)"},
        {"edits that contradict each other",
         "overrides.json",
         R"({"disabledZooms":[],"zoomEdits":[{"sourceTime":1},{"sourceTime":1}]})"},
        {"a transcript that is torn", "transcript.json", "[{"},
        {"no events", "events.jsonl", ""},
        {"music that is none", "music.m4a", "x"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto path = bundle("bad.zento");
        writeFile(path / c.file, c.text);
        open(path);
        ASSERT_TRUE(m_session->isLoaded());
        EXPECT_EQ(m_session->edits(), SavedOverrides{});
        m_session->apply(addZoom(m_session->edits(), 5, 1.5));
        settle();
        ASSERT_TRUE(m_session->film());
        EXPECT_EQ(loadSavedOverrides(*m_session->bundle()).addedZooms.size(), 1U);
        open({});
        std::filesystem::remove_all(path);
    }
    QString failure;
    QObject::connect(&*m_session, &EditSession::loadFailed, [&](auto text) { failure = text; });
    open(m_folder / "gone.zento");
    EXPECT_TRUE(failure.contains("gone.zento"));
    EXPECT_FALSE(m_session->isLoaded());
}

TEST_F(EditSessionTest, ADeletedBundleIsNotMadeAnew)
{
    const auto path = bundle("a.zento");
    open(path);
    std::filesystem::remove_all(path);
    m_session->apply(addZoom(m_session->edits(), 5, 1.5));
    settle();
    EXPECT_TRUE(m_session->film());
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(EditSessionTest, AnEmptiedCaptionKeepsItsTimes)
{
    const auto path = bundle("a.zento");
    writeFile(path / "transcript.json", encodeTranscript({{1, 2, "one"}, {8, 9, "two"}}));
    open(path);
    EXPECT_EQ(m_session->film()->words.size(), 2U);
    m_session->setWord(0, " \n");
    m_session->setWord(1, "  Two ");
    m_session->setWord(2, "beyond");
    settle();
    const auto& words = m_session->film()->words;
    ASSERT_EQ(words.size(), 1U);
    EXPECT_EQ(words[0].text, "Two");
    EXPECT_EQ(words[0].index, 1);
    const auto saved = decodeTranscript(readFile(path / "transcript.json"));
    EXPECT_EQ(saved, (std::vector<TranscriptSegment>{{1, 2, ""}, {8, 9, "Two"}}));
}

TEST_F(EditSessionTest, ARandomHourOfEditsIsSavedAsItIsShown)
{
    const auto path = bundle("a.zento");
    open(path);
    test::Random random(21);
    for (int i = 0; i < 300; ++i) {
        const SavedOverrides& edits = m_session->edits();
        const double at = random.pick(std::array{3.0, 9.0, 15.0, 21.5, 40.0});
        switch (random.below(8)) {
        case 0:
            m_session->apply(addZoom(edits, at, 1.5));
            break;
        case 1:
            m_session->apply(moveZoom(edits, at, random.uniform(0, 60)));
            break;
        case 2:
            m_session->apply(resizeZoom(edits, at, random.uniform(0, 5)));
            break;
        case 3:
            m_session->apply(deleteZoom(edits, at));
            break;
        case 4:
            m_session->apply(toggleZoom(edits, at));
            break;
        case 5:
            m_session->undo();
            break;
        case 6:
            m_session->redo();
            break;
        default:
            m_session->apply(setZoomLevel(edits, at, 1.9));
            break;
        }
        m_clock.advance(std::chrono::milliseconds(random.below(2000)));
    }
    settle();
    const SavedOverrides shown = m_session->edits();
    const EditPlan planned = plan();
    while (m_session->canUndo())
        m_session->undo();
    EXPECT_EQ(m_session->edits(), SavedOverrides{});
    while (m_session->canRedo())
        m_session->redo();
    settle();
    open({});
    open(path);
    EXPECT_EQ(m_session->edits(), shown);
    EXPECT_EQ(plan(), planned);
}

} // namespace
} // namespace zento
