#include "FakeDesktop.h"
#include "TestSupport/DiskLimits.h"
#include "TestSupport/NumberedMovie.h"
#include "TestSupport/Sounds.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCapture/CaptureSession.h"
#include "ZentoCapture/Journal.h"
#include "ZentoCapture/Recovery.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/SessionBundle.h"
#include "ZentoMedia/WavWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace zento {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

namespace fs = std::filesystem;

/// False if it does not come to hold within a time that only a fault takes.
bool eventually(const std::function<bool()>& condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition() && std::chrono::steady_clock::now() < end) {
        std::this_thread::yield();
    }
    return condition();
}

/// Every file of a folder and its bytes.
std::map<std::string, std::string> filesOf(const fs::path& folder)
{
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::directory_iterator(folder)) {
        files[entry.path().filename().string()] = readFile(entry.path());
    }
    return files;
}

std::vector<std::string> namesOf(const fs::path& folder)
{
    std::vector<std::string> names;
    for (const auto& [name, bytes] : filesOf(folder)) {
        names.push_back(name);
    }
    return names;
}

/// All but the pointer's moves, which the poll adds at its own times.
std::vector<InputEvent> acts(const fs::path& bundle)
{
    auto events = SessionBundle::load(bundle).events;
    std::erase_if(events, [](const InputEvent& event) { return event.kind == EventKind::Move; });
    return events;
}

/// What `recover` throws: its code; -1 if it throws nothing.
int codeOfRecovering(const fs::path& bundle)
{
    try {
        recover(bundle);
    } catch (const Error& error) {
        EXPECT_THAT(error.what(), HasSubstr(bundle.string()));
        return error.code();
    }
    return -1;
}

class RecoveryTest : public testing::Test {
protected:
    static constexpr double kEpoch = 5000;

    fs::path bundle() const { return m_folder / "killed.zento"; }

    void show(FakeDesktop& desktop, double time)
    {
        desktop.frames(
            {.picture = {.data = m_pixels.data(), .width = 640, .height = 480, .stride = 2560},
             .time = time});
    }

    /// What a recording of three frames leaves that is killed when all of it has reached the disk.
    void leaveKilled(const std::map<SideFile, double>& starts = {}) const
    {
        fs::create_directories(bundle());
        EventNews news;
        for (int i = 0; i < 3; ++i) {
            news.events.push_back(
                {.t = kEpoch + 0.1 * i, .kind = EventKind::Scroll, .scroll = Vec2{0, 10.0 * i}});
        }
        std::string text = JournalText::facts(
            {.appName = "Editor", .pixelWidth = 64, .pixelHeight = 48, .scaleFactor = 2});
        text += JournalText::epoch(kEpoch) + JournalText::news(news);
        for (const auto& [file, time] : starts) {
            text += JournalText::start(file, time);
        }
        writeFile(journalURL(bundle()), text);
        test::writeGrowingRecording(
            bundle() / "screen.mov", {64, 48}, test::countedFrames(7, 3, 5));
    }

    void expectRecovered(const Recovery& recovery) const
    {
        EXPECT_EQ(recovery.outcome, Recovery::Outcome::Completed);
        EXPECT_EQ(recovery.frameCount, 3);
        EXPECT_NEAR(recovery.duration, 0.4, 1e-4);
        const SessionBundle loaded = SessionBundle::load(bundle());
        EXPECT_NEAR(loaded.meta.duration, 0.4, 1e-4);
        EXPECT_EQ(loaded.meta.scaleFactor, 2);
        ASSERT_EQ(loaded.events.size(), 3U);
        EXPECT_NEAR(loaded.events[2].t, 0.2, 1e-9);
        EXPECT_EQ(test::readNumbers(bundle() / "screen.mov").size(), 3U);
        EXPECT_FALSE(fs::exists(journalURL(bundle())));
    }

    test::TemporaryFolder m_folder;

private:
    std::vector<std::uint8_t> m_pixels = std::vector<std::uint8_t>(std::size_t{640} * 480 * 4);
};

