#pragma once

#include "ZentoCore/Json/JsonReader.h"
#include "ZentoEngine/BeatGrid.h"

namespace zento {

/// For records that hold a grid.
void decode(const JsonObject& object, BeatGrid& grid);

} // namespace zento
