#include "Zento/Screenshot/ShotPresets.h"

#include "ZentoCore/BackgroundCatalog.h"
#include "ZentoImaging/Canvas.h"
#include "ZentoRender/BackgroundRenderer.h"
#include "ZentoRender/Screenshot/AnnotationRenderer.h"

#include <array>
#include <cstdio>
#include <utility>

namespace zento::ShotPresets {

namespace {

constexpr double kCataloguePadding = 0.075;
constexpr double kCatalogueCorner = 20;
constexpr double kBright = 0.7;

/// The mean luminance of what it draws.
double luminance(const StyleSpec::Background& background)
{
    constexpr int kWidth = 16;
    constexpr int kHeight = 10;
    const Canvas canvas = BackgroundRenderer::render(background, kWidth, kHeight);
    double sum = 0;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            std::array<char, 8> hex{};
            const unsigned rgb = canvas.pixels().row(y)[x] & 0xFFFFFFU;
            std::snprintf(hex.data(), hex.size(), "#%06X", rgb);
            sum += AnnotationRenderer::luminance(hex.data());
        }
    }
    return sum / (kWidth * kHeight);
}

ShotStyle catalogueStyle(StyleSpec::Background background)
{
    const double shadow = luminance(background) > kBright ? 0.3 : 0.5;
    return {
        .background = std::move(background),
        .padding = kCataloguePadding,
        .cornerRadius = kCatalogueCorner,
        .shadowOpacity = shadow};
}

void append(std::vector<ShotPreset>& presets, std::span<const BackgroundPreset> backgrounds)
{
    for (const BackgroundPreset& preset : backgrounds) {
        presets.push_back({"bg-" + preset.id, preset.name, catalogueStyle(preset.background)});
    }
}

ShotPresetGroup
group(std::string name, std::initializer_list<std::span<const BackgroundPreset>> families)
{
    ShotPresetGroup made{std::move(name), {}};
    for (const auto& family : families) {
        append(made.presets, family);
    }
    return made;
}

/// The shadow of a picture that has not been looked at.
ShotStyle pictureStyle(const std::string& path)
{
    return {
        .background = Background::Image{path},
        .padding = kCataloguePadding,
        .cornerRadius = kCatalogueCorner,
        .shadowOpacity = 0.5};
}

} // namespace

std::span<const ShotPreset> all()
{
    using Background::Gradient;
    using Background::LinearGradient;
    static const std::array<ShotPreset, 7> kLooks{{
        {"midnight", "Midnight", {LinearGradient{"#20242E", "#0B0D12"}, 0.07, 22, 0.55}},
        {"paper", "Paper", {LinearGradient{"#F7F8FA", "#E8EAF0"}, 0.06, 16, 0.3}},
        {"indigo", "Indigo", {Gradient{{"#3B3486", "#6C63FF", "#22D3EE"}, 24}, 0.085, 24, 0.5}},
        {"sunset", "Sunset", {Gradient{{"#F97316", "#EF4444", "#8B5CF6"}, 30}, 0.085, 24, 0.5}},
        {"meadow", "Meadow", {Gradient{{"#059669", "#34D399", "#A7F3D0"}, 18}, 0.08, 22, 0.45}},
        {"docs", "Docs", {Background::Color{"#FFFFFF"}, 0.035, 8, 0.18}},
        {"bare", "Bare", {Background::Color{"#000000"}, 0, 0, 0, true}},
    }};
    return kLooks;
}

ShotStyle match(const StyleSpec& style)
{
    return {
        .background = style.background,
        .padding = style.padding,
        .cornerRadius = style.cornerRadius,
        .shadowOpacity = style.shadowOpacity};
}

std::vector<ShotPreset>
wallpapers(const std::optional<std::string>& desktopImage, std::span<const Picture> pictures)
{
    std::vector<ShotPreset> presets;
    if (desktopImage) {
        presets.push_back({"wp-desktop", "Your desktop", pictureStyle(*desktopImage)});
    }
    for (const Picture& picture : pictures) {
        const std::string path = picture.path.string();
        presets.push_back({"wp-" + path, picture.name, pictureStyle(path)});
    }
    return presets;
}

std::vector<ShotPresetGroup> groups(const StyleSpec& style, std::vector<ShotPreset> wallpapers)
{
    namespace Catalog = BackgroundCatalog;
    ShotPresetGroup looks{"Looks", {{std::string(kMatch), "Match", match(style)}}};
    looks.presets.insert(looks.presets.end(), all().begin(), all().end());
    return {
        std::move(looks),
        group("Gradients", {Catalog::duos(), Catalog::trios(), Catalog::radials()}),
        group("Mesh", {Catalog::meshes()}),
        group("Patterns", {Catalog::patterns()}),
        group("Solids", {Catalog::solids()}),
        {"Wallpapers", std::move(wallpapers)}};
}

} // namespace zento::ShotPresets
