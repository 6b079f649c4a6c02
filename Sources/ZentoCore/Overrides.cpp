#include "ZentoCore/Overrides.h"

#include "ZentoCore/Json/JsonFields.h"

#include <algorithm>
#include <cmath>

namespace zento {

namespace {

constexpr double kUnset = 0.05; // seconds; a time up to this counts as not set

bool anyNear(const std::vector<double>& times, double near, double tolerance)
{
    return std::ranges::any_of(
        times, [&](double time) { return std::abs(time - near) <= tolerance; });
}

/// Two edits of one zoom contradict each other: no file of ours holds them.
void requireUnique(const std::vector<Overrides::ZoomEdit>& edits)
{
    std::vector<double> times;
    std::ranges::transform(edits, std::back_inserter(times), &Overrides::ZoomEdit::sourceTime);
    std::ranges::sort(times);
    if (std::ranges::adjacent_find(times) != times.end()) {
        throw Error(ErrorCode::kNoDefinedPlan, "two zoom edits have the same source time");
    }
}

} // namespace

void encode(JsonWriter& json, const Overrides::SourceRange& range)
{
    json.beginObject();
    field(json, "end", range.end);
    field(json, "start", range.start);
    json.endObject();
}

void encode(JsonWriter& json, const Overrides::ZoomEdit& edit)
{
    json.beginObject();
    field(json, "hold", edit.hold);
    field(json, "level", edit.level);
    field(json, "newSourceTime", edit.newSourceTime);
    field(json, "sourceTime", edit.sourceTime);
    json.endObject();
}

void encode(JsonWriter& json, const Overrides::AddedZoom& zoom)
{
    json.beginObject();
    field(json, "hold", zoom.hold);
    field(json, "id", zoom.id);
    field(json, "level", zoom.level);
    field(json, "sourceTime", zoom.sourceTime);
    json.endObject();
}

void decode(const JsonObject& object, Overrides::SourceRange& range)
{
    object.required("start", range.start);
    object.required("end", range.end);
}

void decode(const JsonObject& object, Overrides::ZoomEdit& edit)
{
    object.required("sourceTime", edit.sourceTime);
    object.optional("newSourceTime", edit.newSourceTime);
    object.optional("hold", edit.hold);
    object.optional("level", edit.level);
}

void decode(const JsonObject& object, Overrides::AddedZoom& zoom)
{
    object.required("id", zoom.id);
    object.required("sourceTime", zoom.sourceTime);
    object.required("hold", zoom.hold);
    object.required("level", zoom.level);
}

void decode(const JsonObject& object, Overrides& overrides)
{
    object.orDefault("disabledZoomSourceTimes", overrides.disabledZoomSourceTimes);
    object.orDefault("removedRanges", overrides.removedRanges);
    object.orDefault("zoomEdits", overrides.zoomEdits);
    object.orDefault("addedZooms", overrides.addedZooms);
    object.orDefault("deletedZoomSourceTimes", overrides.deletedZoomSourceTimes);
}

void decode(const JsonObject& object, SavedOverrides& saved)
{
    object.required("disabledZooms", saved.disabledZooms);
    object.orDefault("trimStart", saved.trimStart);
    object.orDefault("trimEnd", saved.trimEnd);
    object.orDefault("musicStart", saved.musicStart);
    object.orDefault("musicEnd", saved.musicEnd);
    object.orDefault("zoomEdits", saved.zoomEdits);
    object.orDefault("addedZooms", saved.addedZooms);
    object.orDefault("deletedZooms", saved.deletedZooms);
    requireUnique(saved.zoomEdits);
}

bool Overrides::isEmpty() const
{
    return *this == Overrides{};
}

std::optional<Overrides::ZoomEdit> Overrides::edit(double near, double tolerance) const
{
    const auto distance = [&](const ZoomEdit& edit) { return std::abs(edit.sourceTime - near); };
    const auto nearest = std::ranges::min_element(zoomEdits, {}, distance);
    if (nearest == zoomEdits.end() || distance(*nearest) > tolerance) {
        return std::nullopt;
    }
    return *nearest;
}

bool Overrides::zoomDisabled(double near, double tolerance) const
{
    return anyNear(disabledZoomSourceTimes, near, tolerance);
}

bool Overrides::zoomDeleted(double near, double tolerance) const
{
    return anyNear(deletedZoomSourceTimes, near, tolerance);
}

Overrides SavedOverrides::overrides(double duration) const
{
    Overrides result;
    if (trimStart > kUnset) {
        result.removedRanges.push_back({0, trimStart});
    }
    if (trimEnd > kUnset && trimEnd < duration - kUnset) {
        result.removedRanges.push_back({trimEnd, duration + 1}); // surely past the last frame
    }
    result.disabledZoomSourceTimes = disabledZooms;
    result.zoomEdits = zoomEdits;
    result.addedZooms = addedZooms;
    result.deletedZoomSourceTimes = deletedZooms;
    std::ranges::sort(result.disabledZoomSourceTimes);
    std::ranges::stable_sort(result.zoomEdits, {}, &Overrides::ZoomEdit::sourceTime);
    std::ranges::sort(result.deletedZoomSourceTimes);
    return result;
}

std::string encodeOverrides(const Overrides& overrides)
{
    JsonWriter json(JsonWriter::Form::Document);
    json.beginObject();
    field(json, "addedZooms", overrides.addedZooms);
    field(json, "deletedZoomSourceTimes", overrides.deletedZoomSourceTimes);
    field(json, "disabledZoomSourceTimes", overrides.disabledZoomSourceTimes);
    field(json, "removedRanges", overrides.removedRanges);
    field(json, "zoomEdits", overrides.zoomEdits);
    json.endObject();
    return json.takeText();
}

Overrides decodeOverrides(std::string_view json)
{
    return decodeDocument<Overrides>(json);
}

std::string encodeSavedOverrides(const SavedOverrides& saved)
{
    JsonWriter json(JsonWriter::Form::Document);
    const auto list = [&](std::string_view key, const auto& items) {
        if (!items.empty()) {
            field(json, key, items);
        }
    };
    const auto time = [&](std::string_view key, double value) {
        if (value > kUnset) {
            field(json, key, value);
        }
    };
    json.beginObject();
    list("addedZooms", saved.addedZooms);
    list("deletedZooms", saved.deletedZooms);
    field(json, "disabledZooms", saved.disabledZooms);
    time("musicEnd", saved.musicEnd);
    time("musicStart", saved.musicStart);
    time("trimEnd", saved.trimEnd);
    time("trimStart", saved.trimStart);
    list("zoomEdits", saved.zoomEdits);
    json.endObject();
    return json.takeText();
}

SavedOverrides decodeSavedOverrides(std::string_view json)
{
    return decodeDocument<SavedOverrides>(json);
}

} // namespace zento
