#include "ModelFakes.h"
#include "TestSupport/Sounds.h"
#include "TestSupport/TemporaryFolder.h"
#include "Zento/Model/RecordingMusic.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"

#include <gtest/gtest.h>

namespace zento {
namespace {

class RecordingMusicTest : public ::testing::Test {
protected:
    RecordingMusicTest()
    {
        makeFolder(m_folder / "one.zento");
        makeFolder(m_folder / "two.zento");
        test::writeWav(m_folder / "song.wav", 8000, {test::tone(440, 8000, 16000)});
        writeFile(m_folder / "page.mp3", "<html>");
        m_music.open(bundle("one"));
        QObject::connect(&m_music, &RecordingMusic::fileChanged, [this] { ++m_changes; });
    }

    QString bundle(const std::string& name) const
    {
        return QString::fromStdString(m_folder / (name + ".zento"));
    }
    QString file(const std::string& name) const { return QString::fromStdString(m_folder / name); }
    std::filesystem::path credit() const { return m_folder / "one.zento/music-credit.txt"; }
    bool hasMusic(const std::string& name) const
    {
        return std::filesystem::exists(m_folder / (name + ".zento/music.m4a"));
    }

    RecordingMusic::Sources sources()
    {
        return {
            .made =
                [this](const auto&, const auto& progress, const auto&) {
                    progress(0.5);
                    return m_folder / "song.wav";
                },
            .search =
                [this](const auto&, const auto&) {
                    if (m_isOffline)
                        throw Error(ErrorCode::kNetworkFailed, "no answer");
                    return m_found;
                },
            .download =
                [this](const OnlineTrack& track, const auto&) {
                    if (track.url.empty())
                        throw Error(ErrorCode::kDownloadFailed, "download failed");
                    return m_folder / track.url;
                },
            .credit =
                [](const OnlineTrack& track) {
                    return "Credit of " + track.id + "\nCC BY\nSource: http://x";
                },
            .play =
                [this](const OnlineTrack& track, const auto& onHeard, const auto& stop) {
                    const std::size_t at = m_played.size();
                    m_played.push_back(track.id);
                    if (track.url.empty())
                        throw Error(ErrorCode::kNetworkFailed, "no answer");
                    onHeard();
                    if (m_meanwhile)
                        m_meanwhile();
                    m_played[at] += stop.stop_requested() ? " stopped" : " to its end";
                }};
    }