TEST_F(RecoveryTest, aKilledRecordingBecomesWhatAStopWouldHaveMade)
{
    FakeDesktop desktop;
    const fs::path stopped = m_folder / "stopped.zento";
    CaptureSession session(stopped, desktop);
    session.start();
    desktop.input({.type = RawInputType::LeftDown, .time = kEpoch - 1, .point = {5, 5}});
    show(desktop, kEpoch);
    desktop.input({.type = RawInputType::LeftDown, .time = kEpoch + 0.3, .point = {30, 40}});
    show(desktop, kEpoch + 0.25);
    const auto journalHolds = [&](const std::string& text) {
        return eventually([&] { return readFile(journalURL(stopped)).contains(text); });
    };
    ASSERT_TRUE(journalHolds(R"("x":30)"));
    // The answer comes when the click is long written down.
    ASSERT_EQ(desktop.lookups.size(), 2U);
    desktop.lookups[1].second({.role = "AXButton", .title = "Save", .frame = {20, 30, 40, 20}});
    ASSERT_TRUE(journalHolds("Save"));
    ASSERT_TRUE(test::comesToHold(stopped / "screen.mov", 2));

    const auto before = filesOf(stopped);
    EXPECT_FALSE(isCutShort(stopped));
    EXPECT_EQ(codeOfRecovering(stopped), ErrorCode::kStillRecording);
    EXPECT_EQ(filesOf(stopped).at("screen.mov"), before.at("screen.mov"));
    // A kill leaves the files as they are.
    fs::copy(stopped, bundle());
    session.stop();
    EXPECT_TRUE(isCutShort(bundle()));
    EXPECT_EQ(recover(bundle()).outcome, Recovery::Outcome::Completed);

    EXPECT_THAT(namesOf(stopped), ElementsAre("events.jsonl", "meta.json", "screen.mov"));
    EXPECT_EQ(namesOf(bundle()), namesOf(stopped));
    const SessionMeta made = SessionBundle::load(stopped).meta;
    SessionMeta saved = SessionBundle::load(bundle()).meta;
    EXPECT_NEAR(saved.duration, made.duration, 1.0 / 60000); // a tick of the movie
    saved.duration = made.duration;
    EXPECT_EQ(saved, made);
    EXPECT_EQ(acts(bundle()), acts(stopped));
    ASSERT_EQ(acts(bundle()).size(), 1U);
    EXPECT_EQ(acts(bundle())[0].ax.value_or(AXInfo{}).title, "Save");

    const auto complete = filesOf(bundle());
    EXPECT_FALSE(isCutShort(bundle()));
    EXPECT_EQ(recover(bundle()).outcome, Recovery::Outcome::WasComplete);
    EXPECT_EQ(filesOf(bundle()), complete);
}

TEST_F(RecoveryTest, tooLittleIsSaidAndLeftAlone)
{
    const std::string facts = JournalText::facts({.pixelWidth = 64, .pixelHeight = 48});
    struct Case {
        const char* name;
        std::string file; // of a killed recording
        std::optional<std::string> bytes;
        int code;
    };
    const std::vector<Case> cases{
        {"no journal", "journal.jsonl", {}, ErrorCode::kNotRecoverable},
        {"empty journal", "journal.jsonl", "", ErrorCode::kNotRecoverable},
        {"torn first line", "journal.jsonl", facts.substr(0, 9), ErrorCode::kNotRecoverable},
        {"no frame yet", "journal.jsonl", facts, ErrorCode::kNotRecoverable},
        {"no movie", "screen.mov", {}, ENOENT},
        {"empty movie", "screen.mov", "", ErrorCode::kReadingFailed},
        {"no movie at all", "screen.mov", std::string(5000, 'x'), ErrorCode::kReadingFailed},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        fs::remove_all(bundle());
        leaveKilled();
        fs::remove(bundle() / row.file);
        if (row.bytes) {
            writeFile(bundle() / row.file, *row.bytes);
        }
        const auto before = filesOf(bundle());
        EXPECT_EQ(codeOfRecovering(bundle()), row.code);
        EXPECT_EQ(filesOf(bundle()), before);
    }
    EXPECT_EQ(codeOfRecovering(m_folder / "none.zento"), ENOENT);
}

TEST_F(RecoveryTest, goesOnWhereAnotherWasKilled)
{
    leaveKilled();
    fs::copy(bundle(), m_folder / "left");
    recover(bundle());
    const auto complete = filesOf(bundle());
    const auto torn = [&](const char* file) { return complete.at(file).substr(0, 60); };
    const std::vector<std::map<std::string, std::string>> states{
        {{"screen.mov", complete.at("screen.mov")}},
        {{"screen.mov", complete.at("screen.mov")}, {"meta.json", torn("meta.json")}},
        {{"screen.mov", complete.at("screen.mov")},
         {"meta.json", complete.at("meta.json")},
         {"events.jsonl", torn("events.jsonl")}},
        complete,
    };
    for (std::size_t i = 0; i < states.size(); ++i) {
        SCOPED_TRACE(i);
        fs::remove_all(bundle());
        fs::copy(m_folder / "left", bundle());
        for (const auto& [file, bytes] : states[i]) {
            writeFile(bundle() / file, bytes);
        }
        EXPECT_TRUE(isCutShort(bundle()));
        expectRecovered(recover(bundle()));
        EXPECT_EQ(filesOf(bundle()), complete);
    }
}

