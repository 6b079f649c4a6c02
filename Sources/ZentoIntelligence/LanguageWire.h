#pragma once

#include "ZentoIntelligence/SystemLanguageModel.h"

#include <string>
#include <string_view>
#include <vector>

// What language servers are asked and how they answer. All is pure text; the readers throw `Error`
// for an answer of another form, and for one that was cut off.

namespace zento::OllamaWire {
inline constexpr const char* kPath = "/api/chat";
std::vector<std::string> models(std::string_view json); // of /api/tags
std::string question(const std::string& model, const LanguageRequest& request);
std::string answer(std::string_view json);
} // namespace zento::OllamaWire

namespace zento::CompletionsWire {
inline constexpr const char* kPath = "/v1/chat/completions";
std::vector<std::string> models(std::string_view json); // of /v1/models
std::string question(const std::string& model, const LanguageRequest& request);
std::string answer(std::string_view json);
} // namespace zento::CompletionsWire
