#pragma once

#include "ZentoCore/Json/JsonWriter.h"

#include <functional>
#include <span>
#include <string_view>

namespace zento {

/// One field of an answer that a language model is asked for.
struct AnswerField {
    std::string_view name;
    std::string_view type; // of JSON schema
    std::string_view guide;
    std::span<const AnswerField> items; // of the objects in a list
};

/// The JSON schema of an object of these fields: all required, no others.
void writeAnswerSchema(JsonWriter& json, std::span<const AnswerField> fields);

} // namespace zento
