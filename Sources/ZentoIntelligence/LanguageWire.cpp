#include "ZentoIntelligence/LanguageWire.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/Json/JsonFields.h"

namespace zento {

namespace {

struct Named {
    std::string name;
};

struct Identified {
    std::string id;
};

struct Message {
    std::string content;
};

struct Choice {
    Message message;
    std::optional<std::string> finishReason;
};

// Read by argument-dependent lookup.

[[maybe_unused]] void decode(const JsonObject& object, Named& model)
{
    object.required("name", model.name);
}

[[maybe_unused]] void decode(const JsonObject& object, Identified& model)
{
    object.required("id", model.id);
}

[[maybe_unused]] void decode(const JsonObject& object, Message& message)
{
    object.required("content", message.content);
}

[[maybe_unused]] void decode(const JsonObject& object, Choice& choice)
{
    object.required("message", choice.message);
    object.optional("finish_reason", choice.finishReason);
}

template <typename Value>
Value member(std::string_view json, std::string_view key)
{
    simdjson::dom::parser parser;
    const JsonObject object(parseJson(parser, json));
    Value value{};
    object.required(key, value);
    return value;
}

void requireWhole(const std::optional<std::string>& reason)
{
    if (reason == "length")
        throw Error(ErrorCode::kNoUsableAnswer, "it was cut off");
}

std::string promptWithSchema(const LanguageRequest& request)
{
    JsonWriter schema(JsonWriter::Form::Line, JsonWriter::KeyOrder::AsGiven);
    request.writeSchema(schema);
    return request.prompt + "\n\nAnswer with one JSON object of this schema:\n" + schema.text();
}

void writeMessages(JsonWriter& json, const LanguageRequest& request)
{
    json.key("messages");
    json.beginArray();
    for (const auto& [role, content] :
         {std::pair<std::string_view, std::string>("system", request.instructions),
          std::pair<std::string_view, std::string>("user", promptWithSchema(request))}) {
        json.beginObject();
        field(json, "role", role);
        field(json, "content", content);
        json.endObject();
    }
    json.endArray();
}

} // namespace

namespace OllamaWire {

std::vector<std::string> models(std::string_view json)
{
    std::vector<std::string> names;
    for (Named& model : member<std::vector<Named>>(json, "models"))
        names.push_back(std::move(model.name));
    return names;
}

std::string question(const std::string& model, const LanguageRequest& request)
{
    constexpr int kContext = 8192; // tokens; the server's own default cuts long logs off
    JsonWriter json(JsonWriter::Form::Line, JsonWriter::KeyOrder::AsGiven);
    json.beginObject();
    field(json, "model", model);
    writeMessages(json, request);
    field(json, "stream", false);
    json.key("format");
    request.writeSchema(json);
    json.key("options");
    json.beginObject();
    field(json, "num_ctx", kContext);
    json.endObject();
    json.endObject();
    return json.takeText();
}

std::string answer(std::string_view json)
{
    simdjson::dom::parser parser;
    const JsonObject object(parseJson(parser, json));
    Message message;
    object.required("message", message);
    std::optional<std::string> reason;
    object.optional("done_reason", reason);
    requireWhole(reason);
    return std::move(message.content);
}

} // namespace OllamaWire

namespace CompletionsWire {

std::vector<std::string> models(std::string_view json)
{
    std::vector<std::string> names;
    for (Identified& model : member<std::vector<Identified>>(json, "data"))
        names.push_back(std::move(model.id));
    return names;
}

std::string question(const std::string& model, const LanguageRequest& request)
{
    JsonWriter json(JsonWriter::Form::Line, JsonWriter::KeyOrder::AsGiven);
    json.beginObject();
    field(json, "model", model);
    writeMessages(json, request);
    field(json, "stream", false);
    json.key("response_format");
    json.beginObject();
    field(json, "type", "json_schema");
    json.key("json_schema");
    json.beginObject();
    field(json, "name", "reply");
    field(json, "strict", true);
    json.key("schema");
    request.writeSchema(json);
    json.endObject();
    json.endObject();
    json.endObject();
    return json.takeText();
}

std::string answer(std::string_view json)
{
    auto choices = member<std::vector<Choice>>(json, "choices");
    if (choices.empty())
        throw Error(ErrorCode::kNoUsableAnswer, "it is empty");
    requireWhole(choices.front().finishReason);
    return std::move(choices.front().message.content);
}

} // namespace CompletionsWire

} // namespace zento
