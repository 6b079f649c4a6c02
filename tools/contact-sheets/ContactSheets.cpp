// Draws what a test cannot judge, to be looked at: contact_sheets OUTPUT_FOLDER

#include "Sheet.h"
#include "ZentoCore/BackgroundCatalog.h"
#include "ZentoImaging/Convert.h"
#include "ZentoRender/BackgroundRenderer.h"
#include "ZentoRender/CursorSprite.h"
#include "ZentoRender/FrameCompositor.h"
#include "ZentoRender/Screenshot/AnnotationRenderer.h"
#include "ZentoRender/Screenshot/ShotComposer.h"

#include <array>
#include <exception>
#include <iostream>
#include <memory>

namespace zento {
namespace {

struct Ground {
    const char* name;
    const char* color;
};
constexpr std::array<Ground, 2> kGrounds = {{{"dark", "#1B1E26"}, {"light", "#F4F5F7"}}};

void backgrounds(const std::filesystem::path& folder)
{
    Sheet sheet(320, 180, 6);
    for (const BackgroundPreset& preset : BackgroundCatalog::all())
        sheet.add(
            preset.id + " · " + preset.name,
            BackgroundRenderer::render(preset.background, 320, 180));
    sheet.save(folder / "backgrounds.png");
}

/// One colour, as a frame of a recording.
VideoFrame plainFrame(const char* color, VideoSize size)
{
    const Canvas canvas =
        BackgroundRenderer::render(Background::Color{color}, size.width, size.height);
    const auto picture = std::make_shared<const Picture>(toPicture(canvas, Layout::Yuv420));
    return {picture->yuv(), picture, 0, 1};
}

/// The pointer as a film shows it, and the ripple of a click beside it.
Canvas pointerPicture(const char* ground, const std::string& cursorStyle, const std::string& shape)
{
    constexpr VideoSize kSize = {320, 180};
    StyleSpec style;
    style.padding = 0;
    style.cornerRadius = 0;
    style.cursorScale = 10;
    style.cursorStyle = cursorStyle;
    FrameCompositor compositor(
        {.width = kSize.width, .height = kSize.height, .fps = 60}, style, kSize);
    const FrameLayers layers = {
        .source = plainFrame(ground, kSize),
        .camera = {{160, 90}, 1},
        .cursor = CursorState{.pos = {110, 70}, .style = shape},
        .ripples = {{{240, 90}, 0.35}}};
    return toCanvas(compositor.compose(layers)->view());
}

void pointers(const std::filesystem::path& folder)
{
    struct Pointer {
        const char* name;
        const char* cursorStyle;
        const char* shape;
    };
    constexpr std::array<Pointer, 4> kPointers = {
        {{"arrow", "system", "arrow"},
         {"iBeam", "system", "iBeam"},
         {"pointingHand", "system", "pointingHand"},
         {"circle", "circle", "arrow"}}};
    Sheet sheet(320, 180, static_cast<int>(kPointers.size()));
    for (const Ground& ground : kGrounds)
        for (const Pointer& pointer : kPointers)
            sheet.add(
                std::string(pointer.name) + " on " + ground.name,
                pointerPicture(ground.color, pointer.cursorStyle, pointer.shape));
    sheet.save(folder / "pointers.png");
}

void textCards(const std::filesystem::path& folder)
{
    constexpr std::array kDesigns = {"classic", "editorial", "mono", "glow", "pill", "underline"};
    constexpr OutputSpec kOutput = {.width = 960, .height = 540, .fps = 60};
    Sheet sheet(480, 270, static_cast<int>(kDesigns.size()) / 2);
    for (const Ground& ground : kGrounds) {
        StyleSpec style;
        style.background = Background::Color{ground.color};
        FrameCompositor compositor(kOutput, style, {960, 540});
        for (const char* design : kDesigns) {
            const TextCard card = {
                .title = "A weather station", .subtitle = "Its next version", .design = design};
            sheet.add(
                std::string(design) + " on " + ground.name,
                toCanvas(compositor.composeCard(card, 0.5)->view()));
        }
    }
    sheet.save(folder / "cards.png");
}

/// Something to mark: a window with lines of text.
Canvas shot(const char* ground, int width, int height)
{
    Canvas canvas = BackgroundRenderer::render(Background::Color{ground}, width, height);
    const bool isDark = AnnotationRenderer::luminance(ground) < 0.5;
    for (int line = 0; line * 24 + 40 < height; ++line)
        canvas.drawText(
            "Line " + std::to_string(line + 1) + " of a text that is to be marked, hidden or shown",
            {.size = 15},
            {16, 30.0 + 24 * line},
            Color::gray(isDark ? 0.85 : 0.15));
    return canvas;
}

Annotation sample(Annotation::Kind kind)
{
    Annotation mark = {
        .kind = kind,
        .start = {60, 60},
        .end = {320, 150},
        .text = "Look: 看 انظر 👀",
        .width = 1.5};
    if (kind == Annotation::Kind::Highlight)
        mark.colorHex = "#FFCC00";
    if (kind == Annotation::Kind::Badge)
        mark.number = 12;
    for (int i = 0; i < 60; ++i)
        mark.points.push_back({60 + 4.0 * i, 100 + (i % 20 < 10 ? i % 10 : 10 - i % 10) * 6.0});
    return mark;
}

void annotations(const std::filesystem::path& folder)
{
    Sheet sheet(400, 220, 5);
    for (const Ground& ground : kGrounds) {
        for (const Annotation::Kind kind : kAllAnnotationKinds) {
            const std::array marks = {sample(kind)};
            sheet.add(
                std::string(name(kind)) + " on " + ground.name,
                AnnotationRenderer::flatten(shot(ground.color, 400, 220), marks));
        }
    }
    std::vector<Annotation> badges;
    for (const std::string_view color : AnnotationRenderer::kPalette) {
        const auto i = static_cast<double>(badges.size());
        badges.push_back(
            {.kind = Annotation::Kind::Badge,
             .start = {40 + 46 * i, 110},
             .colorHex = std::string(color),
             .number = static_cast<int>(i) + 1});
    }
    const std::array spotlights = {
        Annotation{.kind = Annotation::Kind::Spotlight, .start = {40, 30}, .end = {240, 140}},
        Annotation{.kind = Annotation::Kind::Spotlight, .start = {180, 90}, .end = {360, 200}}};
    sheet.add("the palette", AnnotationRenderer::flatten(shot("#808080", 400, 220), badges));
    sheet.add(
        "overlapping spotlights",
        AnnotationRenderer::flatten(shot("#F4F5F7", 400, 220), spotlights));
    sheet.save(folder / "annotations.png");
}

/// A window's picture, its corners transparent.
Canvas roundedWindow()
{
    Canvas window(640, 400);
    window.clip(Path().roundedRect({0, 0, 640, 400}, 40));
    window.drawImage(shot("#F4F5F7", 640, 400), window.bounds());
    return window;
}

void shots(const std::filesystem::path& folder)
{
    Sheet sheet(800, 560, 3);
    ShotStyle style;
    style.background = BackgroundCatalog::meshes().front().background;
    sheet.add("a card", ShotComposer::beautify(shot("#F4F5F7", 640, 400), style));
    sheet.add("a window with transparent corners", ShotComposer::beautify(roundedWindow(), style));
    style.background = Background::Color{"#FFFFFF"};
    sheet.add("on white", ShotComposer::beautify(shot("#1B1E26", 640, 400), style));
    sheet.save(folder / "shots.png");
}

} // namespace
} // namespace zento

int main(int count, char** words)
{
    if (count != 2) {
        std::cerr << "usage: contact_sheets OUTPUT_FOLDER\n";
        return 2;
    }
    try {
        const std::filesystem::path folder = words[1];
        std::filesystem::create_directories(folder);
        for (const auto draw :
             {zento::backgrounds,
              zento::pointers,
              zento::textCards,
              zento::annotations,
              zento::shots})
            draw(folder);
    } catch (const std::exception& error) {
        std::cerr << "contact_sheets: " << error.what() << '\n';
        return 1;
    }
}
