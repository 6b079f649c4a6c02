#include "FilterGraph.h"

#include "ZentoImaging/Canvas.h"
#include "ZentoImaging/Convert.h"
#include "ZentoImaging/ImageFile.h"
#include "ZentoRender/CursorSprite.h"
#include "ZentoRender/FrameCompositor.h"
#include "ZentoRender/SourceReader.h"

#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace zento::bench {

namespace {

struct Place {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

/// The card of the still camera on even pixels.
Place cardPlace(const EditPlan& plan, Vec2 source)
{
    const Card card = cardFor(
        {.center = {source.x / 2, source.y / 2}, .zoom = 1}, plan.output, plan.style, source);
    const auto even = [](double value) { return 2 * static_cast<int>(std::lround(value / 2)); };
    return {even(card.origin.x), even(card.origin.y), even(card.w), even(card.h)};
}

void savePictures(
    const SessionBundle& bundle,
    const EditPlan& plan,
    const Place& card,
    const std::filesystem::path& folder)
{
    SourceReader reader(bundle.screenMovieURL());
    FrameCompositor compositor(plan.output, plan.style, reader.naturalSize());
    auto source = reader.frame(0);
    if (!source)
        throw std::runtime_error("the recording has no picture");
    const FrameLayers layers = {
        .source = *std::move(source),
        .camera = {.center = plan.camera.front().center, .zoom = 1},
        .cursor = {},
        .ripples = {}};
    // The card lies where the graph will put its own.
    savePng(toCanvas(compositor.compose(layers)->view()), folder / "background.png");
    Canvas mask(card.width, card.height);
    mask.fillAll(Color::gray(0, 1));
    mask.fill(Path().roundedRect(mask.bounds(), plan.style.cornerRadius), Color::gray(1, 1));
    savePng(mask, folder / "mask.png");
    Canvas pointer(40, 56);
    CursorSprite::draw(pointer, CursorSprite::Shape::Arrow, {0, 0}, 56);
    savePng(pointer, folder / "pointer.png");
}

template <typename Number>
std::string text(Number value)
{
    return std::to_string(value);
}

std::string size(const Place& card)
{
    return text(card.width) + "x" + text(card.height);
}

/// The recording as a card with rounded corners.
std::string cardFilters(Graph graph, const Place& card)
{
    const std::string swing = "sin(" + text(kZoomRate) + "*on/60)";
    switch (graph) {
    case Graph::Still:
    case Graph::StillReread:
        return "[0:v]scale=" + size(card)
               + ":flags=bicubic,format=yuv420p[scaled];[scaled][mask]alphamerge[card];";
    case Graph::WholePixels:
        return "[0:v]fps=60,format=yuv420p,zoompan=d=1:fps=60:s=" + size(card) + ":z='1+"
               + text(kZoomDepth) + "*(1+" + swing
               + ")':x='(iw-iw/zoom)*(0.5+0.2*cos(1.3*on/60))'"
                 ":y='(ih-ih/zoom)*(0.5+0.2*sin(2.1*on/60))'[scaled];"
                 "[scaled][mask]alphamerge[card];";
    case Graph::SubPixel:
        break;
    }
    // A corner's place along an axis: half the canvas, less or more half of the card's share of it.
    const auto corner = [&](const char* axis, const char* sign, int side) {
        return std::string("'") + axis + "/2" + sign + text(side / 2) + "*(1+" + text(kZoomDepth)
               + "*" + swing + ")'";
    };
    const std::string left = corner("W", "-", card.width);
    const std::string right = corner("W", "+", card.width);
    const std::string top = corner("H", "-", card.height);
    const std::string bottom = corner("H", "+", card.height);
    return "[mask]scale=1920x1080[whole];[0:v]fps=60,format=yuv420p[scaled];[scaled][whole]"
           "alphamerge,perspective=sense=destination:eval=frame:interpolation=cubic:x0="
           + left + ":y0=" + top + ":x1=" + right + ":y1=" + top + ":x2=" + left + ":y2=" + bottom
           + ":x3=" + right + ":y3=" + bottom + "[card];";
}

std::string filters(Graph graph, const Place& card)
{
    const bool rereads = graph == Graph::StillReread;
    const std::string place = graph == Graph::SubPixel ? "0:0" : text(card.x) + ":" + text(card.y);
    return std::string("[1:v]format=yuv420p")
           + (rereads ? "" : ",loop=loop=-1:size=1,settb=1/60,setpts=N")
           + "[under];[2:v]format=gray[mask];" + cardFilters(graph, card)
           + "[under][card]overlay=" + place
           + ":format=yuv420[film];"
             "[film][3:v]overlay=x='960+400*cos(1.7*t)':y='540+250*sin(2.3*t)':format=yuv420";
}

} // namespace

Cost runFilterGraph(
    const SessionBundle& bundle, Stretch stretch, Graph graph, const std::filesystem::path& folder)
{
    const EditPlan plan = stillPlan(bundle, stretch, 1920, 1080);
    const Vec2 source = {
        static_cast<double>(bundle.meta.pixelWidth), static_cast<double>(bundle.meta.pixelHeight)};
    const Place card = cardPlace(plan, source);
    runInChild([&](auto) { savePictures(bundle, plan, card, folder); }, {});

    const auto picture = [&](const char* name) { return (folder / name).string(); };
    std::vector<std::string> command = {"ffmpeg", "-v", "error", "-nostdin", "-y", "-threads", "1"};
    const auto add = [&](std::initializer_list<std::string> words) {
        command.insert(command.end(), words);
    };
    add({"-ss", std::to_string(stretch.begin), "-i", bundle.screenMovieURL().string()});
    for (const char* name : {"background.png", "mask.png", "pointer.png"})
        add(
            {"-framerate",
             "60",
             "-loop",
             graph == Graph::StillReread ? "1" : "0",
             "-i",
             picture(name)});
    add(
        {"-filter_complex",
         filters(graph, card),
         "-t",
         std::to_string(stretch.end - stretch.begin)});
    add({"-c:v", "libx264", "-preset", "veryfast", "-profile:v", "high", "-b:v", "14929920"});
    add({"-threads", "2", "-an", picture("graph.mp4")});
    return runProgram(command);
}

} // namespace zento::bench
