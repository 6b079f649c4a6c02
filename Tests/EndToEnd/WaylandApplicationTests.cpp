#include "DesktopTest.h"
#include "WaylandStage/AccessibleHand.h"
#include "WaylandStage/WaylandStage.h"
#include "WaylandStage/WaylandUser.h"
#include "ZentoCapture/Desktop.h"
#include "ZentoCapture/Journal.h"
#include "ZentoCapture/ScreenshotTool.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/SessionBundle.h"
#include "ZentoImaging/Canvas.h"
#include "ZentoMedia/VideoDecoder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace zento {
namespace {

using test::AccessibleHand;
using test::WaylandStage;
using test::WaylandUser;

/// The window's own program on a Wayland desktop, in front of another that fills the screen.
class WaylandApplicationTest : public testing::Test {
protected:
    WaylandApplicationTest()
    {
        // Without a file manager's window, and without a pause in which nothing is asked.
        const auto config = m_stage.home() / ".config/Zento";
        std::filesystem::create_directories(config);
        writeFile(config / "settings.json", R"({"countdownSeconds": 0})");
        m_stage.setScale(1);
        m_stage.startClient();
        m_zento = m_stage.start("zento.log", {ZENTO_PROGRAM});
    }

    void TearDown() override
    {
        ::kill(m_zento, SIGTERM);
        EXPECT_TRUE(eventually([&] { return !ProcessGroup::isRunning(m_zento); }));
    }

    std::vector<std::filesystem::path> recordings() const
    {
        std::vector<std::filesystem::path> bundles;
        const auto folder = m_stage.home() / "Videos/Zento";
        if (std::filesystem::exists(folder)) {
            for (const auto& entry : std::filesystem::directory_iterator(folder))
                bundles.push_back(entry.path());
        }
        return bundles;
    }

    /// Whether the pointer is in a recording that runs.
    bool hasSeenPointer() const
    {
        return std::ranges::any_of(recordings(), [](const std::filesystem::path& bundle) {
            const auto journal = journalURL(bundle);
            return std::filesystem::exists(journal) && readFile(journal).contains("move");
        });
    }

    WaylandStage m_stage;
    WaylandUser m_user{m_stage};
    AccessibleHand m_hand{m_stage};
    pid_t m_zento = 0;
};

/// Less than the application's window has, more than the client shows.
constexpr std::ptrdiff_t kWindow = 100'000;

constexpr int kBright = 600; // of 64 to 940

std::ptrdiff_t brightPixels(const VideoFrame& frame)
{
    const auto& luma = frame.planes10().y;
    std::ptrdiff_t count = 0;
    for (int y = 0; y < luma.height; ++y)
        count += std::count_if(
            luma.row(y), luma.row(y) + luma.width, [](auto value) { return value > kBright; });
    return count;
}

std::ptrdiff_t brightPixels(const Canvas& picture)
{
    const auto pixels = picture.pixels();
    std::ptrdiff_t count = 0;
    for (int y = 0; y < picture.height(); ++y)
        count += std::count_if(pixels.row(y), pixels.row(y) + picture.width(), [](auto value) {
            return (value >> 8U & 0xFFU) > 0xC0U; // its green
        });
    return count;
}

/// What the monitor shows now.
std::shared_ptr<const Canvas> screen()
{
    const auto desktop = openDesktop();
    return ScreenshotTool::capture(*desktop, Target::Screen{0}).image;
}

TEST_F(WaylandApplicationTest, RecordsWhatTheDesktopsDialogIsAnsweredWithAndNothingOfItself)
{
    m_hand.press("push button", "Look around"); // away from the welcome
    m_stage.answer("no");
    m_hand.press("push button", "Record");
    EXPECT_TRUE(eventually([&] { return m_hand.isShown("", "Could not start recording: .*"); }))
        << m_hand.everything();

    m_stage.answer("yes");
    const unsigned dialogs = m_stage.dialogs();
    m_hand.press("push button", "Record");
    ASSERT_TRUE(eventually([&] {
        m_user.move(1200, 700);
        return hasSeenPointer();
    }));
    EXPECT_EQ(m_stage.dialogs(), dialogs + 1);

    // Nothing floats that would be in the film: the program, started once more, shows what ends it.
    m_stage.start("again.log", {ZENTO_PROGRAM});
    ASSERT_TRUE(eventually([&] { return brightPixels(*screen()) > kWindow; }));
    m_hand.press("push button", "Stop");
    ASSERT_TRUE(eventually([&] { return m_hand.isShown("frame", ".+ — Zento"); })) // the film
        << m_hand.everything();
    ASSERT_EQ(recordings().size(), 1U);
    const SessionBundle bundle = SessionBundle::load(recordings().front());
    EXPECT_EQ(bundle.meta.pixelWidth, WaylandStage::kWidth);
    EXPECT_EQ(bundle.meta.pixelHeight, WaylandStage::kHeight);
    EXPECT_TRUE(bundle.meta.hasPointerOnly());
    std::vector<bool> showsWindow;
    for (VideoDecoder decoder(bundle.screenMovieURL()); const auto frame = decoder.next();)
        showsWindow.push_back(brightPixels(*frame) > kWindow);
    ASSERT_FALSE(showsWindow.empty());
    EXPECT_FALSE(showsWindow.front());
    EXPECT_TRUE(std::ranges::is_sorted(showsWindow)) << "only from when it was called back";
    EXPECT_EQ(readFile(m_stage.home() / "zento.log"), "");
}

} // namespace
} // namespace zento