    test::TemporaryFolder m_folder;
    test::FakeClock m_clock;
    test::FakeWorker m_worker;
    test::FakeWorker m_player;
    Messages m_messages{m_clock};
    bool m_isOffline = false;
    std::vector<std::string> m_played;
    std::function<void()> m_meanwhile; // while a track plays
    std::vector<OnlineTrack> m_found = {
        {.id = "a", .title = "Dawn", .duration = 61000, .url = "song.wav", .license = "by"},
        {.id = "b", .license = "cc0"},
        {.id = "c", .url = "page.mp3", .license = "by"}};
    int m_changes = 0;
    RecordingMusic m_music{{m_clock, m_worker, m_player, m_messages, sources()}};
};

TEST_F(RecordingMusicTest, aFileOfTheUsersBecomesTheMusic)
{
    m_music.useFile(file("song.wav"));
    EXPECT_EQ(m_music.name(), "song.wav");
    EXPECT_DOUBLE_EQ(m_music.duration(), 2);
    EXPECT_TRUE(hasMusic("one"));
    // One that is no sound changes nothing.
    m_music.useFile(file("page.mp3"));
    EXPECT_TRUE(m_messages.errorMessage().startsWith("Could not copy music: "));
    EXPECT_EQ(m_music.name(), "song.wav");
    EXPECT_EQ(m_changes, 1);
    m_music.open(bundle("two"));
    EXPECT_EQ(m_music.name(), "");
    m_music.open(bundle("one"));
    EXPECT_EQ(m_music.name(), "Music track added");
    m_music.remove();
    EXPECT_EQ(m_music.name(), "");
    EXPECT_FALSE(hasMusic("one"));
    EXPECT_EQ(m_changes, 2);
}

TEST_F(RecordingMusicTest, aTrackMadeHereShowsItsProgress)
{
    m_worker.isHeld = true;
    m_music.useMade("glide");
    m_music.useMade("no such");
    EXPECT_EQ(m_music.library().at(1).toMap()["progress"], 0);
    EXPECT_EQ(m_music.library().at(0).toMap()["progress"], -1);
    m_worker.release();
    EXPECT_EQ(m_music.library().at(1).toMap()["progress"], -1);
    EXPECT_EQ(m_music.name(), "Glide");
    EXPECT_EQ(m_music.usedTrackID(), "glide");
}

TEST_F(RecordingMusicTest, aFoundTrackIsCreditedUntilOtherMusicTakesItsPlace)
{
    m_music.runSearch("dawn");
    ASSERT_EQ(m_music.results().size(), 3);
    EXPECT_EQ(m_music.results().at(0).toMap()["duration"], "1:01");
    EXPECT_EQ(m_music.results().at(1).toMap()["title"], "Untitled");
    EXPECT_EQ(m_music.results().at(1).toMap()["creator"], "Unknown");
    m_music.useFound("a");
    EXPECT_EQ(m_music.note(), "“Dawn” — credit saved with the recording");
    EXPECT_EQ(m_music.usedTrackID(), "a");
    EXPECT_TRUE(readFile(credit()).starts_with("Credit of a\n"));
    EXPECT_EQ(m_music.credit(), "Credit of a\nCC BY\nSource: http://x");
    EXPECT_EQ(m_music.creditLine(), "Music: Credit of a · CC BY");
    m_music.useFound("b");
    EXPECT_EQ(m_music.note(), "Download failed — try another track");
    EXPECT_EQ(m_music.usedTrackID(), "a");
    m_music.useFound("c"); // what came is no sound
    EXPECT_EQ(m_music.note(), "");
    EXPECT_EQ(m_music.usingTrackID(), "");
    EXPECT_TRUE(readFile(credit()).starts_with("Credit of a\n"));
    m_music.useFile(file("song.wav"));
    EXPECT_FALSE(std::filesystem::exists(credit()));
    EXPECT_EQ(m_music.credit(), "");
    EXPECT_EQ(m_music.creditLine(), "");
}

TEST_F(RecordingMusicTest, aFoundTrackIsHeardOneAtATime)
{
    m_music.runSearch("x");
    m_music.togglePreview("a");
    EXPECT_EQ(m_played.back(), "a to its end");
    EXPECT_EQ(m_music.previewingID(), "");
    m_music.togglePreview("b");
    EXPECT_EQ(m_music.note(), "Could not play this track");
    m_music.togglePreview("no such");
    EXPECT_EQ(m_played.size(), 2U);

    struct Case {
        const char* name;
        std::function<void()> does;
        QString previewed; // afterwards
    };
    const std::vector<Case> cases = {
        {"once more", [this] { m_music.togglePreview("a"); }, ""},
        {"another one", [this] { m_music.togglePreview("c"); }, "c"},
        {"it is used", [this] { m_music.useFound("a"); }, ""},
        {"another search", [this] { m_music.runSearch("y"); }, ""},
        {"the sheet is closed", [this] { m_music.endSearch(); }, ""},
        {"another recording", [this] { m_music.open(bundle("two")); }, ""}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        m_music.open(bundle("one"));
        m_music.runSearch("x");
        m_meanwhile = [&] {
            EXPECT_EQ(m_music.previewingID(), "a");
            EXPECT_FALSE(m_music.isPreviewHeard());
            m_clock.advance(std::chrono::milliseconds(200));
            EXPECT_TRUE(m_music.isPreviewHeard());
            m_meanwhile = nullptr;
            c.does();
            EXPECT_EQ(m_music.previewingID(), c.previewed);
            EXPECT_FALSE(m_music.isPreviewHeard());
        };
        m_played.clear();
        m_music.togglePreview("a");
        EXPECT_EQ(m_played.at(0), "a stopped");
        EXPECT_EQ(m_played.size(), c.previewed.isEmpty() ? 1U : 2U);
        EXPECT_EQ(m_music.previewingID(), "");
    }
}

TEST_F(RecordingMusicTest, aSearchSaysWhatCameOfIt)
{
    m_isOffline = true;
    m_music.runSearch("x");
    EXPECT_EQ(m_music.note(), "Search failed — try again");
    m_isOffline = false;
    m_found.clear();
    m_music.runSearch("x");
    EXPECT_EQ(m_music.note(), "No results — try different words");
    EXPECT_FALSE(m_music.isSearching());
    m_music.runSearch("  ");
    EXPECT_EQ(m_music.note(), "");
}

TEST_F(RecordingMusicTest, whatCameTooLateIsForgotten)
{
    m_worker.isHeld = true;
    m_music.runSearch("x");
    m_music.endSearch();
    m_worker.release();
    EXPECT_TRUE(m_music.results().isEmpty());
    m_worker.isHeld = true;
    m_music.useMade("pulse");
    m_music.open(bundle("two"));
    m_worker.release();
    // It still went where it was meant for.
    EXPECT_TRUE(hasMusic("one"));
    EXPECT_FALSE(hasMusic("two"));
    EXPECT_EQ(m_music.name(), "");
}

} // namespace
} // namespace zento
