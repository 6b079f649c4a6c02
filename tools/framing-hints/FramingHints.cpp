// Draws the region found around every click that needs one over the frame it was found in, and
// writes the hints to the standard output: framing_hints BUNDLE OUTPUT_FOLDER

#include "ZentoImaging/Convert.h"
#include "ZentoImaging/ImageFile.h"
#include "ZentoIntelligence/FrameAnalyzer.h"
#include "ZentoMedia/VideoSeeker.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <iomanip>
#include <iostream>
#include <optional>
#include <string>

namespace zento {
namespace {

Canvas frameOf(VideoSeeker& movie, double t)
{
    const auto frame = movie.frame(t);
    if (!frame)
        return {1, 1};
    return frame->bitDepth() == 8 ? toCanvas(frame->planes8()) : toCanvas(frame->planes10());
}

void draw(Canvas& canvas, const InputEvent& click, const std::optional<Rect>& hint)
{
    constexpr double kDot = 7;
    const Color color = hint ? Color{0.95, 0.1, 0.45, 1} : Color{0.95, 0.65, 0, 1};
    if (hint)
        canvas.stroke(Path().rect(*hint), {.width = 4}, color);
    canvas.fill(Path().circle(click.pos, kDot), color);
}

void run(const std::filesystem::path& path, const std::filesystem::path& folder)
{
    const SessionBundle bundle = SessionBundle::load(path);
    VideoSeeker movie(bundle.screenMovieURL());
    const auto clicks = FrameAnalyzer::needyClicks(bundle.events, bundle.meta);
    const auto begin = std::chrono::steady_clock::now();
    const auto hints = FrameAnalyzer::analyze(bundle.screenMovieURL(), bundle.meta, clicks);
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begin;
    int number = 0;
    for (const InputEvent& click : clicks) {
        const auto hint = std::ranges::find(hints, click.t, &FramingHint::sourceTime);
        Canvas canvas = frameOf(movie, click.t);
        draw(canvas, click, hint == hints.end() ? std::nullopt : std::optional(hint->rect));
        savePng(canvas, folder / (std::to_string(++number) + ".png"));
    }
    std::cout << encodeFramingHints(hints) << '\n';
    std::cerr << number << " clicks, " << hints.size() << " hints, " << std::fixed
              << std::setprecision(1) << took.count() / std::max(number, 1) << " ms a click\n";
}

} // namespace
} // namespace zento

int main(int count, char** arguments)
try {
    if (count != 3) {
        std::cerr << "framing_hints BUNDLE OUTPUT_FOLDER\n";
        return 2;
    }
    std::filesystem::create_directories(arguments[2]);
    zento::run(arguments[1], arguments[2]);
    return 0;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
}
