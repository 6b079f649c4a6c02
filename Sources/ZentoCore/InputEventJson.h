#pragma once

#include "ZentoCore/InputEvent.h"
#include "ZentoCore/Json/JsonReader.h"
#include "ZentoCore/Json/JsonWriter.h"

namespace zento {

void encode(JsonWriter& json, const AXInfo& ax);
void encode(JsonWriter& json, const InputEvent& event);

void decode(const JsonObject& object, AXInfo& ax);
void decode(const JsonObject& object, InputEvent& event);

} // namespace zento
