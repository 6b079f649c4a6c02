#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/SessionBundle.h"
#include "ZentoCore/UserFolders.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace zento {
namespace {

namespace fs = std::filesystem;

class BundleFolder : public testing::Test {
protected:
    fs::path bundleURL() const { return m_folder / "a.zento"; }

    SessionBundle bundle() const
    {
        SessionBundle result{bundleURL(), {}, {}};
        result.meta.pixelWidth = 640;
        result.meta.pixelHeight = 480;
        result.meta.scaleFactor = 2;
        result.meta.nominalFPS = 60;
        result.meta.duration = 3.5;
        result.events.push_back({.t = 0, .kind = EventKind::Move, .pos = {-1.5, 2}});
        result.events.push_back({.t = 0.5, .kind = EventKind::KeyDown, .pos = {1, 2}, .key = "⌘/"});
        return result;
    }

    std::string loadError() const
    {
        try {
            SessionBundle::load(bundleURL());
        } catch (const Error& error) {
            return error.what();
        }
        return "";
    }

    test::TemporaryFolder m_folder;
};

InputEvent saveClick()
{
    InputEvent click{.t = 3.2104, .kind = EventKind::Click, .pos = {371.5, 118}};
    click.button = 0;
    click.ax = AXInfo{"AXButton", {310, 96, 120, 44}, "Save"};
    return click;
}

TEST(Jsonl, aLineReadsAsDocumented)
{
    EXPECT_EQ(
        JSONL::encode({saveClick()}),
        R"({"ax":{"frame":{"h":44,"w":120,"x":310,"y":96},"role":"AXButton","title":"Save"},)"
        R"("button":0,"kind":"click","pos":{"x":371.5,"y":118},"t":3.2104})"
        "\n");
    EXPECT_EQ(JSONL::encode({}), "");
    EXPECT_TRUE(JSONL::decode("").empty());
}

TEST(Jsonl, everyKindAndFieldSurvives)
{
    std::vector<InputEvent> events{saveClick()};
    for (const auto kind :
         {EventKind::MouseUp, EventKind::Move, EventKind::DragStart, EventKind::DragEnd}) {
        events.push_back({.t = 1.0 / 3, .kind = kind, .pos = {0.1, -7}});
    }
    events.push_back({.t = 2, .kind = EventKind::Scroll, .pos = {1, 1}, .scroll = Vec2{0, -20}});
    events.push_back({.t = 2, .kind = EventKind::KeyDown, .pos = {1, 1}, .key = ""});
    EXPECT_EQ(JSONL::decode(JSONL::encode(events)), events);
}

TEST(Jsonl, linesMayBeBlankOrUnendedButNotTorn)
{
    const std::string line = R"({"kind":"move","pos":{"x":1,"y":2},"t":0})";
    EXPECT_EQ(JSONL::decode("\n\n" + line + "\n\n" + line).size(), 2U);
    for (const std::string& bad :
         {line.substr(0, line.size() - 3),
          line + line,
          std::string("   "),
          std::string(R"({"kind":"jump","pos":{"x":1,"y":2},"t":0})")}) {
        try {
            JSONL::decode(line + "\n" + bad);
            ADD_FAILURE() << bad;
        } catch (const Error& error) {
            EXPECT_EQ(std::string(error.what()).substr(0, 6), "line 2") << error.what();
        }
    }
}

TEST_F(BundleFolder, writesWhatItLoads)
{
    const SessionBundle written = bundle();
    written.writeMetadata();
    const SessionBundle loaded = SessionBundle::load(bundleURL());
    EXPECT_EQ(loaded.meta, written.meta);
    EXPECT_EQ(loaded.events, written.events);
    EXPECT_EQ(loaded.filmURL(), m_folder / "a.mp4");
    EXPECT_EQ((SessionBundle{bundleURL() / "", {}, {}}).filmURL(), m_folder / "a.mp4");
    EXPECT_NE(readFile(loaded.eventsURL()).find("⌘/"), std::string::npos);
}

TEST_F(BundleFolder, aFileThatIsMissingOrBrokenIsNamed)
{
    EXPECT_NE(loadError().find("meta.json: No such file"), std::string::npos) << loadError();
    bundle().writeMetadata();
    std::ofstream(bundleURL() / "events.jsonl", std::ios::app) << "{\"t\":1";
    EXPECT_NE(loadError().find("events.jsonl: line 3: not valid"), std::string::npos);
    fs::remove(bundleURL() / "events.jsonl");
    EXPECT_NE(loadError().find("events.jsonl: No such file"), std::string::npos);
    fs::remove_all(bundleURL());
    std::ofstream(bundleURL()) << "a file";
    EXPECT_NE(loadError().find("is a file"), std::string::npos);
}

TEST(WritingFiles, reportsAFullDisk)
{
    EXPECT_THROW(writeFile("/dev/full", "x"), Error);
    EXPECT_THROW(readFile("/"), Error);
}

TEST(BundleNames, areTheUtcTimeOfTheStart)
{
    const std::chrono::sys_seconds start = std::chrono::sys_days(std::chrono::year(2026) / 3 / 9)
                                           + std::chrono::hours(14) + std::chrono::minutes(5)
                                           + std::chrono::seconds(33);
    EXPECT_EQ(bundleName(start), "2026-03-09T14-05-33Z.zento");
}

TEST(UserDirectories, followTheFileFormat)
{
    const std::string text = "# comment\n"
                             "XDG_MUSIC_DIR=\"$HOME/Musik\"\n"
                             "XDG_VIDEOS_DIR=\"$HOME/Meine \\\"Filme\\\"\"\n";
    EXPECT_EQ(userDirectory(text, "XDG_VIDEOS_DIR", "/home/u"), "/home/u/Meine \"Filme\"");
    EXPECT_EQ(userDirectory("XDG_VIDEOS_DIR=\"/media/v\"", "XDG_VIDEOS_DIR", "/h"), "/media/v");
    EXPECT_EQ(userDirectory("XDG_VIDEOS_DIR=\"v\"", "XDG_VIDEOS_DIR", "/h"), "");
    EXPECT_EQ(userDirectory("", "XDG_VIDEOS_DIR", "/h"), "");
}

TEST(UsableFrames, haveLimitsThatAreInclusive)
{
    SessionMeta meta;
    meta.pixelWidth = 1000;
    meta.pixelHeight = 500;
    struct Case {
        Rect frame;
        bool usable;
    };
    for (const auto& [frame, usable] : std::initializer_list<Case>{
             {{0, 0, 8, 8}, true},
             {{0, 0, 7.9, 8}, false},
             {{0, 0, 600, 300}, true},
             {{0, 0, 600.1, 300}, false},
             {{0, 0, 600, 300.1}, false},
             {{-50, 0, 50, 20}, true},
             {{-51, 0, 50, 20}, false},
             {{1000, 0, 50, 20}, true},
             {{1000.1, 0, 50, 20}, false},
             {{0, 505, 50, 20}, true},
             {{0, 506, 50, 20}, false}}) {
        const AXInfo info{"AXButton", frame, {}};
        EXPECT_EQ(info.usableFrame(meta).has_value(), usable) << frame.x << " " << frame.w;
    }
}

TEST(Rects, growByAFractionOfTheirSize)
{
    EXPECT_EQ((Rect{10, 10, 100, 40}.insetBy(0.25)), (Rect{-15, 0, 150, 60}));
}

} // namespace
} // namespace zento
