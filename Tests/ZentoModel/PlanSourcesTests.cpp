#include "TestSupport/Sounds.h"
#include "TestSupport/TemporaryFolder.h"
#include "Zento/Model/PlanSources.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"

#include <gtest/gtest.h>

namespace zento {
namespace {

class PlanSources : public testing::Test {
protected:
    PlanSources()
    {
        m_bundle.url = m_folder.path();
        m_bundle.meta = {.pixelWidth = 1280, .pixelHeight = 720, .duration = 30};
        m_bundle.meta.narrationOffset = 0.25;
    }

    EditPlanner::PlanInput gathered(const AppSettings& settings = {}) const
    {
        return gatherPlanInput(m_bundle, settings, loadSavedOverrides(m_bundle), {});
    }

    test::TemporaryFolder m_folder;
    SessionBundle m_bundle;
};

TEST_F(PlanSources, aBareBundleHasNoTracksAnalysesOrEdits)
{
    const auto input = gathered();
    EXPECT_TRUE(input.transcript.empty());
    EXPECT_TRUE(input.framingHints.empty());
    EXPECT_FALSE(input.semantics || input.narration || input.webcam || input.systemAudio);
    EXPECT_TRUE(input.overrides.isEmpty());
    EXPECT_EQ(input.output, (OutputSpec{1920, 1080, 60}));
}

TEST_F(PlanSources, aTrackExistsWhenItsFileDoes)
{
    writeFile(m_bundle.narrationURL(), "");
    writeFile(m_bundle.webcamURL(), "");
    AppSettings settings;
    settings.narrationGainDb = -4;
    settings.webcamCorner = "topRight";
    const auto input = gathered(settings);
    EXPECT_EQ(input.narration, (NarrationPlan{m_bundle.narrationURL().string(), 0.25, -4}));
    EXPECT_EQ(input.webcam->corner, "topRight");
    EXPECT_EQ(input.webcam->offset, 0);
}

TEST_F(PlanSources, withoutCaptionsTheSpeechStaysAndTheTextGoes)
{
    writeFile(m_bundle.transcriptURL(), encodeTranscript({{1, 2, "hello"}, {3, 4, "there"}}));
    AppSettings settings;
    settings.showCaptions = false;
    EXPECT_EQ(gathered().transcript.front().text, "hello");
    EXPECT_EQ(
        gathered(settings).transcript, (std::vector<TranscriptSegment>{{1, 2, ""}, {3, 4, ""}}));
}

TEST_F(PlanSources, brokenFilesCountAsAbsentButContradictionsDoNot)
{
    writeFile(m_bundle.transcriptURL(), "[{");
    writeFile(m_bundle.semanticsURL(), R"({"heroSourceTime":1})");
    writeFile(m_bundle.overridesURL(), R"({"trimStart":2})");
    EXPECT_TRUE(gathered().transcript.empty());
    EXPECT_FALSE(gathered().semantics.has_value());
    EXPECT_TRUE(gathered().overrides.isEmpty());
    writeFile(
        m_bundle.overridesURL(),
        R"({"disabledZooms":[],"zoomEdits":[{"sourceTime":1},{"sourceTime":1}]})");
    EXPECT_THROW(gathered(), Error);
    writeFile(m_bundle.overridesURL(), R"({"disabledZooms":[],"trimEnd":20})");
    EXPECT_EQ(gathered().overrides.removedRanges.front().end, 31);
}

TEST_F(PlanSources, theStoryIsLeftOutOnRequest)
{
    writeFile(m_bundle.semanticsURL(), R"({"chapters":[]})");
    AppSettings settings;
    EXPECT_TRUE(gathered(settings).semantics.has_value());
    settings.semanticEdit = false;
    EXPECT_FALSE(gathered(settings).semantics.has_value());
}

TEST_F(PlanSources, musicIsHeardForItsBeatsWithinTheSavedWindow)
{
    EXPECT_FALSE(analyzedMusic(m_bundle, {}));
    test::writeWav(m_bundle.musicURL(), 44100, {test::noise(1, 44100)});
    const auto music = analyzedMusic(m_bundle, {.musicStart = 3, .musicEnd = 9});
    ASSERT_TRUE(music);
    EXPECT_EQ(music->file, m_bundle.musicURL().string());
    EXPECT_EQ(music->start, 3);
    EXPECT_EQ(music->end, 9);
    EXPECT_EQ(music->grid.duration, 1);
    writeFile(m_bundle.musicURL(), "not a song");
    EXPECT_THROW(analyzedMusic(m_bundle, {}), Error);
}

} // namespace
} // namespace zento
