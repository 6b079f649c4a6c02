#include "EditorFixture.h"
#include "TestSupport/Sounds.h"
#include "Zento/Model/MusicTrack.h"
#include "Zento/Model/PlannedFilm.h"
#include "ZentoMedia/AacWriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace zento {
namespace {

constexpr int kRate = 44100;

/// A click every half second.
void writeClicks(const std::filesystem::path& file, double seconds)
{
    const auto click = [](double t) {
        const double since = std::fmod(t, 0.5);
        return since < 0.02 ? 0.8 * std::sin(since * 600) * (1 - since / 0.02) : 0;
    };
    const auto sound = test::sampled(click, kRate, static_cast<std::size_t>(seconds * kRate));
    AacWriter writer(file, {.sampleRate = kRate, .bitRate = 128000});
    writer.append(sound, sound);
    writer.finish();
}

class MusicTrackTest : public test::EditorTest {
protected:
    MusicTrackTest()
    {
        m_track.setWidth(300);
        const auto made = bundle("a.zento");
        writeClicks(made / "music.m4a", 30);
        open(made);
        settle();
    }

    MusicTrack m_track{*m_session, m_files};
};

TEST_F(MusicTrackTest, ShowsTheTrackAndItsBeats)
{
    EXPECT_NEAR(m_track.duration(), 30, 0.1);
    EXPECT_NEAR(m_track.bpm(), 120, 2);
    ASSERT_EQ(m_track.levels().size(), MusicTrack::kBins);
    EXPECT_GT(*std::ranges::max_element(m_track.levels()), 0.3);
    ASSERT_GT(m_track.beats().size(), 10);
    for (qsizetype i = 1; i < m_track.beats().size(); ++i)
        EXPECT_GE(m_track.beats()[i] - m_track.beats()[i - 1], 6);
}

TEST_F(MusicTrackTest, TheSectionIsOneStepThatUndoesAndReachesTheFilm)
{
    m_track.press(0);
    for (double x = 10; x <= 50; x += 10)
        m_track.drag(x);
    m_track.release();
    EXPECT_NEAR(m_track.startX(), 50, 1e-6);
    EXPECT_EQ(m_session->undoName(), "Music Section");
    settle();
    ASSERT_TRUE(plan().music);
    EXPECT_NEAR(plan().music->sourceOffset, 5, 0.3); // the nearest beat
    settle();
    m_track.press(290);
    m_track.drag(200);
    m_track.cancelDrag();
    EXPECT_EQ(m_track.endX(), 300);
    m_track.nudge("end", -10);
    m_track.nudge("sideways", -10);
    settle();
    EXPECT_NEAR(plan().music->playDuration.value_or(0), 20 - plan().music->sourceOffset, 0.1);
    m_session->undo();
    m_session->undo();
    m_session->undo();
    EXPECT_FALSE(m_track.isChosen());
    EXPECT_FALSE(m_session->canUndo());
    m_session->redo();
    EXPECT_TRUE(m_track.isChosen());
}

TEST_F(MusicTrackTest, OtherMusicStartsWhole)
{
    m_track.nudge("start", 5);
    settle();
    writeClicks(m_session->bundlePath() / "music.m4a", 12);
    m_session->reloadMusic();
    EXPECT_EQ(m_session->edits().musicStart, 0);
    EXPECT_EQ(m_session->undoName(), "Music Section");
    EXPECT_TRUE(m_session->isRenderStale());
    EXPECT_NEAR(m_track.duration(), 12, 0.1);
    std::filesystem::remove(m_session->bundlePath() / "music.m4a");
    m_session->reloadMusic();
    EXPECT_EQ(m_track.duration(), 0);
    EXPECT_TRUE(m_track.levels().isEmpty());
    settle();
    EXPECT_FALSE(plan().music);
}

TEST_F(MusicTrackTest, TheFilmsCutsAreMarkedWhereTheyMeetABeat)
{
    const auto film = m_session->film();
    ASSERT_GT(film->cuts.size(), 3U);
    ASSERT_GT(film->beats.size(), 10U);
    const double period = m_session->music()->grid.period;
    int onBeat = 0;
    for (const CutMark& cut : film->cuts) {
        const double t = film->film->curve->outputTime(cut.cutAfter);
        const bool isNear = std::abs(t - std::round(t / period) * period) < 0.01;
        const bool isHeard = t < 30; // the track's length
        EXPECT_EQ(cut.isOnBeat, isNear && isHeard) << t;
        onBeat += cut.isOnBeat ? 1 : 0;
    }
    EXPECT_GT(onBeat, 0);

    // Under a title card the music has begun before, and the beats lie elsewhere.
    AppSettings settings = m_settings.current();
    settings.titleCard = true;
    settings.cardSeconds = 2 * period + 0.1;
    m_settings.replace(settings);
    settle();
    EXPECT_NEAR(m_session->film()->beats.front(), period - 0.1, 1e-6);

    // Beats of the trimmed film, on the strip that shows the trim.
    settings.titleCard = false;
    m_settings.replace(settings);
    SavedOverrides edits = m_session->edits();
    edits.trimStart = 20;
    m_session->apply({edits, EditName::kTrim});
    settle();
    EXPECT_NEAR(
        m_session->film()->beats.front(), m_session->film()->timelineCurve->outputTime(20), 0.2);
}

} // namespace
} // namespace zento
