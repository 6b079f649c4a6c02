#include "ZentoCore/Json/JsonReader.h"

#include <cmath>
#include <limits>

namespace zento {

namespace {

Error undecodable(const std::string& reason)
{
    return {ErrorCode::kUndecodable, reason};
}

} // namespace

void throwWrongType(std::string_view expected)
{
    throw undecodable("expected " + std::string(expected));
}

void decodeValue(simdjson::dom::element element, double& value)
{
    if (element.get_double().get(value) != simdjson::SUCCESS) {
        throwWrongType("a number");
    }
}

void decodeValue(simdjson::dom::element element, int& value)
{
    double number = 0;
    decodeValue(element, number);
    if (number != std::trunc(number) || number < std::numeric_limits<int>::min()
        || number > std::numeric_limits<int>::max()) {
        throwWrongType("an integer");
    }
    value = static_cast<int>(number);
}

void decodeValue(simdjson::dom::element element, bool& value)
{
    if (element.get_bool().get(value) != simdjson::SUCCESS) {
        throwWrongType("true or false");
    }
}

void decodeValue(simdjson::dom::element element, std::string& value)
{
    std::string_view text;
    if (element.get_string().get(text) != simdjson::SUCCESS) {
        throwWrongType("a string");
    }
    value = text;
}

JsonObject::JsonObject(simdjson::dom::element element)
{
    if (element.get_object().get(m_object) != simdjson::SUCCESS) {
        throwWrongType("an object");
    }
}

std::optional<simdjson::dom::element> JsonObject::find(std::string_view key) const
{
    simdjson::dom::element element;
    if (m_object.at_key(key).get(element) != simdjson::SUCCESS || element.is_null()) {
        return std::nullopt;
    }
    return element;
}

void JsonObject::throwMissing(std::string_view key)
{
    throw undecodable("the key \"" + std::string(key) + "\" is missing");
}

void JsonObject::rethrowInField(std::string_view key, const Error& error)
{
    throw undecodable("in \"" + std::string(key) + "\": " + error.what());
}

simdjson::dom::element parseJson(simdjson::dom::parser& parser, std::string_view json, Tail tail)
{
    simdjson::dom::element element;
    const auto error = parser.parse(json.data(), json.size(), tail == Tail::Unknown).get(element);
    if (error) {
        throw undecodable(std::string("not valid JSON (") + simdjson::error_message(error) + ")");
    }
    return element;
}

} // namespace zento
