#include "ZentoEngine/BeatGrid.h"

#include "ZentoCore/Json/JsonFields.h"
#include "ZentoEngine/BeatGridJson.h"

#include <cmath>

namespace zento {

std::vector<double> BeatGrid::beats() const
{
    std::vector<double> times;
    if (period > 0)
        for (double t = phase; t < duration; t += period)
            times.push_back(t);
    return times;
}

double BeatGrid::nearestBeat(double time) const
{
    return period > 0 ? phase + period * std::round((time - phase) / period) : time;
}

void decode(const JsonObject& object, BeatGrid& grid)
{
    object.required("bpm", grid.bpm);
    object.required("period", grid.period);
    object.required("phase", grid.phase);
    object.required("duration", grid.duration);
}

std::string encodeBeatGrid(const BeatGrid& grid)
{
    JsonWriter json(JsonWriter::Form::Document, JsonWriter::KeyOrder::AsGiven);
    json.beginObject();
    field(json, "bpm", grid.bpm);
    field(json, "period", grid.period);
    field(json, "phase", grid.phase);
    field(json, "duration", grid.duration);
    json.endObject();
    return json.takeText();
}

BeatGrid decodeBeatGrid(std::string_view json)
{
    return decodeDocument<BeatGrid>(json);
}

} // namespace zento
