#include "Zento/Model/AppSettings.h"
#include "ZentoCore/Error.h"

#include <gtest/gtest.h>

#include <string>

namespace zento {
namespace {

AppSettings unusual()
{
    AppSettings settings;
    settings.cameraIntensity = AppSettings::CameraIntensity::Dramatic;
    settings.aspect = AppSettings::Aspect::Vertical;
    settings.resolution = AppSettings::Resolution::P2160;
    settings.customBackgroundPath = "/pictures/a.png";
    settings.backgroundID = "custom";
    settings.pointerStyle = "circle";
    settings.webcamRoundness = 0.31;
    settings.countdownSeconds = 5;
    settings.shortcuts["record"] = KeyCombo{"r", true, true, false, false};
    return settings;
}

TEST(SettingsDocuments, surviveTheRoundTrip)
{
    EXPECT_EQ(decodeSettings(encodeSettings(unusual())), unusual());
    EXPECT_EQ(decodeSettings(encodeSettings({})), AppSettings{});
    EXPECT_EQ(decodeSettings("{}"), AppSettings{});
    EXPECT_EQ(decodeSettings(R"({"fromTheFuture":1})"), AppSettings{});
}

TEST(SettingsDocuments, fillInWhatOlderOnesDidNotHave)
{
    EXPECT_EQ(decodeSettings(R"({"pointerOnClick":false})").pointerStyle, "arrow");
    EXPECT_EQ(
        decodeSettings(R"({"pointerOnClick":false,"pointerStyle":"hand"})").pointerStyle, "hand");
    EXPECT_EQ(decodeSettings(R"({"webcamShape":"rounded"})").webcamRoundness, 0.22);
}

TEST(SettingsDocuments, failAsAWholeForOneWrongValue)
{
    for (const char* json :
         {R"({"cameraIntensity":"wild"})", R"({"fps":"60"})", R"({"aspect":1})", "[]", ""}) {
        EXPECT_THROW(decodeSettings(json), Error) << json;
    }
    EXPECT_EQ(loadSettings("/does/not/exist.json"), AppSettings{});
}

TEST(Settings, chooseTheBackgroundInOrder)
{
    const std::string desktop = "/desktop.jpg";
    struct Case {
        std::string id;
        std::optional<std::string> custom;
        std::optional<std::string> desktop;
        StyleSpec::Background expected;
    };
    const Background::LinearGradient fallback{"#2A2E3D", "#0C0E14"};
    for (const auto& [id, custom, desk, expected] : std::initializer_list<Case>{
             {"custom", "/c.png", desktop, Background::Image{"/c.png"}},
             {"custom", {}, desktop, fallback},
             {"desktop", {}, desktop, Background::Image{desktop}},
             {"desktop", {}, {}, fallback},
             {"wallpaper:/w.png", {}, {}, Background::Image{"/w.png"}},
             {"wallpaper:", {}, {}, Background::Image{""}},
             {"black", {}, {}, Background::Color{"#000000"}},
             {"no such", {}, {}, fallback}}) {
        AppSettings settings;
        settings.backgroundID = id;
        settings.customBackgroundPath = custom;
        EXPECT_EQ(settings.background(desk), expected) << id;
    }
}

TEST(Settings, mapOntoTheStyle)
{
    AppSettings settings;
    settings.cropToFill = true;
    EXPECT_EQ(settings.styleSpec({}).shadowOffsetY, 20);
    EXPECT_TRUE(settings.styleSpec({}).fillsCanvas);
    for (const auto& [pointer, drawn] : std::initializer_list<std::pair<const char*, const char*>>{
             {"hand", "system"}, {"arrow", "system"}, {"circle", "circle"}, {"hidden", "hidden"}}) {
        settings.pointerStyle = pointer;
        EXPECT_EQ(settings.styleSpec({}).cursorStyle, drawn);
        EXPECT_EQ(settings.planConfig().pointerOnClick, std::string(pointer) == "hand");
    }
}

TEST(Settings, mapOntoThePlannersConfiguration)
{
    AppSettings settings;
    EXPECT_EQ(settings.planConfig(), PlanConfig{});
    settings.cutIdle = false;
    EXPECT_EQ(settings.planConfig().idleThreshold, 1e9);
    settings.cameraIntensity = AppSettings::CameraIntensity::Subtle;
    EXPECT_EQ(settings.planConfig().zoomLevels, (std::vector<double>{1.0, 1.25, 1.4, 1.6}));
}

TEST(Settings, sizeTheFilmByItsHeight)
{
    using enum AppSettings::Aspect;
    using enum AppSettings::Resolution;
    struct Case {
        AppSettings::Aspect aspect;
        AppSettings::Resolution resolution;
        int width;
        int height;
    };
    for (const auto& [aspect, resolution, width, height] : std::initializer_list<Case>{
             {Wide, P1080, 1920, 1080},
             {Vertical, P1080, 606, 1080},
             {Square, P1080, 1080, 1080},
             {Wide, P1440, 2560, 1440},
             {Vertical, P1440, 810, 1440},
             {Square, P1440, 1440, 1440},
             {Wide, P2160, 3840, 2160},
             {Vertical, P2160, 1214, 2160},
             {Square, P2160, 2160, 2160}}) {
        AppSettings settings;
        settings.aspect = aspect;
        settings.resolution = resolution;
        EXPECT_EQ(settings.outputSpec(), (OutputSpec{width, height, 60}));
    }
}

} // namespace
} // namespace zento
