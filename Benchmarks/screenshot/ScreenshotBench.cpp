// What screenshots cost, in milliseconds of processor time: the view of a shot that is being drawn
// on, the finished picture, and a step of a scrolling capture. One thread; medians.

#include "ProcessorTime.h"
#include "Zento/Screenshot/ShotDrawing.h"
#include "Zento/Screenshot/ShotPresets.h"
#include "ZentoCapture/ScrollSignature.h"
#include "ZentoCapture/ScrollStitch.h"
#include "ZentoRender/Screenshot/AnnotationRenderer.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace {

using namespace zento;

/// Lines of dark words on white, at no regular distance.
Canvas textPage(int width, int height)
{
    std::mt19937 random(7);
    Canvas page(width, height);
    page.fillAll(Color::gray(1));
    for (int y = 8; y < height; y += 20 + static_cast<int>(random() % 13)) {
        for (int x = 20; x < width - 200;) {
            const int word = 20 + static_cast<int>(random() % 120);
            page.fill(Path().rect({double(x), double(y), double(word), 14}), Color::gray(0.2));
            x += word + 12;
        }
    }
    return page;
}

Annotation mark(Annotation::Kind kind, Vec2 start, Vec2 end)
{
    return {.kind = kind, .start = start, .end = end, .text = "then send it"};
}

ShotDocument marks()
{
    ShotDocument document;
    double y = 200;
    for (const Annotation::Kind kind : kAllAnnotationKinds) {
        document.annotations.push_back(mark(kind, {400, y}, {1400, y + 150}));
        y += 180;
    }
    return document;
}

void row(const char* name, double milliseconds, const char* limit)
{
    std::printf("%-56s %8.2f ms   %s\n", name, milliseconds, limit);
}

void drawing(const std::shared_ptr<const Canvas>& shot)
{
    ShotDrawing view(DisplayShot::of(shot));
    const ShotStyle indigo = ShotPresets::all()[2].style;
    ShotDocument document = marks();
    document.annotations.push_back(mark(Annotation::Kind::Pen, {}, {}));
    row("a stroke of the pen grows, 3840 x 2160",
        bench::medianMilliseconds(
            60,
            [&](int i) {
                document.annotations.back().points.push_back({600.0 + 20 * i, 900.0 + i % 7 * 30});
                view.draw(document, indigo);
            }),
        "limit 16.7");
    row("another look, 3840 x 2160",
        bench::medianMilliseconds(
            11,
            [&](int i) {
                view.draw(document, ShotPresets::all()[static_cast<std::size_t>(i % 6)].style);
            }),
        "");
}

void output(const Canvas& shot)
{
    const ShotStyle indigo = ShotPresets::all()[2].style;
    const ShotDocument document = marks();
    Canvas picture(1, 1);
    row("the finished picture, 3840 x 2160 in Indigo",
        bench::medianMilliseconds(5, [&](int) { picture = flattened(shot, document, indigo); }),
        "");
    row("its PNG file",
        bench::medianMilliseconds(3, [&](int) { AnnotationRenderer::pngData(picture, 2); }),
        "");
}

void scrolling()
{
    const Canvas page = textPage(2880, 1800 + 3 * 1080);
    const auto frame = [&page](int offset) {
        Canvas cut(2880, 1800);
        cut.drawImage(
            page, {0, -double(offset), 2880, double(page.height())}, Interpolation::Nearest);
        return std::make_shared<const Canvas>(std::move(cut));
    };
    const auto first = frame(0);
    const auto second = frame(1080);
    const ScrollSignature previous(*first);
    row("signature and shift, 2880 x 1800",
        bench::medianMilliseconds(
            21,
            [&](int) {
                if (ScrollSignature(*second).shift(previous) != 1080) {
                    std::puts("wrong");
                }
            }),
        "limit 15");
    const ScrollStitch begun(first);
    row("a whole step of a scrolling capture, 2880 x 1800",
        bench::medianMilliseconds(
            21,
            [&](int) {
                ScrollStitch stitch = begun;
                stitch.add(*second, 1080);
            }),
        "");
}

} // namespace

int main()
{
    const auto shot = std::make_shared<const Canvas>(textPage(3840, 2160));
    drawing(shot);
    output(*shot);
    scrolling();
}
