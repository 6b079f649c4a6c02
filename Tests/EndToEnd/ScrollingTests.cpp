#include "DesktopTest.h"
#include "TestSupport/SamePixels.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCapture/ScrollingCapture.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
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

bool isUniform(const Canvas& image)
{
    const std::uint32_t first = image.pixels().row(0)[0];
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixels().row(y)[x] != first)
                return false;
    return true;
}

enum class Outcome : std::uint8_t { Exact, ExactButForTheBar, Told };

/// A program with a long page in it, in a window as high as it is told to be.
struct Viewer {
    std::string name;
    std::function<std::vector<std::string>(const std::filesystem::path& folder, int height)>
        command;
    int right = 0; // pixels at the window's right edge that are left out
    Outcome outcome = Outcome::Exact;
};

/// Real programs scroll as they like: each result is the page as the same program shows it in one
/// piece, to the pixel, or is told to be in doubt.
class ScrollingTest : public testing::Test {
protected:
    static constexpr int kLow = 560;
    static constexpr int kHigh = 5200;
    static constexpr int kScreen = 5400;
    static constexpr Rect kAll{0, 0, 800, kScreen};
    static constexpr double kTop = 70; // pixels of a window above the page that is shot
    static constexpr double kLeft = 20;

    static Canvas shot(PrivateDesktop& stage, const Rect& area)
    {
        const auto desktop = openDesktop(stage.display());
        return ScreenshotTool::capture(*desktop, Target::Area{area}).image->clone();
    }

    ScrolledShot scrolled(const Viewer& viewer) const;
    Canvas inOnePiece(const Viewer& viewer, const Canvas& scrolled) const;

    /// Until nothing moves any more, or what moves never rests.
    static Canvas rested(PrivateDesktop& stage, const Rect& area)
    {
        Canvas last = shot(stage, area);
        for (int same = 0, looks = 0; same < 3 && (looks < 15 || isUniform(last)); ++looks) {
            std::this_thread::sleep_for(60ms); // between two looks
            Canvas next = shot(stage, area);
            same = test::samePixels(last, next) && !isUniform(next) ? same + 1 : 0;
            last = std::move(next);
        }
        return last;
    }

    test::TemporaryFolder m_folder;
};

std::string words(int paragraph)
{
    return "Paragraph " + std::to_string(paragraph) + ": "
           + std::string(static_cast<std::size_t>(paragraph * 7 % 50), 'x') + " some words";
}

void writeHtml(const std::filesystem::path& file, const std::string& above, const std::string& more)
{
    std::ofstream page(file);
    page << "<!doctype html><meta charset=utf-8><title>page</title><style>html{overflow-y:scroll}"
            "body{font:15px Inter,sans-serif;margin:24px}td{border-bottom:1px solid #ccc;"
            "padding:6px 30px 6px 0}</style>"
         << above << "<h1>Everything</h1>";
    for (int i = 0; i < 60; ++i) {
        page << "<p>" << words(i) << "</p>";
        if (i % 10 == 4)
            page << "<table><tr><td>Row " << i << "<td>12 June<td>" << i * 37
                 << "<tr><td>Row b<td>10 June<td>" << i * 41 << "</table>";
        if (i % 20 == 9)
            page << "<div style='height:90px;background:linear-gradient(90deg,#369,#c93)'></div>"
                 << more;
    }
}

