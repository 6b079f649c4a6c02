#pragma once

#include "ZentoCore/Geometry.h"
#include "ZentoCore/Json/JsonReader.h"
#include "ZentoCore/Json/JsonWriter.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The shared ground of the record encoders: fields, lists and the two geometric records.

namespace zento {

inline void decode(const JsonObject& object, Vec2& point)
{
    object.required("x", point.x);
    object.required("y", point.y);
}

inline void decode(const JsonObject& object, Rect& rect)
{
    object.required("x", rect.x);
    object.required("y", rect.y);
    object.required("w", rect.w);
    object.required("h", rect.h);
}

inline void encode(JsonWriter& json, const Vec2& point)
{
    json.beginObject();
    json.key("x");
    json.value(point.x);
    json.key("y");
    json.value(point.y);
    json.endObject();
}

inline void encode(JsonWriter& json, const Rect& rect)
{
    json.beginObject();
    json.key("h");
    json.value(rect.h);
    json.key("w");
    json.value(rect.w);
    json.key("x");
    json.value(rect.x);
    json.key("y");
    json.value(rect.y);
    json.endObject();
}

template <typename Value>
    requires requires(JsonWriter& json, const Value& value) { json.value(value); }
void encode(JsonWriter& json, const Value& value)
{
    json.value(value);
}

template <typename Item>
void encode(JsonWriter& json, const std::vector<Item>& items)
{
    json.beginArray();
    for (const Item& item : items) {
        encode(json, item);
    }
    json.endArray();
}

template <typename Item>
void encode(JsonWriter& json, const std::map<std::string, Item>& items)
{
    json.beginObject();
    for (const auto& [key, item] : items) {
        json.key(key);
        encode(json, item);
    }
    json.endObject();
}

/// One key and its value; an absent value leaves the key out.
template <typename Value>
void field(JsonWriter& json, std::string_view key, const Value& value)
{
    json.key(key);
    encode(json, value);
}

template <typename Value>
void field(JsonWriter& json, std::string_view key, const std::optional<Value>& value)
{
    if (value) {
        field(json, key, *value);
    }
}

} // namespace zento
