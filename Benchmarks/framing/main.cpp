// How often the picture of a window tells what was clicked in it: framing_bench [FOLDER [NAME]].
// Opens programs of three toolkits, each on a display of its own, clicks the middle of everything
// that the accessibility bus says can be clicked, and compares the region found in the picture with
// the element clicked and those that hold it. With a folder, a picture of each window with the
// regions drawn in is left there.
//
// A recording looks at the picture only where the bus does not tell; so the film's regions are
// those of both, where the bus's is the element clicked.

#include "Pages.h"
#include "ProcessorTime.h"
#include "Sight.h"
#include "TestSupport/PictureMovie.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoImaging/ImageFile.h"
#include "ZentoIntelligence/FrameAnalyzer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace zento::bench {
namespace {

constexpr double kRight = 0.8; // intersection over union
constexpr double kLeastShare = 85;

struct Clicked {
    Vec2 place;
    std::vector<Rect> plausible; // what a camera may show for it, the element and those around it
    bool isTold = false;         // the bus alone gives a region that can be used
    std::optional<Rect> hint;
    bool isRight = false;
};

bool canBeClicked(const Element& element)
{
    static const std::set<std::string_view> kRoles = {
        "push button", "button",      "toggle button", "check box",  "radio button",
        "entry",       "text",        "combo box",     "table cell", "list item",
        "page tab",    "spin button", "slider",        "tree item",  "icon",
        "label",       "tree",        "list",          "menu item",  "link",
        "table",       "heading",     "paragraph",     "static",     "tree table"};
    static const std::set<std::string_view> kIfNamed = {"panel", "grouping"};
    return kRoles.contains(element.role)
           || (kIfNamed.contains(element.role) && !element.name.empty());
}

bool isWithin(const Rect& rect, Vec2 place)
{
    return place.x >= rect.x && place.x <= rect.x + rect.w && place.y >= rect.y
           && place.y <= rect.y + rect.h;
}

double overlap(const Rect& a, const Rect& b)
{
    const double w = std::min(a.x + a.w, b.x + b.w) - std::max(a.x, b.x);
    const double h = std::min(a.y + a.h, b.y + b.h) - std::max(a.y, b.y);
    const double common = std::max(w, 0.0) * std::max(h, 0.0);
    return common / (a.w * a.h + b.w * b.h - common);
}

/// Of a size that is looked for: the limits of the analysis.
bool isPlausible(const Rect& rect, const SessionMeta& meta)
{
    const double whole = static_cast<double>(meta.pixelWidth) * meta.pixelHeight;
    const double shorter = std::min(rect.w, rect.h);
    return rect.w * rect.h >= 0.015 * whole && rect.w * rect.h <= 0.6 * whole
           && shorter >= 0.05 * std::min(meta.pixelWidth, meta.pixelHeight)
           && shorter >= 0.1 * std::max(rect.w, rect.h);
}

/// The element's window and what lies between, itself included.
std::vector<const Element*> chainOf(const Sight& sight, const Element& element)
{
    std::vector<const Element*> chain = {&element};
    while (chain.back()->parent)
        chain.push_back(&sight.elements[*chain.back()->parent]);
    return chain;
}

/// A smaller window stands before a larger one, and a page's dialog before the page.
bool isCovered(const Sight& sight, const std::vector<const Element*>& chain, Vec2 place)
{
    const Rect& window = chain.back()->frame;
    return std::ranges::any_of(sight.elements, [&](const Element& other) {
        const bool standsBefore = other.parent
                                      ? other.role == "dialog"
                                      : other.frame.w * other.frame.h < window.w * window.h;
        return standsBefore && isWithin(other.frame, place)
               && std::ranges::find(chain, &other) == chain.end();
    });
}

std::vector<Clicked> clicksOn(const Sight& sight, const SessionMeta& meta)
{
    std::vector<Clicked> clicks;
    for (const Element& element : sight.elements) {
        const Rect& frame = element.frame;
        constexpr double kLeast = 6;
        const Vec2 place = {std::round(frame.x + frame.w / 2), std::round(frame.y + frame.h / 2)};
        const Rect screen = {
            0, 0, static_cast<double>(meta.pixelWidth), static_cast<double>(meta.pixelHeight)};
        const bool isOnScreen = frame.w >= kLeast && frame.h >= kLeast && frame.x >= 0
                                && frame.y >= 0 && frame.x + frame.w <= screen.w
                                && frame.y + frame.h <= screen.h;
        if (!canBeClicked(element) || !isOnScreen)
            continue;
        const auto chain = chainOf(sight, element);
        const bool isShown = std::ranges::all_of(
            chain, [&](const Element* holder) { return isWithin(holder->frame, place); });
        const bool isKnown = std::ranges::any_of(clicks, [&](const Clicked& other) {
            return std::abs(other.place.x - place.x) < 4 && std::abs(other.place.y - place.y) < 4;
        });
        if (!isShown || isKnown || isCovered(sight, chain, place))
            continue;
        Clicked click{.place = place};
        for (const Element* holder : chain)
            if (isPlausible(holder->frame, meta))
                click.plausible.push_back(holder->frame);
        const AXInfo told = {.role = element.role, .frame = frame, .title = {}};
        click.isTold = told.usableFrame(meta).has_value();
        clicks.push_back(std::move(click));
    }
    return clicks;
}

/// Codes the picture as a recording does and asks for every click; gives the time of one, its
/// picture anew.
double findHints(const Sight& sight, const SessionMeta& meta, std::vector<Clicked>& clicks)
{
    const test::TemporaryFolder folder;
    const std::filesystem::path movie = folder / "screen.mov";
    test::writePictures(movie, {{0, &sight.picture}});
    std::vector<InputEvent> events;
    for (const Clicked& click : clicks)
        events.push_back({.t = 1, .kind = EventKind::Click, .pos = click.place, .button = 0});
    const double begin = processSeconds();
    for (std::size_t i = 0; i < clicks.size(); ++i) {
        // One at a time: each pays for its picture.
        const auto found = FrameAnalyzer::analyze(movie, meta, std::span(&events[i], 1));
        if (!found.empty())
            clicks[i].hint = found.front().rect;
    }
    const double took = (processSeconds() - begin) * 1e3;
    for (Clicked& click : clicks)
        click.isRight = click.hint && std::ranges::any_of(click.plausible, [&](const Rect& rect) {
                            return overlap(*click.hint, rect) >= kRight;
                        });
    return took / static_cast<double>(std::max<std::size_t>(clicks.size(), 1));
}

void draw(Sight& sight, const std::vector<Clicked>& clicks, const std::filesystem::path& file)
{
    constexpr Color kYes{0.05, 0.6, 0.25, 1};
    constexpr Color kNo{0.95, 0.1, 0.35, 1};
    constexpr Color kNothingThere{0.6, 0.6, 0.6, 1};
    constexpr double kDot = 5;
    for (const Clicked& click : clicks) {
        const Color color = click.plausible.empty() ? kNothingThere : click.isRight ? kYes : kNo;
        if (click.hint)
            sight.picture.stroke(Path().rect(*click.hint), {.width = 3}, color);
        sight.picture.fill(Path().circle(click.place, kDot), color);
    }
    savePng(sight.picture, file);
}

struct Score {
    std::size_t clicks = 0;
    std::size_t plausible = 0; // of these, with something of a fit size around them
    std::size_t right = 0;     // of those, in the picture
    std::size_t known = 0;     // told by the bus or right in the picture

