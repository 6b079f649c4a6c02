#pragma once

#include "ZentoCore/Json/JsonReader.h"
#include "ZentoCore/Json/JsonWriter.h"
#include "ZentoCore/StyleSpec.h"

namespace zento {

void encode(JsonWriter& json, const StyleSpec& style);
void encode(JsonWriter& json, const StyleSpec::Background& background);

/// Every key may be missing, and then leaves the field as it is.
void decode(const JsonObject& object, StyleSpec& style);

/// Throws unless the object holds exactly one known case.
void decode(const JsonObject& object, StyleSpec::Background& background);

} // namespace zento
