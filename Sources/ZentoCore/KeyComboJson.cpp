#include "ZentoCore/KeyComboJson.h"

#include "ZentoCore/Json/JsonFields.h"

namespace zento {

void encode(JsonWriter& json, const KeyCombo& combo)
{
    json.beginObject();
    field(json, "command", combo.command);
    field(json, "control", combo.control);
    field(json, "key", combo.key);
    field(json, "option", combo.option);
    field(json, "shift", combo.shift);
    json.endObject();
}

void decode(const JsonObject& object, KeyCombo& combo)
{
    object.required("key", combo.key);
    object.required("command", combo.command);
    object.required("shift", combo.shift);
    object.required("option", combo.option);
    object.required("control", combo.control);
}

} // namespace zento
