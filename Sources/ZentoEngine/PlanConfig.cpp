#include "ZentoEngine/PlanConfig.h"

#include "ZentoCore/Json/JsonFields.h"

namespace zento {

namespace {

/// Names every field once, in the order of the record.
template <typename Visit, typename Config>
void forEachField(Visit visit, Config& config)
{
    visit("idleThreshold", config.idleThreshold);
    visit("preHandle", config.preHandle);
    visit("postHandle", config.postHandle);
    visit("typingSpeed", config.typingSpeed);
    visit("scrollSpeed", config.scrollSpeed);
    visit("zoomLevels", config.zoomLevels);
    visit("focusFraction", config.focusFraction);
    visit("cameraLead", config.cameraLead);
    visit("minKeyframeSpacing", config.minKeyframeSpacing);
    visit("wideAfter", config.wideAfter);
    visit("clickSFX", config.clickSFX);
    visit("whooshSFX", config.whooshSFX);
    visit("showKeystrokes", config.showKeystrokes);
    visit("pointerOnClick", config.pointerOnClick);
}

} // namespace

void decode(const JsonObject& object, PlanConfig& config)
{
    forEachField([&](const char* key, auto& value) { object.required(key, value); }, config);
}

std::string encodePlanConfig(const PlanConfig& config)
{
    JsonWriter json(JsonWriter::Form::Document, JsonWriter::KeyOrder::AsGiven);
    json.beginObject();
    forEachField([&](const char* key, const auto& value) { field(json, key, value); }, config);
    json.endObject();
    return json.takeText();
}

PlanConfig decodePlanConfig(std::string_view json)
{
    return decodeDocument<PlanConfig>(json);
}

} // namespace zento
