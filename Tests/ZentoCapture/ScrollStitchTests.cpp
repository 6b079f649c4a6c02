#include "TestSupport/Random.h"
#include "TestSupport/SamePixels.h"
#include "ZentoCapture/ScrollStitch.h"
#include "ZentoCapture/ScrollingCapture.h"
#include "ZentoCore/Error.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace zento {
namespace {

constexpr int kWidth = 200;

void fill(Canvas& canvas, int x, int y, int w, int h, std::uint32_t color)
{
    const Plane<std::uint32_t> pixels = canvas.pixels();
    for (int row = std::max(y, 0); row < std::min(y + h, canvas.height()); ++row)
        for (int column = x; column < std::min(x + w, canvas.width()); ++column)
            pixels.row(row)[column] = 0xFF000000U | color;
}

int whole(test::Random& random, int low, int high)
{
    return static_cast<int>(random.uniform(low, high + 0.999));
}

Canvas blank(int height)
{
    Canvas page(kWidth, height);
    fill(page, 0, 0, kWidth, height, 0xFFFFFF);
    return page;
}

/// Lines of dark words of any length.
void drawText(Canvas& page, test::Random& random, int from, int to)
{
    const int line = whole(random, 12, 22);
    for (int y = from + 4; y + line < to; y += line)
        for (int x = 8; x < kWidth - 20;) {
            const int word = whole(random, 6, 40);
            fill(page, x, y, std::min(word, kWidth - 8 - x), line / 2, 0x222222);
            x += word + 5;
        }
}

void drawTable(Canvas& page, test::Random& random, int from, int to)
{
    for (int y = from; y < to; y += 24) {
        fill(page, 0, y, kWidth, 1, 0xCCCCCC);
        fill(page, 10, y + 8, whole(random, 10, 60), 8, 0x334455);
        fill(page, 110, y + 8, whole(random, 10, 60), 8, 0x885522);
    }
}

void drawImage(Canvas& page, test::Random& random, int from, int to)
{
    for (int y = from; y < to; y += 3)
        for (int x = 0; x < kWidth; x += 3)
            fill(page, x, y, 3, 3, static_cast<std::uint32_t>(whole(random, 0, 0xFFFFFE)));
}

/// A page, and what a window shows of it that is not the page.
struct Page {
    Canvas content;
    int header = 0; // rows of a bar at the window's upper edge
    int footer = 0;
    bool moves = false; // a film in the middle of the window
    int bar = 0;        // columns of a scroll bar at the right edge
};

Canvas window(const Page& page, int offset, int height, int shot)
{
    Canvas frame(kWidth, height);
    frame.drawImage(
        page.content,
        {0, -static_cast<double>(offset), kWidth, static_cast<double>(page.content.height())},
        Interpolation::Nearest);
    fill(frame, 0, 0, kWidth, page.header, 0x3355AA);
    fill(frame, 0, height - page.footer, kWidth, page.footer, 0xAA5533);
    if (page.moves)
        fill(frame, 20, height / 3, 60, 40, static_cast<std::uint32_t>(0x101010 * (1 + shot % 9)));
    if (page.bar > 0) {
        fill(frame, kWidth - page.bar, 0, page.bar, height, 0xEEEEEE);
        const int thumb = height * height / page.content.height();
        const int place = offset * height / page.content.height();
        fill(frame, kWidth - page.bar, place, page.bar, thumb, 0x888888);
    }
    return frame;
}

/// The page in one piece, as its window shows it without scrolling.
Canvas inOnePiece(const Page& page)
{
    return window({page.content.clone(), page.header}, 0, page.content.height(), 0);
}

struct Result {
    Canvas page;
    std::vector<ScrollSeam> seams;
};

Result scrolled(const Page& page, int height, int step)
{
    const int last = std::max(page.content.height() - height, 0);
    int shot = 0;
    ScrollStitch stitch(std::make_shared<const Canvas>(window(page, 0, height, shot++)));
    for (int offset = step;; offset += step)
        if (stitch.add(window(page, std::min(offset, last), height, shot++), step)
            == ScrollStitch::Verdict::Ended)
            break;
    return {stitch.compose(), stitch.seams()};
}

struct Kind {
    std::string name;
    std::function<Page(test::Random&, int height, int step)> make;
    bool isCertain; // all of its pages come out exactly and without a doubt
};

Page textPage(test::Random& random, int height)
{
    Page page{blank(height)};
    drawText(page.content, random, 0, height);
    return page;
}

std::vector<Kind> kinds()
{
    return {
        {"text", [](auto& r, int h, int) { return textPage(r, h * 4 + whole(r, 0, h)); }, true},
        {"table",
         [](auto& r, int h, int) {
             Page page{blank(h * 3 + whole(r, 0, h))};
             drawTable(page.content, r, 0, page.content.height());
             return page;
         },
         true},
        {"images",
         [](auto& r, int h, int) {
             Page page = textPage(r, h * 4);
             drawImage(page.content, r, h, 2 * h);
             return page;
         },
         true},
        {"sticky header",
         [](auto& r, int h, int) {
             Page page = textPage(r, h * 3 + whole(r, 0, h));
             page.header = h / 8;
             return page;
         },
         true},
        {"tall sticky header",
         [](auto& r, int h, int) {
             Page page = textPage(r, h * 3);
             page.header = h / 4;
             return page;
         },
         false},
        {"sticky footer",
         [](auto& r, int h, int) {
             Page page = textPage(r, h * 3);
             page.footer = h / 12;
             return page;
         },
         false},
        {"short", [](auto& r, int h, int) { return textPage(r, h + whole(r, 4, h / 3)); }, true},
        {"does not scroll", [](auto& r, int h, int) { return textPage(r, h); }, true},
        {"scrolls by three pixels", [](auto& r, int h, int) { return textPage(r, h + 3); }, false},
        {"ends on a step",
         [](auto& r, int h, int step) { return textPage(r, h + step * whole(r, 1, 4)); },
         true},
        {"repeats",
         [](auto& r, int h, int) {
             Page page{blank(h * 3)};
             const int period = whole(r, 8, h / 2);
             for (int y = 0; y < page.content.height(); y += period)
                 fill(page.content, 20, y, 120, period / 2, 0x446688);
             return page;
         },
         false},
        {"blank in the middle",
         [](auto& r, int h, int) {
             Page page = textPage(r, h * 5);
             fill(page.content, 0, h, kWidth, 2 * h, 0xFFFFFF);
             return page;
         },
         false},
        {"a scroll bar",
         [](auto& r, int h, int) {
             Page page = textPage(r, h * 3);
             page.bar = 15;
             return page;
         },
         false},
        {"a film",
         [](auto& r, int h, int) {
             Page page = textPage(r, h * 3);
             page.moves = true;
             return page;
         },
         false},
    };
}

/// Exact, or told; nothing is silently wrong.
TEST(ScrollStitch, isExactOrSaysThatItIsNot)
{
    test::Random random(23);
    std::map<std::string, std::map<std::string, int>> counts; // by kind
    int wrong = 0;
    const std::vector<Kind> all = kinds();
    for (int i = 0; i < 208; ++i) {
        const Kind& kind = all[static_cast<std::size_t>(i) % all.size()];
        const int height = whole(random, 180, 420);
        const int step = height * 6 / 10;
        const Page page = kind.make(random, height, step);
        const Result result = scrolled(page, height, step);
        const bool isExact = test::samePixels(result.page, inOnePiece(page));
        const bool isTold = !result.seams.empty();
        const std::string what = kind.name + ", page " + std::to_string(i);
        ++counts[kind.name][isExact && !isTold ? "exact" : isTold ? "flagged" : "wrong"];
        wrong += isExact || isTold ? 0 : 1;
        EXPECT_TRUE(isExact || isTold) << what << " is silently wrong";
        const int rest = std::max(page.content.height() - height, 0) % step;
        const bool isRestSeen = rest == 0 || rest >= ScrollStitch::kSmallMove;
        if (kind.isCertain && isRestSeen) {
            EXPECT_TRUE(isExact) << what;
            EXPECT_FALSE(isTold) << what << ": doubt "
                                 << (isTold ? static_cast<int>(result.seams[0].doubt) : -1)
                                 << " at " << (isTold ? result.seams[0].y : 0) << " of "
                                 << page.content.height() << ", window " << height;
        }
    }
    for (auto& [kind, outcomes] : counts)
        std::cout << kind << ": " << outcomes["exact"] << " exact, " << outcomes["flagged"]
                  << " flagged\n";
    EXPECT_EQ(wrong, 0);
}

/// A scroll bar is told once, and hides no other doubt.
TEST(ScrollStitch, followsAPageBesideItsScrollBar)
{
    test::Random random(8);
    Page page = textPage(random, 1700);
    page.bar = 15;
    const Result result = scrolled(page, 300, 180);
    EXPECT_EQ(result.seams, (std::vector<ScrollSeam>{{300, ScrollDoubt::ScrollBar}}));
    ASSERT_EQ(result.page.height(), 1700);
    for (int y = 0; y < 1700; ++y)
        ASSERT_TRUE(std::equal(
            result.page.pixels().row(y),
            result.page.pixels().row(y) + kWidth - page.bar,
            page.content.pixels().row(y)))
            << y;
    page.moves = true;
    const Result film = scrolled(page, 300, 180);
    EXPECT_TRUE(std::ranges::any_of(
        film.seams, [](const ScrollSeam& seam) { return seam.doubt != ScrollDoubt::ScrollBar; }));
}

TEST(ScrollStitch, tellsWhereItDoubts)
{
    test::Random random(5);
    Page page = textPage(random, 900);
    page.footer = 20;
    const Result result = scrolled(page, 300, 180);
    ASSERT_FALSE(result.seams.empty());
    EXPECT_EQ(result.seams.front(), (ScrollSeam{300, ScrollDoubt::Footer}));
}

TEST(ScrollSignature, findsShifts)
{
    test::Random random(3);
    const Page page = textPage(random, 1500);
    const auto at = [&](int offset, int height) {
        return ScrollSignature(window(page, offset, height, 0));
    };
    for (const int shift : {0, 1, 4, 37, 100, 180})
        EXPECT_EQ(at(100 + shift, 300).shift(at(100, 300)), shift);
    EXPECT_EQ(at(40, 40).shift(at(0, 40)), std::nullopt); // too low
    Canvas other(kWidth, 300);
    drawImage(other, random, 0, 300);
    EXPECT_EQ(ScrollSignature(other).shift(at(0, 300)), std::nullopt);
    const ScrollSignature uniform(blank(300));
    EXPECT_EQ(uniform.shift(uniform), 0);
}

/// Where the loop ends by the length of a move.
TEST(ScrollStitch, endsAfterAShortMoveAndAtTheLimits)
{
    test::Random random(9);
    const Page page = textPage(random, 32000);
    const auto frame = [&](int offset) { return window(page, offset, 400, 0); };
    for (const int move : {0, 3, 4, 99, 100, 240}) {
        ScrollStitch stitch(std::make_shared<const Canvas>(frame(0)));
        const auto verdict = stitch.add(frame(move), 240);
        EXPECT_EQ(verdict == ScrollStitch::Verdict::Continue, move >= 100) << move;
        EXPECT_EQ(stitch.height(), move < 4 ? 400 : 400 + move) << move;
        EXPECT_EQ(stitch.seams().empty(), move != 3) << move;
    }
    ScrollStitch stitch(std::make_shared<const Canvas>(frame(0)));
    int count = 1;
    while (stitch.add(frame(count * 240), 240) == ScrollStitch::Verdict::Continue)
        ++count;
    EXPECT_EQ(count, ScrollStitch::kMostSteps);
    EXPECT_EQ(stitch.seams().size(), 1U); // and it says that the page goes on
}

/// A wheel over a page, which a notch moves by so many pixels.
class FakeWheel final : public ScrollWheel {
public:
    explicit FakeWheel(int perNotch)
        : m_perNotch(perNotch)
    {
    }
    std::optional<Vec2> pointer() override { return place; }
    void movePointer(Vec2 pixel) override { place = pixel; }
    void scroll(int notches, Vec2 pixel) override
    {
        place = pixel;
        offset += notches * m_perNotch;
    }

