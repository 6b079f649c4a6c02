#include "Zento/Model/AppSettings.h"
#include "Zento/Model/AppSettingsNames.h"
#include "ZentoCore/Json/JsonFields.h"
#include "ZentoCore/KeyComboJson.h"

#include <algorithm>
#include <utility>

namespace zento {

template <NamedEnum Enum>
void encode(JsonWriter& json, Enum value)
{
    json.value(
        std::ranges::find(names(value), value, &std::pair<Enum, std::string_view>::first)->second);
}

template <NamedEnum Enum>
void decodeValue(simdjson::dom::element element, Enum& value)
{
    std::string name;
    decodeValue(element, name);
    const auto found = std::ranges::find(
        names(value), std::string_view(name), &std::pair<Enum, std::string_view>::second);
    if (found == names(value).end()) {
        throwWrongType("one of the known names");
    }
    value = found->first;
}

void decode(const JsonObject& object, AppSettings& settings)
{
    object.orDefault("cameraIntensity", settings.cameraIntensity);
    object.orDefault("typingSpeed", settings.typingSpeed);
    object.orDefault("idleThreshold", settings.idleThreshold);
    object.orDefault("cutIdle", settings.cutIdle);
    object.orDefault("backgroundID", settings.backgroundID);
    object.optional("customBackgroundPath", settings.customBackgroundPath);
    object.orDefault("padding", settings.padding);
    object.orDefault("cornerRadius", settings.cornerRadius);
    object.orDefault("shadowOpacity", settings.shadowOpacity);
    object.orDefault("cursorScale", settings.cursorScale);
    object.orDefault("cursorAutoHide", settings.cursorAutoHide);
    object.orDefault("showKeystrokes", settings.showKeystrokes);
    object.orDefault("motionBlur", settings.motionBlur);
    object.orDefault("pointerOnClick", settings.pointerOnClick);
    if (!object.orDefault("pointerStyle", settings.pointerStyle)) {
        settings.pointerStyle = settings.pointerOnClick ? "hand" : "arrow";
    }
    object.orDefault("clickSFX", settings.clickSFX);
    object.orDefault("whooshSFX", settings.whooshSFX);
    object.orDefault("musicGainDb", settings.musicGainDb);
    object.orDefault("recordNarration", settings.recordNarration);
    object.orDefault("showCaptions", settings.showCaptions);
    object.orDefault("narrationGainDb", settings.narrationGainDb);
    object.orDefault("recordSystemAudio", settings.recordSystemAudio);
    object.orDefault("systemAudioGainDb", settings.systemAudioGainDb);
    object.orDefault("semanticEdit", settings.semanticEdit);
    object.orDefault("recordWebcam", settings.recordWebcam);
    object.orDefault("webcamCorner", settings.webcamCorner);
    object.orDefault("webcamSize", settings.webcamSize);
    object.orDefault("webcamShape", settings.webcamShape);
    object.orDefault("webcamRing", settings.webcamRing);
    if (!object.orDefault("webcamRoundness", settings.webcamRoundness)) {
        settings.webcamRoundness = WebcamPlan::roundnessForShape(settings.webcamShape);
    }
    object.orDefault("webcamMirror", settings.webcamMirror);
    object.orDefault("webcamZoom", settings.webcamZoom);
    object.orDefault("webcamShadow", settings.webcamShadow);
    object.orDefault("webcamEnhance", settings.webcamEnhance);
    object.orDefault("webcamBlurBackground", settings.webcamBlurBackground);
    object.orDefault("autoCheckUpdates", settings.autoCheckUpdates);
    object.orDefault("microphoneID", settings.microphoneID);
    object.orDefault("cameraID", settings.cameraID);
    object.orDefault("countdownSeconds", settings.countdownSeconds);
    object.orDefault("muteNotifications", settings.muteNotifications);
    object.orDefault("focusOnShortcut", settings.focusOnShortcut);
    object.orDefault("focusOffShortcut", settings.focusOffShortcut);
    object.orDefault("exportFormat", settings.exportFormat);
    object.orDefault("revealAfterExport", settings.revealAfterExport);
    object.orDefault("titleCard", settings.titleCard);
    object.orDefault("endCard", settings.endCard);
    object.orDefault("endCardHeading", settings.endCardHeading);
    object.orDefault("endCardLine", settings.endCardLine);
    object.orDefault("titleCardText", settings.titleCardText);
    object.orDefault("cardDesign", settings.cardDesign);
    object.orDefault("cardAccentHex", settings.cardAccentHex);
    object.orDefault("cardSeconds", settings.cardSeconds);
    object.orDefault("shortcuts", settings.shortcuts);
    object.orDefault("aspect", settings.aspect);
    object.orDefault("resolution", settings.resolution);
    object.orDefault("fps", settings.fps);
    object.orDefault("cropToFill", settings.cropToFill);
}

std::string encodeSettings(const AppSettings& settings)
{
    JsonWriter json(JsonWriter::Form::Document);
    json.beginObject();
    field(json, "aspect", settings.aspect);
    field(json, "autoCheckUpdates", settings.autoCheckUpdates);
    field(json, "backgroundID", settings.backgroundID);
    field(json, "cameraID", settings.cameraID);
    field(json, "cameraIntensity", settings.cameraIntensity);
    field(json, "cardAccentHex", settings.cardAccentHex);
    field(json, "cardDesign", settings.cardDesign);
    field(json, "cardSeconds", settings.cardSeconds);
    field(json, "clickSFX", settings.clickSFX);
    field(json, "cornerRadius", settings.cornerRadius);
    field(json, "countdownSeconds", settings.countdownSeconds);
    field(json, "cropToFill", settings.cropToFill);
    field(json, "cursorAutoHide", settings.cursorAutoHide);
    field(json, "cursorScale", settings.cursorScale);
    field(json, "customBackgroundPath", settings.customBackgroundPath);
    field(json, "cutIdle", settings.cutIdle);
    field(json, "endCard", settings.endCard);
    field(json, "endCardHeading", settings.endCardHeading);
    field(json, "endCardLine", settings.endCardLine);
    field(json, "exportFormat", settings.exportFormat);
    field(json, "focusOffShortcut", settings.focusOffShortcut);
    field(json, "focusOnShortcut", settings.focusOnShortcut);
    field(json, "fps", settings.fps);
    field(json, "idleThreshold", settings.idleThreshold);
    field(json, "microphoneID", settings.microphoneID);
    field(json, "motionBlur", settings.motionBlur);
    field(json, "musicGainDb", settings.musicGainDb);
    field(json, "muteNotifications", settings.muteNotifications);
    field(json, "narrationGainDb", settings.narrationGainDb);
    field(json, "padding", settings.padding);
    field(json, "pointerOnClick", settings.pointerOnClick);
    field(json, "pointerStyle", settings.pointerStyle);
    field(json, "recordNarration", settings.recordNarration);
    field(json, "recordSystemAudio", settings.recordSystemAudio);
    field(json, "recordWebcam", settings.recordWebcam);
    field(json, "resolution", settings.resolution);
    field(json, "revealAfterExport", settings.revealAfterExport);
    field(json, "semanticEdit", settings.semanticEdit);
    field(json, "shadowOpacity", settings.shadowOpacity);
    field(json, "shortcuts", settings.shortcuts);
    field(json, "showCaptions", settings.showCaptions);
    field(json, "showKeystrokes", settings.showKeystrokes);
    field(json, "systemAudioGainDb", settings.systemAudioGainDb);
    field(json, "titleCard", settings.titleCard);
    field(json, "titleCardText", settings.titleCardText);
    field(json, "typingSpeed", settings.typingSpeed);
    field(json, "webcamBlurBackground", settings.webcamBlurBackground);
    field(json, "webcamCorner", settings.webcamCorner);
    field(json, "webcamEnhance", settings.webcamEnhance);
    field(json, "webcamMirror", settings.webcamMirror);
    field(json, "webcamRing", settings.webcamRing);
    field(json, "webcamRoundness", settings.webcamRoundness);
    field(json, "webcamShadow", settings.webcamShadow);
    field(json, "webcamShape", settings.webcamShape);
    field(json, "webcamSize", settings.webcamSize);
    field(json, "webcamZoom", settings.webcamZoom);
    field(json, "whooshSFX", settings.whooshSFX);
    json.endObject();
    return json.takeText();
}

AppSettings decodeSettings(std::string_view json)
{
    return decodeDocument<AppSettings>(json);
}

} // namespace zento
