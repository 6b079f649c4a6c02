#include "ZentoApplication/RunningZento.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zento::test {

namespace {

const std::vector<std::string> kRecordKeys{"Super_L", "Alt_L", "r"};
const ElementQuery kStop = RunningZento::element("push button", "Stop", "Zento is recording");
const ElementQuery kRecord = RunningZento::element("push button", "Record");
const ElementQuery kAnyRecording = RunningZento::element("list item", "");

constexpr auto kWelcomed = "[General]\nwelcomeShown=true\n";

std::size_t countKeys(const SessionBundle& bundle)
{
    return static_cast<std::size_t>(
        std::ranges::count(bundle.events, EventKind::KeyDown, &InputEvent::kind));
}

} // namespace

TEST(Application, RecordsExportsRenamesAndTrashesAsAPersonDoes)
{
    // A file manager of the machine's own would take the keyboard.
    RunningZento zento(R"({"revealAfterExport": false})");
    zento.await(RunningZento::element("push button", "Record screen"));
    zento.press({"Escape"}); // the welcome
    zento.press(kRecordKeys);
    zento.await(RunningZento::element("push button", "Cancel", "Zento countdown"));
    EXPECT_FALSE(zento.isShown(kRecord)) << "the window is in the picture";
    zento.await(kStop);
    zento.click(RunningZento::editor());
    zento.type("What is typed shows in the film.");
    zento.click(kStop);

    zento.await(kAnyRecording);
    ASSERT_EQ(zento.recordings().size(), 1U);
    const std::filesystem::path folder = zento.recordings().front();
    const SessionBundle bundle = SessionBundle::load(folder);
    EXPECT_GT(bundle.meta.duration, 2);
    EXPECT_EQ(bundle.meta.appName, "L3afpad");
    EXPECT_GE(countKeys(bundle), 30U);
    EXPECT_FALSE(zento.isShown(kStop));

    zento.click(RunningZento::element("push button", "Export"));
    zento.await(RunningZento::element("push button", "Change…"));
    zento.press({"Return"});
    RunningZento::await(
        [&] { return std::filesystem::exists(bundle.filmURL()); }, "The film does not appear");

    // By the menu: a key sent after a click overtakes it while the window manager holds the click.
    zento.choose(kAnyRecording, RunningZento::element("menu item", "Rename"));
    zento.await(RunningZento::element("text", "New name"));
    zento.type("A first try");
    zento.press({"Return"});
    zento.await(RunningZento::element("list item", "A first try"));
    EXPECT_EQ(SessionBundle::load(folder).meta.title, "A first try");

    zento.press({"Delete"});
    zento.click(RunningZento::element("push button", "Move to Trash"));
    RunningZento::await(
        [&] {
            return std::filesystem::exists(zento.trash() / folder.filename())
                   && std::filesystem::exists(zento.trash() / bundle.filmURL().filename());
        },
        "The recording and its film do not go to the trash");
    EXPECT_TRUE(zento.recordings().empty());
    zento.await(RunningZento::element("label", "No recordings yet"));
}

TEST(Application, WritesARecordingThatTheEndOfTheSessionInterrupts)
{
    RunningZento zento(R"({"countdownSeconds": 0})", kWelcomed);
    zento.press(kRecordKeys);
    zento.await(kStop);
    zento.click(RunningZento::editor());
    zento.terminate();
    ASSERT_EQ(zento.recordings().size(), 1U);
    EXPECT_GT(SessionBundle::load(zento.recordings().front()).meta.duration, 0);
}

TEST(Application, ASecondStartBringsTheFirstToTheFront)
{
    RunningZento zento(R"({"countdownSeconds": 0})", kWelcomed);
    zento.click(RunningZento::editor());
    const pid_t second = zento.startAnother();
    RunningZento::await([&] { return !ProcessGroup::isRunning(second); }, "Two of them run");
    zento.press({"Control_L", "8"}); // goes to the window in front
    zento.await(RunningZento::element("label", "Permissions"));
}

} // namespace zento::test