    bool isGivenUp() override { return isEscaped; }

    bool isEscaped = false;
    Vec2 place{11, 22};
    int offset = 0;

private:
    int m_perNotch;
};

TEST(ScrollingCapture, followsAPageWhateverANotchMoves)
{
    test::Random random(4);
    const Page page = textPage(random, 2345);
    for (const int perNotch : {15, 53, 120, 200}) {
        FakeWheel wheel(perNotch);
        const ScrolledShot result = ScrollingCapture::run(
            {0, 0, kWidth, 400},
            {.shoot =
                 [&] {
                     const int offset = std::min(wheel.offset, page.content.height() - 400);
                     return Shot{std::make_shared<const Canvas>(window(page, offset, 400, 0)), 1};
                 },
             .wheel = wheel,
             .settle = [] {}});
        EXPECT_TRUE(test::samePixels(*result.shot.image, page.content)) << perNotch;
        EXPECT_TRUE(result.seams.empty()) << perNotch;
        EXPECT_EQ(wheel.place, (Vec2{11, 22})) << perNotch;
    }
}

TEST(ScrollingCapture, endsWhenAHandMovesThePointer)
{
    test::Random random(4);
    const Page page = textPage(random, 4000);
    FakeWheel wheel(100);
    int rests = 0;
    const ScrolledShot result = ScrollingCapture::run(
        {0, 0, kWidth, 400},
        {.shoot =
             [&] {
                 return Shot{std::make_shared<const Canvas>(window(page, wheel.offset, 400, 0)), 1};
             },
         .wheel = wheel,
         .settle =
             [&] {
                 if (++rests == 4) // the first step is looked at twice
                     wheel.place = {150, 300};
             }});
    EXPECT_EQ(result.shot.image->height(), 400 + 100 + 200);
    EXPECT_EQ(result.seams, (std::vector<ScrollSeam>{{700, ScrollDoubt::CutShort}}));
    EXPECT_EQ(wheel.place, (Vec2{150, 300}));
}

/// A program that draws late: at first nothing of a step, then a part of it, then all.
TEST(ScrollingCapture, waitsForAPageThatScrollsLate)
{
    test::Random random(4);
    const Page page = textPage(random, 2345);
    FakeWheel wheel(53);
    int shown = 0;
    int lateness = 0;
    const auto shoot = [&] {
        return Shot{std::make_shared<const Canvas>(window(page, shown, 400, 0)), 1};
    };
    const auto settle = [&] {
        const int wanted = std::min(wheel.offset, page.content.height() - 400);
        lateness = shown == wanted ? 0 : lateness + 1;
        shown += lateness == 1 ? 0 : lateness == 2 ? (wanted - shown) / 5 : wanted - shown;
    };
    const ScrolledShot result = ScrollingCapture::run(
        {0, 0, kWidth, 400}, {.shoot = shoot, .wheel = wheel, .settle = settle});
    EXPECT_TRUE(test::samePixels(*result.shot.image, page.content));
    EXPECT_TRUE(result.seams.empty());
}

TEST(ScrollingCapture, isGivenUpByEscapeAtEveryStep)
{
    test::Random random(4);
    const Page page = textPage(random, 1500);
    for (int step = 1; step <= 4; ++step) {
        FakeWheel wheel(100);
        int rests = 0;
        const auto shoot = [&] {
            return Shot{std::make_shared<const Canvas>(window(page, wheel.offset, 400, 0)), 1};
        };
        const auto settle = [&] { wheel.isEscaped = ++rests == step; };
        try {
            ScrollingCapture::run(
                {0, 0, kWidth, 400}, {.shoot = shoot, .wheel = wheel, .settle = settle});
            ADD_FAILURE() << step;
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), ErrorCode::kCancelled) << step;
        }
        EXPECT_EQ(rests, step);
        EXPECT_EQ(wheel.place, (Vec2{11, 22})) << step;
    }
}

TEST(ScrollingCapture, putsThePointerBackWhenAShotFails)
{
    FakeWheel wheel(50);
    int shots = 0;
    const auto shoot = [&]() -> Shot {
        if (++shots > 1)
            throw Error(ErrorCode::kNoShot, "gone");
        return {std::make_shared<const Canvas>(blank(300)), 1};
    };
    EXPECT_THROW(
        ScrollingCapture::run(
            {0, 0, kWidth, 300}, {.shoot = shoot, .wheel = wheel, .settle = [] {}}),
        Error);
    EXPECT_EQ(wheel.place, (Vec2{11, 22}));
}

} // namespace
} // namespace zento
