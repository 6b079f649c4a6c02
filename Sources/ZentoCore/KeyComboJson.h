#pragma once

#include "ZentoCore/Json/JsonReader.h"
#include "ZentoCore/Json/JsonWriter.h"
#include "ZentoCore/KeyCombo.h"

namespace zento {

void encode(JsonWriter& json, const KeyCombo& combo);
void decode(const JsonObject& object, KeyCombo& combo); // every key is required

} // namespace zento