    void operator+=(const Score& other)
    {
        clicks += other.clicks;
        plausible += other.plausible;
        right += other.right;
        known += other.known;
    }
};

Score scoreOf(const std::vector<Clicked>& clicks)
{
    const auto count = [&](auto has) {
        return static_cast<std::size_t>(std::ranges::count_if(clicks, has));
    };
    return {
        .clicks = clicks.size(),
        .plausible = count([](const Clicked& click) { return !click.plausible.empty(); }),
        .right = count([](const Clicked& click) { return click.isRight; }),
        .known = count([](const Clicked& click) { return click.isTold || click.isRight; })};
}

double percent(std::size_t part, std::size_t whole)
{
    return 100.0 * static_cast<double>(part) / static_cast<double>(std::max(whole, 1UZ));
}

void tell(const std::string& name, const Score& score)
{
    std::printf(
        "  %-26s %4zu of %4zu %5.1f %%   %4zu of %4zu %5.1f %%",
        name.c_str(),
        score.right,
        score.plausible,
        percent(score.right, score.plausible),
        score.known,
        score.clicks,
        percent(score.known, score.clicks));
}

std::optional<Score> measure(const Program& program, const std::filesystem::path& folder)
{
    auto sight = look(program);
    if (!sight) {
        std::printf("  %-26s not installed\n", program.name.c_str());
        return std::nullopt;
    }
    const SessionMeta meta = {
        .pixelWidth = sight->picture.width(),
        .pixelHeight = sight->picture.height(),
        .scaleFactor = 1,
        .nominalFPS = 60,
        .duration = 2};
    auto clicks = clicksOn(*sight, meta);
    const double took = findHints(*sight, meta, clicks);
    const Score score = scoreOf(clicks);
    tell(program.name, score);
    std::printf("   %5.1f ms a click\n", took);
    std::fflush(stdout);
    if (!folder.empty())
        draw(*sight, clicks, folder / (program.name + ".png"));
    return score;
}

struct Toolkit {
    const char* name;
    std::vector<Program> programs;
};

std::vector<Toolkit> toolkits()
{
    const std::string qt = "/usr/lib/qt6/bin/";
    const auto browser = [](const char* name, PageKind kind) {
        return Program{
            name,
            {"chromium",
             "--no-sandbox",
             "--no-first-run",
             "--force-renderer-accessibility",
             "--disable-gpu",
             "--window-position=0,0",
             "--window-size=1920,1080",
             "--app=file://~/page.html"},
            "page.html",
            page(kind)};
    };
    return {
        {"GTK 3",
         {{"gtk widget factory", {"gtk3-widget-factory"}, {}, {}},
          {"gtk demo", {"gtk3-demo"}, {}, {}},
          {"gtk icon browser", {"gtk3-icon-browser"}, {}, {}}}},
        {"Qt 6",
         {{"qt assistant", {qt + "assistant"}, {}, {}},
          {"qt designer", {qt + "designer"}, {}, {}},
          {"qt designer with a form", {qt + "designer", "~/form.ui"}, "form.ui", form()},
          {"qt linguist", {qt + "linguist"}, {}, {}},
          {"qt bus viewer", {qt + "qdbusviewer"}, {}, {}}}},
        {"Chromium",
         {browser("page, light", PageKind::Light),
          browser("page, dark", PageKind::Dark),
          browser("page, with a dialog", PageKind::Dialog)}}};
}

/// Whether the clicks of every toolkit have a region often enough.
bool run(const std::filesystem::path& folder, std::string_view only)
{
    bool isEnough = true;
    std::printf("  %-26s %-23s %s\n", "", "by the picture alone", "by the bus or the picture");
    for (const Toolkit& toolkit : toolkits()) {
        Score all;
        for (const Program& program : toolkit.programs)
            if (program.name.contains(only))
                all += measure(program, folder).value_or(Score{});
        if (all.clicks == 0)
            continue;
        const bool passes = percent(all.known, all.clicks) >= kLeastShare;
        isEnough = isEnough && passes;
        tell(toolkit.name, all);
        const bool isSeen = percent(all.right, all.plausible) >= kLeastShare;
        std::printf(
            "   at least %.0f: %s, %s\n",
            kLeastShare,
            isSeen ? "pass" : "MISS",
            passes ? "pass" : "MISS");
    }
    return isEnough;
}

} // namespace
} // namespace zento::bench

int main(int count, char** arguments)
try {
    const std::filesystem::path folder = count > 1 ? arguments[1] : "";
    if (!folder.empty())
        std::filesystem::create_directories(folder);
    return zento::bench::run(folder, count > 2 ? arguments[2] : "") ? 0 : 1;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
}
