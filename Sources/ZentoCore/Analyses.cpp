#include "ZentoCore/Analyses.h"

#include "ZentoCore/Json/JsonFields.h"

namespace zento {

namespace {

template <typename Value>
std::string encodeDocument(const Value& value)
{
    JsonWriter json(JsonWriter::Form::Document);
    encode(json, value);
    return json.takeText();
}

} // namespace

void encode(JsonWriter& json, const TranscriptSegment& segment)
{
    json.beginObject();
    field(json, "end", segment.end);
    field(json, "start", segment.start);
    field(json, "text", segment.text);
    json.endObject();
}

void encode(JsonWriter& json, const FramingHint& hint)
{
    json.beginObject();
    field(json, "rect", hint.rect);
    field(json, "sourceTime", hint.sourceTime);
    json.endObject();
}

void encode(JsonWriter& json, const SemanticNotes::Chapter& chapter)
{
    json.beginObject();
    field(json, "sourceTime", chapter.sourceTime);
    field(json, "title", chapter.title);
    json.endObject();
}

void encode(JsonWriter& json, const SemanticNotes& notes)
{
    json.beginObject();
    field(json, "chapters", notes.chapters);
    field(json, "heroSourceTime", notes.heroSourceTime);
    json.endObject();
}

void encode(JsonWriter& json, const VideoCopy& copy)
{
    json.beginObject();
    field(json, "caption", copy.caption);
    field(json, "generatedByModel", copy.generatedByModel);
    field(json, "socialPost", copy.socialPost);
    field(json, "title", copy.title);
    json.endObject();
}

void decode(const JsonObject& object, TranscriptSegment& segment)
{
    object.required("start", segment.start);
    object.required("end", segment.end);
    object.required("text", segment.text);
}

void decode(const JsonObject& object, FramingHint& hint)
{
    object.required("sourceTime", hint.sourceTime);
    object.required("rect", hint.rect);
}

void decode(const JsonObject& object, SemanticNotes::Chapter& chapter)
{
    object.required("sourceTime", chapter.sourceTime);
    object.required("title", chapter.title);
}

void decode(const JsonObject& object, SemanticNotes& notes)
{
    object.optional("heroSourceTime", notes.heroSourceTime);
    object.required("chapters", notes.chapters);
}

void decode(const JsonObject& object, VideoCopy& copy)
{
    object.required("title", copy.title);
    object.required("caption", copy.caption);
    object.required("socialPost", copy.socialPost);
    object.required("generatedByModel", copy.generatedByModel);
}

std::string encodeTranscript(const std::vector<TranscriptSegment>& transcript)
{
    return encodeDocument(transcript);
}

std::vector<TranscriptSegment> decodeTranscript(std::string_view json)
{
    return decodeDocument<std::vector<TranscriptSegment>>(json);
}

std::string encodeFramingHints(const std::vector<FramingHint>& hints)
{
    return encodeDocument(hints);
}

std::vector<FramingHint> decodeFramingHints(std::string_view json)
{
    return decodeDocument<std::vector<FramingHint>>(json);
}

std::string encodeSemanticNotes(const SemanticNotes& notes)
{
    return encodeDocument(notes);
}

SemanticNotes decodeSemanticNotes(std::string_view json)
{
    return decodeDocument<SemanticNotes>(json);
}

std::string encodeVideoCopy(const VideoCopy& copy)
{
    return encodeDocument(copy);
}

VideoCopy decodeVideoCopy(std::string_view json)
{
    return decodeDocument<VideoCopy>(json);
}

} // namespace zento
