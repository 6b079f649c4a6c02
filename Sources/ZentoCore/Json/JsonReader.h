#pragma once

#include "ZentoCore/Error.h"

#include <simdjson.h>

#include <concepts>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zento {

// Reading records from parsed JSON. A record names its fields once, in a function
// `void decode(const JsonObject&, Record&)`; lists and optional values of it then follow by
// themselves. Unknown keys are ignored, a null counts as a missing key, 1920.0 is an integer.
// Everything here throws `Error` with one sentence.

class JsonObject;

template <typename Record>
concept DecodableRecord =
    requires(const JsonObject& object, Record& record) { decode(object, record); };

void decodeValue(simdjson::dom::element element, double& value);
void decodeValue(simdjson::dom::element element, int& value);
void decodeValue(simdjson::dom::element element, bool& value);
void decodeValue(simdjson::dom::element element, std::string& value);

template <DecodableRecord Record>
void decodeValue(simdjson::dom::element element, Record& value);

template <typename Item>
void decodeValue(simdjson::dom::element element, std::vector<Item>& value);

template <typename Item>
void decodeValue(simdjson::dom::element element, std::map<std::string, Item>& value);

[[noreturn]] void throwWrongType(std::string_view expected);

/// One JSON object; valid as long as the parser that made it is not used again.
class JsonObject {
public:
    explicit JsonObject(simdjson::dom::element element);

    /// The value of a key, or nothing if the key is missing or null.
    std::optional<simdjson::dom::element> find(std::string_view key) const;

    template <typename Value>
    void required(std::string_view key, Value& value) const
    {
        const auto element = find(key);
        if (!element) {
            throwMissing(key);
        }
        decodeField(key, *element, value);
    }

    template <typename Value>
    void optional(std::string_view key, std::optional<Value>& value) const
    {
        value.reset();
        if (const auto element = find(key)) {
            decodeField(key, *element, value.emplace());
        }
    }

    /// Leaves `value`, the default, as it is when the key is missing. Returns whether it was there.
    template <typename Value>
    bool orDefault(std::string_view key, Value& value) const
    {
        const auto element = find(key);
        if (element) {
            decodeField(key, *element, value);
        }
        return element.has_value();
    }

    simdjson::dom::object fields() const { return m_object; }

private:
    template <typename Value>
    static void decodeField(std::string_view key, simdjson::dom::element element, Value& value)
    {
        try {
            decodeValue(element, value);
        } catch (const Error& error) {
            rethrowInField(key, error);
        }
    }

    [[noreturn]] static void throwMissing(std::string_view key);
    [[noreturn]] static void rethrowInField(std::string_view key, const Error& error);

    simdjson::dom::object m_object;
};

template <DecodableRecord Record>
void decodeValue(simdjson::dom::element element, Record& value)
{
    decode(JsonObject(element), value);
}

template <typename Item>
void decodeValue(simdjson::dom::element element, std::vector<Item>& value)
{
    simdjson::dom::array array;
    if (element.get_array().get(array) != simdjson::SUCCESS) {
        throwWrongType("a list");
    }
    value.clear();
    value.reserve(array.size());
    for (const simdjson::dom::element item : array) {
        decodeValue(item, value.emplace_back());
    }
}

template <typename Item>
void decodeValue(simdjson::dom::element element, std::map<std::string, Item>& value)
{
    value.clear();
    for (const auto& [key, item] : JsonObject(element).fields()) {
        decodeValue(item, value[std::string(key)]);
    }
}

/// What lies in memory behind a JSON text. The parser reads a little past its end.
enum class Tail {
    Unknown,  // the text is copied first
    Readable, // at least `simdjson::SIMDJSON_PADDING` bytes, whatever they hold
};

/// Parses a whole text; `parser` keeps the memory that the result points into.
simdjson::dom::element
parseJson(simdjson::dom::parser& parser, std::string_view json, Tail tail = Tail::Unknown);

/// A whole document of one record or one list of records.
template <typename Value>
Value decodeDocument(std::string_view json)
{
    simdjson::dom::parser parser;
    Value value{};
    decodeValue(parseJson(parser, json), value);
    return value;
}

} // namespace zento
