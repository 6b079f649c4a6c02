#include "ZentoCore/InputEventJson.h"
#include "ZentoCore/Json/JsonFields.h"
#include "ZentoCore/SessionBundle.h"

#include <algorithm>
#include <string>

namespace zento {

void encode(JsonWriter& json, const AXInfo& ax)
{
    json.beginObject();
    field(json, "frame", ax.frame);
    field(json, "role", ax.role);
    field(json, "title", ax.title);
    json.endObject();
}

void encode(JsonWriter& json, const InputEvent& event)
{
    json.beginObject();
    field(json, "ax", event.ax);
    field(json, "button", event.button);
    field(json, "key", event.key);
    field(json, "kind", name(event.kind));
    field(json, "pos", event.pos);
    field(json, "scroll", event.scroll);
    field(json, "t", event.t);
    json.endObject();
}

void decode(const JsonObject& object, AXInfo& ax)
{
    object.required("role", ax.role);
    object.required("frame", ax.frame);
    object.optional("title", ax.title);
}

void decodeValue(simdjson::dom::element element, EventKind& kind)
{
    std::string_view text;
    if (element.get_string().get(text) != simdjson::SUCCESS) {
        throwWrongType("a string");
    }
    const auto found = eventKind(text);
    if (!found) {
        throwWrongType("a kind of event");
    }
    kind = *found;
}

void decode(const JsonObject& object, InputEvent& event)
{
    object.required("t", event.t);
    object.required("kind", event.kind);
    object.required("pos", event.pos);
    object.optional("button", event.button);
    object.optional("key", event.key);
    object.optional("scroll", event.scroll);
    object.optional("ax", event.ax);
}

namespace JSONL {

std::string encode(const std::vector<InputEvent>& events)
{
    constexpr std::size_t kBytesPerEvent = 80; // most are moves
    JsonWriter json(JsonWriter::Form::Line);
    json.reserve(events.size() * kBytesPerEvent);
    for (const InputEvent& event : events) {
        zento::encode(json, event);
        json.endLine();
    }
    return json.takeText();
}

std::vector<InputEvent> decode(std::string_view bytes)
{
    std::vector<InputEvent> events;
    events.reserve(static_cast<std::size_t>(std::ranges::count(bytes, '\n')) + 1);
    simdjson::dom::parser parser;
    std::size_t line = 0;
    for (std::size_t begin = 0; begin < bytes.size();) {
        const std::size_t end = std::min(bytes.find('\n', begin), bytes.size());
        ++line;
        if (end > begin) {
            // What follows a line serves the parser as padding; only the last ones are copied.
            const bool hasTail = bytes.size() - end >= simdjson::SIMDJSON_PADDING;
            try {
                const auto tail = hasTail ? Tail::Readable : Tail::Unknown;
                decodeValue(
                    parseJson(parser, bytes.substr(begin, end - begin), tail),
                    events.emplace_back());
            } catch (const Error& error) {
                const std::string place = "line " + std::to_string(line);
                throw Error(ErrorCode::kUndecodable, place + ": " + error.what());
            }
        }
        begin = end + 1;
    }
    return events;
}

} // namespace JSONL

} // namespace zento
