#include "DesktopTest.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCapture/ScrollingCapture.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace zento {
namespace {

using namespace std::chrono_literals;

bool isSame(const Canvas& a, const Canvas& b)
{
    if (a.width() != b.width() || a.height() != b.height())
        return false;
    for (int y = 0; y < a.height(); ++y)
        if (!std::equal(a.pixels().row(y), a.pixels().row(y) + a.width(), b.pixels().row(y)))
            return false;
    return true;
}

bool isUniform(const Canvas& image)
{
    const std::uint32_t first = image.pixels().row(0)[0];
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixels().row(y)[x] != first)
                return false;
    return true;
}

/// A program with a long page in it, in a window as high as it is told to be.
struct Viewer {
    std::string name;
    std::function<std::vector<std::string>(const std::filesystem::path& folder, int height)>
        command;
    int right = 0;         // pixels at the window's edges that are no page
    bool mayDoubt = false; // what is in the area besides the page moves, too
};

/// Real programs scroll as they like: each result is the page as the same program shows it in one
/// piece, to the pixel, or is told to be in doubt.
class ScrollingTest : public testing::Test {
protected:
    static constexpr int kLow = 560;
    static constexpr int kHigh = 5200;
    static constexpr int kScreen = 5400;
    static constexpr Rect kAll{0, 0, 800, kScreen};

    static Canvas shot(PrivateDesktop& stage, const Rect& area)
    {
        const auto desktop = openDesktop(stage.display());
        return ScreenshotTool::capture(*desktop, Target::Area{area}).image->clone();
    }

    /// Until nothing moves any more.
    static Canvas rested(PrivateDesktop& stage, const Rect& area)
    {
        Canvas last = shot(stage, area);
        for (int same = 0; same < 3;) {
            std::this_thread::sleep_for(60ms); // between two looks
            Canvas next = shot(stage, area);
            same = isSame(last, next) && !isUniform(next) ? same + 1 : 0;
            last = std::move(next);
        }
        return last;
    }

    test::TemporaryFolder m_folder;
};

void writePage(const std::filesystem::path& folder)
{
    std::ofstream text(folder / "page.txt");
    std::ofstream page(folder / "page.html");
    page << "<!doctype html><meta "
            "charset=utf-8><title>page</title><style>html{overflow-y:scroll}body{font:15px "
            "Inter,sans-serif;margin:24px}td{border-bottom:1px solid #ccc;padding:6px 30px 6px 0}"
            "</style><h1>Everything</h1>";
    for (int i = 0; i < 60; ++i) {
        text << "Paragraph " << i << ": " << std::string(static_cast<std::size_t>(i * 7 % 50), 'x')
             << " some words\n";
        page << "<p>Paragraph " << i << " with "
             << std::string(static_cast<std::size_t>(i * 7 % 50), 'x') << " some words</p>";
        if (i % 10 == 4)
            page << "<table><tr><td>Row " << i << "<td>12 June<td>" << i * 37
                 << "<tr><td>Row b<td>10 June<td>" << i * 41 << "</table>";
        if (i % 20 == 9)
            page << "<div style='height:90px;background:linear-gradient(90deg,#369," << "#c"
                 << i % 10 << "3)'></div>";
    }
    for (int i = 60; i < 150; ++i)
        text << "Line " << i << ' ' << i * i * 7919 << '\n';
}

std::vector<std::string> textView(const std::filesystem::path& folder, int height)
{
    return {
        "/usr/bin/zenity",
        "--text-info",
        "--width=600",
        "--height=" + std::to_string(height),
        "--filename=" + (folder / "page.txt").string()};
}

std::vector<std::string> browser(const std::filesystem::path& folder, int height)
{
    return {
        "/usr/bin/chromium",
        "--no-sandbox",
        "--test-type",
        "--disable-gpu",
        "--no-first-run",
        "--user-data-dir=" + (folder / ("profile" + std::to_string(height))).string(),
        "--window-position=0,0",
        "--window-size=700," + std::to_string(height),
        "--app=file://" + (folder / "page.html").string()};
}

/// Of the one window on a black desktop.
Rect windowIn(const Canvas& screen)
{
    int left = screen.width();
    int top = screen.height();
    int right = 0;
    int bottom = 0;
    for (int y = 0; y < screen.height(); ++y)
        for (int x = 0; x < screen.width(); ++x)
            if ((screen.pixels().row(y)[x] & 0xFFFFFF) != 0) {
                left = std::min(left, x);
                right = std::max(right, x + 1);
                top = std::min(top, y);
                bottom = y + 1;
            }
    return {
        double(left),
        double(top),
        double(std::max(right - left, 0)),
        double(std::max(bottom - top, 0))};
}

Canvas part(const Canvas& image, const Rect& area)
{
    Canvas cut(static_cast<int>(area.w), static_cast<int>(area.h));
    cut.drawImage(
        image, {-area.x, -area.y, image.bounds().w, image.bounds().h}, Interpolation::Nearest);
    return cut;
}

TEST_F(ScrollingTest, stitchesWhatRealProgramsShow)
{
    constexpr double kTop = 70; // below a title and a margin
    writePage(m_folder.path());
    const std::vector<Viewer> viewers{
        {"text view", textView, 40, false},
        {"browser", browser, 40, false},
        {"browser with its scroll bar", browser, 4, true}};
    for (const Viewer& viewer : viewers) {
        if (!std::filesystem::exists(viewer.command(m_folder.path(), 1).front())) {
            std::cout << viewer.name << ": not installed\n";
            continue;
        }
        Rect area;
        ScrolledShot scrolled;
        {
            PrivateDesktop stage({.width = 800, .height = kScreen});
            stage.start(viewer.command(m_folder.path(), kLow));
            const Rect window = windowIn(rested(stage, kAll));
            area = {window.x + 20, window.y + kTop, window.w - 20 - viewer.right, window.h - 150};
            const auto wheel = openScrollWheel(stage.display());
            scrolled = ScrollingCapture::run(
                area,
                {.shoot =
                     [&] { return Shot{std::make_shared<const Canvas>(shot(stage, area)), 1}; },
                 .wheel = *wheel,
                 .settle = [&] { rested(stage, area); }});
        }
        PrivateDesktop stage({.width = 800, .height = kScreen});
        stage.start(viewer.command(m_folder.path(), kHigh));
        const Canvas screen = rested(stage, kAll);
        const Rect window = windowIn(screen);
        const Canvas whole = part(
            screen,
            {window.x + 20, window.y + kTop, area.w, double(scrolled.shot.image->height())});
        const bool isExact = isSame(*scrolled.shot.image, whole);
        std::cout << viewer.name << ": " << scrolled.shot.image->height() << " pixels, "
                  << (isExact ? "exact" : "not exact") << ", " << scrolled.seams.size()
                  << " seams in doubt\n";
        EXPECT_TRUE(isExact || !scrolled.seams.empty()) << viewer.name;
        EXPECT_GT(scrolled.shot.image->height(), 2000) << viewer.name;
        if (!viewer.mayDoubt) {
            EXPECT_TRUE(isExact) << viewer.name;
            EXPECT_TRUE(scrolled.seams.empty()) << viewer.name;
        }
    }
}

} // namespace
} // namespace zento