/// A sound that was not told its length, and ends in half a sample.
std::string cutSound(const fs::path& path)
{
    WavWriter writer(path, {.sampleRate = 48000, .channelCount = 2});
    const std::vector<float> channel(4800, 0.5F);
    const std::array<std::span<const float>, 2> block{channel, channel};
    writer.append(block);
    return readFile(path) + "x";
}

TEST_F(RecoveryTest, keepsTheSideFilesThatAreOfUse)
{
    leaveKilled({{SideFile::Narration, kEpoch + 0.5}, {SideFile::SystemAudio, kEpoch - 0.25}});
    writeFile(bundle() / "narration.wav", cutSound(m_folder / "sound.wav"));
    writeFile(bundle() / "system.wav", "RIFF");
    writeFile(
        bundle() / "webcam.mov", readFile(bundle() / "screen.mov")); // nobody knows since when
    const Recovery recovery = recover(bundle());

    EXPECT_THAT(recovery.lost, ElementsAre(SideFile::Webcam, SideFile::SystemAudio));
    EXPECT_THAT(
        namesOf(bundle()), ElementsAre("events.jsonl", "meta.json", "narration.wav", "screen.mov"));
    const SessionMeta meta = SessionBundle::load(bundle()).meta;
    EXPECT_EQ(meta.narrationOffset, 0.5);
    EXPECT_FALSE(meta.systemAudioOffset || meta.webcamOffset);
    EXPECT_EQ(test::readSound(bundle() / "narration.wav").at(0).size(), 4800U);
}

TEST_F(RecoveryTest, aCameraIsFinishedLikeTheScreen)
{
    leaveKilled({{SideFile::Webcam, kEpoch + 1}});
    writeFile(bundle() / "webcam.mov", readFile(bundle() / "screen.mov"));
    EXPECT_TRUE(recover(bundle()).lost.empty());
    EXPECT_EQ(SessionBundle::load(bundle()).meta.webcamOffset, 1);
    EXPECT_EQ(readFile(bundle() / "webcam.mov"), readFile(bundle() / "screen.mov"));
}

/// What a journal has set aside on a disk of its own, against its length: while it grows, and when
/// it is finished.
std::string roomOf(const fs::path& disk)
{
    const auto used = [&] {
        const auto space = fs::space(disk);
        return space.capacity - space.available;
    };
    Journal journal(disk, {.pixelWidth = 2, .pixelHeight = 4}, [told = false]() mutable {
        Journal::News news;
        news.events.events.resize(std::exchange(told, true) ? 0 : 5000);
        return news;
    });
    const auto length = [&] { return fs::file_size(journalURL(disk)); };
    const bool isLong = eventually([&] { return length() > 100'000; });
    std::string result = isLong && used() > 2 * length() ? "twice" : "no room";
    journal.finish();
    result += used() < length() + 10'000 ? ", given back" : ", not given back";
    return result;
}

TEST(JournalTest, keepsRoomForTheEventsOfABundleUntilItIsFinished)
{
    const auto room = test::onSmallDisk(8 << 20, roomOf);
    if (!room) {
        GTEST_SKIP() << "no filesystem of its own for a process here";
    }
    EXPECT_EQ(room.value_or(""), "twice, given back");
}

TEST(JournalTest, tornAnywhereItGivesWhatCameBefore)
{
    EventNews news;
    for (int i = 0; i < 6; ++i) {
        news.events.push_back({.t = 10.0 + i, .kind = EventKind::KeyDown, .key = "⌘/"});
    }
    news.found.push_back({2, {.role = "AXButton", .frame = {1, 2, 3, 4}}});
    const std::string text = JournalText::facts({.pixelWidth = 2, .pixelHeight = 4})
                             + JournalText::epoch(9) + JournalText::news(news);
    const JournalContents whole = decodeJournal(text);
    ASSERT_EQ(whole.events.size(), 6U);
    EXPECT_TRUE(whole.events[2].ax);
    for (std::size_t size = text.find('\n') + 1; size < text.size(); ++size) {
        SCOPED_TRACE(size);
        const JournalContents torn = decodeJournal(text.substr(0, size) + std::string(9, '\0'));
        const auto lines = std::ranges::count(text.substr(0, size), '\n');
        const auto events = std::clamp<std::ptrdiff_t>(lines - 2, 0, 6);
        EXPECT_EQ(torn.events.size(), static_cast<std::size_t>(events));
        EXPECT_TRUE(std::ranges::all_of(
            torn.events, [](const InputEvent& event) { return event.key == "⌘/"; }));
    }
}

} // namespace
} // namespace zento
