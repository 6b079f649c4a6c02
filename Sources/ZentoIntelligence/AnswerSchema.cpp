#include "ZentoIntelligence/AnswerSchema.h"

#include "ZentoCore/Json/JsonFields.h"

namespace zento {

namespace {

void writeField(JsonWriter& json, const AnswerField& one)
{
    json.key(one.name);
    json.beginObject();
    field(json, "type", one.type);
    field(json, "description", one.guide);
    if (!one.items.empty()) {
        json.key("items");
        writeAnswerSchema(json, one.items);
    }
    json.endObject();
}

} // namespace

void writeAnswerSchema(JsonWriter& json, std::span<const AnswerField> fields)
{
    json.beginObject();
    field(json, "type", "object");
    json.key("properties");
    json.beginObject();
    for (const AnswerField& one : fields)
        writeField(json, one);
    json.endObject();
    json.key("required");
    json.beginArray();
    for (const AnswerField& one : fields)
        json.value(one.name);
    json.endArray();
    field(json, "additionalProperties", false);
    json.endObject();
}

} // namespace zento
