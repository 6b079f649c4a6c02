#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoCore/KeyCombo.h"
#include "ZentoCore/StyleSpec.h"
#include "ZentoEngine/PlanConfig.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace zento {

/// The user's preferences, stored whole as "settings.json".
struct AppSettings {
    enum class CameraIntensity : unsigned char { Subtle, Balanced, Dramatic };
    enum class Aspect : unsigned char { Wide, Vertical, Square };
    enum class Resolution : unsigned char { P1080, P1440, P2160 };

    CameraIntensity cameraIntensity = CameraIntensity::Balanced;
    double typingSpeed = 2.4;
    double idleThreshold = 1.6; // seconds
    bool cutIdle = true;
    std::string backgroundID = "indigo-night"; // a preset, "custom", "desktop" or "wallpaper:…"
    std::optional<std::string> customBackgroundPath;
    double padding = 0.055; // fraction of the canvas height
    double cornerRadius = 18;
    double shadowOpacity = 0.5;
    double cursorScale = 2;
    bool cursorAutoHide = true;
    bool showKeystrokes = false;
    bool motionBlur = false;
    bool pointerOnClick = true;        // older form of `pointerStyle`, still written
    std::string pointerStyle = "hand"; // "arrow", "hand", "circle", "hidden"
    bool clickSFX = true;
    bool whooshSFX = true;
    double musicGainDb = -11;
    bool recordNarration = false;
    bool showCaptions = true;
    double narrationGainDb = 0;
    bool recordSystemAudio = false;
    double systemAudioGainDb = -3;
    bool semanticEdit = true;
    bool recordWebcam = false;
    std::string webcamCorner = "bottomLeft";
    double webcamSize = 0.24;
    std::string webcamShape = "circle";
    bool webcamRing = true;
    double webcamRoundness = 0.5;
    bool webcamMirror = false;
    double webcamZoom = 1;
    bool webcamShadow = true;
    bool webcamEnhance = false;
    bool webcamBlurBackground = false;
    bool autoCheckUpdates = false;
    std::string microphoneID; // empty: the default device
    std::string cameraID;     // empty: the default device
    int countdownSeconds = 3;
    bool muteNotifications = false;
    std::string focusOnShortcut = "Zento Focus On";
    std::string focusOffShortcut = "Zento Focus Off";
    std::string exportFormat = "mp4"; // "mp4", "gif"
    bool revealAfterExport = true;
    bool titleCard = false;
    bool endCard = false;
    std::string endCardHeading = "Try it today";
    std::string endCardLine;
    std::string titleCardText;
    std::string cardDesign = "classic";
    std::string cardAccentHex = "#7C6CFF";
    double cardSeconds = 2.2;
    std::map<std::string, KeyCombo> shortcuts; // by action; only changed ones
    Aspect aspect = Aspect::Wide;
    Resolution resolution = Resolution::P1080;
    double fps = 60;
    bool cropToFill = false;

    /// "settings.json" in the user's configuration folder; creates its folder.
    static std::filesystem::path fileURL();

    /// What `backgroundID` stands for. `desktopImage` is the desktop's current picture, if any.
    StyleSpec::Background background(const std::optional<std::string>& desktopImage) const;
    StyleSpec styleSpec(const std::optional<std::string>& desktopImage) const;
    PlanConfig planConfig() const;
    OutputSpec outputSpec() const;

    /// Width over height of the preview.
    double previewAspect() const;

    bool operator==(const AppSettings&) const = default;
};

std::string encodeSettings(const AppSettings& settings);

/// Every key may be missing; a value of the wrong type fails the whole document with `Error`.
AppSettings decodeSettings(std::string_view json);

/// The file's settings, or the defaults where it is missing or does not decode.
AppSettings loadSettings(const std::filesystem::path& file);

/// Writes the file whole; a failure is ignored, the settings stay live for this run.
void saveSettings(const AppSettings& settings, const std::filesystem::path& file);

} // namespace zento
