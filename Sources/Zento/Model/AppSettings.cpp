#include "Zento/Model/AppSettings.h"

#include "ZentoCore/BackgroundCatalog.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/UserFolders.h"

#include <system_error>
#include <utility>

namespace zento {

namespace {

std::vector<double> zoomLevels(AppSettings::CameraIntensity intensity)
{
    switch (intensity) {
    case AppSettings::CameraIntensity::Subtle:
        return {1.0, 1.25, 1.4, 1.6};
    case AppSettings::CameraIntensity::Balanced:
        return {1.0, 1.35, 1.6, 1.9};
    case AppSettings::CameraIntensity::Dramatic:
        return {1.0, 1.5, 1.8, 2.1};
    }
    std::unreachable();
}

/// The lines of a film: the height in every aspect, so a vertical film is narrow.
int lines(AppSettings::Resolution resolution)
{
    switch (resolution) {
    case AppSettings::Resolution::P1080:
        return 1080;
    case AppSettings::Resolution::P1440:
        return 1440;
    case AppSettings::Resolution::P2160:
        return 2160;
    }
    std::unreachable();
}

int widthFor(AppSettings::Aspect aspect, int height)
{
    switch (aspect) {
    case AppSettings::Aspect::Wide:
        return height * 16 / 9;
    case AppSettings::Aspect::Vertical:
        return height * 9 / 16;
    case AppSettings::Aspect::Square:
        return height;
    }
    std::unreachable();
}

} // namespace

std::filesystem::path AppSettings::fileURL()
{
    const std::filesystem::path folder = userConfigFolder() / "Zento";
    std::error_code ignored; // a folder that cannot be made shows when the file is written
    std::filesystem::create_directories(folder, ignored);
    return folder / "settings.json";
}

StyleSpec::Background AppSettings::background(const std::optional<std::string>& desktopImage) const
{
    constexpr std::string_view kWallpaper = "wallpaper:";
    if (backgroundID == "custom" && customBackgroundPath) {
        return Background::Image{*customBackgroundPath};
    }
    if (backgroundID == "desktop" && desktopImage) {
        return Background::Image{*desktopImage};
    }
    if (backgroundID.starts_with(kWallpaper)) {
        return Background::Image{backgroundID.substr(kWallpaper.size())};
    }
    if (const BackgroundPreset* preset = BackgroundCatalog::preset(backgroundID)) {
        return preset->background;
    }
    return Background::LinearGradient{"#2A2E3D", "#0C0E14"};
}

StyleSpec AppSettings::styleSpec(const std::optional<std::string>& desktopImage) const
{
    const bool isDrawn = pointerStyle == "circle" || pointerStyle == "hidden";
    return {
        .background = background(desktopImage),
        .padding = padding,
        .cornerRadius = cornerRadius,
        .shadowOpacity = shadowOpacity,
        .shadowRadius = 60,
        .shadowOffsetY = 20,
        .cursorScale = cursorScale,
        .cursorAutoHide = cursorAutoHide,
        .motionBlur = motionBlur,
        .fillsCanvas = cropToFill,
        .cursorStyle = isDrawn ? pointerStyle : "system",
    };
}

PlanConfig AppSettings::planConfig() const
{
    constexpr double kNeverIdle = 1e9; // seconds
    PlanConfig config;
    config.idleThreshold = cutIdle ? idleThreshold : kNeverIdle;
    config.typingSpeed = typingSpeed;
    config.zoomLevels = zoomLevels(cameraIntensity);
    config.clickSFX = clickSFX;
    config.whooshSFX = whooshSFX;
    config.showKeystrokes = showKeystrokes;
    config.pointerOnClick = pointerStyle == "hand";
    return config;
}

OutputSpec AppSettings::outputSpec() const
{
    const int height = lines(resolution);
    return {widthFor(aspect, height) / 2 * 2, height, fps};
}

double AppSettings::previewAspect() const
{
    switch (aspect) {
    case Aspect::Wide:
        return 16.0 / 9;
    case Aspect::Vertical:
        return 9.0 / 16;
    case Aspect::Square:
        return 1;
    }
    std::unreachable();
}

AppSettings loadSettings(const std::filesystem::path& file)
{
    try {
        return decodeSettings(readFile(file));
    } catch (const Error&) {
        return {};
    }
}

void saveSettings(const AppSettings& settings, const std::filesystem::path& file)
{
    try {
        writeFile(file, encodeSettings(settings));
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): stated in the header
    }
}

} // namespace zento