void writePages(const std::filesystem::path& folder)
{
    std::ofstream text(folder / "page.txt");
    for (int i = 0; i < 150; ++i)
        text << (i < 60 ? words(i) : "Line " + std::to_string(i * i * 7919)) << '\n';
    writeHtml(folder / "page.html", "", "");
    writeHtml(
        folder / "header.html",
        "<div style='position:sticky;top:0;height:60px;background:#cde'>Header</div>",
        "");
    writeHtml(
        folder / "film.html",
        "<script>setInterval(()=>document.querySelectorAll('i').forEach(e=>e.style.background="
        "'#'+Math.floor(1e6+performance.now()%8e6).toString(16).padStart(6,0)),40)</script>",
        "<i style='display:block;height:160px'></i>");
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

auto browser(const std::string& page)
{
    return [page](const std::filesystem::path& folder, int height) {
        return std::vector<std::string>{
            "/usr/bin/chromium",
            "--no-sandbox",
            "--test-type",
            "--disable-gpu",
            "--no-first-run",
            "--user-data-dir=" + (folder / ("profile" + std::to_string(height))).string(),
            "--window-position=0,0",
            "--window-size=700," + std::to_string(height),
            "--app=file://" + (folder / (page + ".html")).string()};
    };
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

ScrolledShot ScrollingTest::scrolled(const Viewer& viewer) const
{
    PrivateDesktop stage({.width = 800, .height = kScreen});
    stage.start(viewer.command(m_folder.path(), kLow));
    const Rect window = windowIn(rested(stage, kAll));
    const Rect area{
        window.x + kLeft, window.y + kTop, window.w - kLeft - viewer.right, window.h - 150};
    const auto wheel = openScrollWheel(stage.display());
    return ScrollingCapture::run(
        area,
        {.shoot = [&] { return Shot{std::make_shared<const Canvas>(shot(stage, area)), 1}; },
         .wheel = *wheel,
         .settle = [&] { rested(stage, area); }});
}

/// The same part of the page in a window that need not scroll.
Canvas ScrollingTest::inOnePiece(const Viewer& viewer, const Canvas& scrolled) const
{
    PrivateDesktop stage({.width = 800, .height = kScreen});
    stage.start(viewer.command(m_folder.path(), kHigh));
    const Canvas screen = rested(stage, kAll);
    const Rect window = windowIn(screen);
    return part(
        screen,
        {window.x + kLeft, window.y + kTop, double(scrolled.width()), double(scrolled.height())});
}

TEST_F(ScrollingTest, stitchesWhatRealProgramsShow)
{
    writePages(m_folder.path());
    const std::vector<Viewer> viewers{
        {"text view", textView, 40, Outcome::Exact},
        {"browser", browser("page"), 40, Outcome::Exact},
        {"bar that sticks to the top", browser("header"), 40, Outcome::Exact},
        {"scroll bar", browser("page"), 4, Outcome::ExactButForTheBar},
        {"film", browser("film"), 40, Outcome::Told}};
    for (const Viewer& viewer : viewers) {
        if (!std::filesystem::exists(viewer.command(m_folder.path(), 1).front())) {
            std::cout << viewer.name << ": not installed\n";
            continue;
        }
        const ScrolledShot result = scrolled(viewer);
        const Canvas& page = *result.shot.image;
        const Canvas whole = inOnePiece(viewer, page);
        std::cout << viewer.name << ": " << page.height() << " pixels, " << result.seams.size()
                  << " seams in doubt\n";
        EXPECT_TRUE(test::samePixels(page, whole) || !result.seams.empty()) << viewer.name;
        EXPECT_GT(page.height(), viewer.outcome == Outcome::Told ? 0 : 2000) << viewer.name;
        if (viewer.outcome == Outcome::Exact) {
            EXPECT_TRUE(test::samePixels(page, whole)) << viewer.name;
            EXPECT_TRUE(result.seams.empty()) << viewer.name;
        } else if (viewer.outcome == Outcome::ExactButForTheBar) {
            const Rect inside{
                0,
                0,
                double(page.width() - ScrollStitch::edgeWidth(page.width())),
                whole.bounds().h};
            EXPECT_TRUE(test::samePixels(part(page, inside), part(whole, inside))) << viewer.name;
            ASSERT_EQ(result.seams.size(), 1U) << viewer.name;
            EXPECT_EQ(result.seams.front().doubt, ScrollDoubt::ScrollBar) << viewer.name;
        }
    }
}

} // namespace
} // namespace zento
