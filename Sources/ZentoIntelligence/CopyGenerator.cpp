#include "ZentoIntelligence/CopyGenerator.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/Json/JsonFields.h"
#include "ZentoIntelligence/AnswerSchema.h"

#include <algorithm>
#include <array>

namespace zento {

namespace {

constexpr std::string_view kInstructions =
    "You write short marketing copy for screen-recorded product demo videos. You are given a "
    "factual digest of one recording: which app was shown, how long it runs, and which UI elements "
    "the person used. Write copy that is specific to those facts, confident, and plain — no hype "
    "words like \"revolutionary\" or \"game-changing\", no exclamation marks, no emoji, no "
    "hashtags. Never invent features that the digest does not mention.";

constexpr std::array<AnswerField, 3> kAnswer = {{
    {"title",
     "string",
     "Punchy title for the video, at most 8 words, no quotation marks, no emoji"},
    {"caption",
     "string",
     "One-sentence caption under 140 characters describing what the video shows"},
    {"socialPost",
     "string",
     "Friendly 2-3 sentence social media post announcing the video, first person, no hashtags"},
}};

struct GeneratedVideoCopy {
    std::string title;
    std::string caption;
    std::string socialPost;
};

/// Read by argument-dependent lookup.
[[maybe_unused]] void decode(const JsonObject& object, GeneratedVideoCopy& copy)
{
    object.required("title", copy.title);
    object.required("caption", copy.caption);
    object.required("socialPost", copy.socialPost);
}

std::string firstThree(const std::vector<std::string>& names)
{
    std::string text;
    for (std::size_t i = 0; i < std::min<std::size_t>(names.size(), 3); ++i)
        text += (i > 0 ? ", " : "") + names[i];
    return text;
}

} // namespace

std::string_view explanation(CopyEngineStatus status)
{
    switch (status) {
    case CopyEngineStatus::Available:
        return "The language model is ready.";
    case CopyEngineStatus::ModelMissing:
        return "The language server has no model. Give it one to have copy and story written by "
               "it.";
    case CopyEngineStatus::ModelLoading:
        return "The language server is still loading its model. Try again in a few minutes.";
    case CopyEngineStatus::Unsupported:
        break;
    }
    return "No language server was found. Zento uses built-in templates instead.";
}

namespace CopyGenerator {

CopyEngineStatus status(const SystemLanguageModel& model)
{
    using Availability = SystemLanguageModel::Availability;
    switch (model.availability()) {
    case Availability::Available:
        return CopyEngineStatus::Available;
    case Availability::ModelMissing:
        return CopyEngineStatus::ModelMissing;
    case Availability::ModelLoading:
        return CopyEngineStatus::ModelLoading;
    case Availability::NoServer:
        break;
    }
    return CopyEngineStatus::Unsupported;
}

VideoCopy
copy(const SessionDigest& digest, const SystemLanguageModel& model, const std::stop_token& stop)
{
    if (status(model) == CopyEngineStatus::Available) {
        try {
            return generate(digest, model, stop);
        } catch (const Error&) { // NOLINT(bugprone-empty-catch): the templates always write
        }
    }
    return fallback(digest);
}

VideoCopy
generate(const SessionDigest& digest, const SystemLanguageModel& model, const std::stop_token& stop)
{
    const LanguageRequest request = {
        .instructions = kInstructions,
        .prompt = "Digest of the recording:\n" + digest.promptSummary()
                  + "\n\nWrite the title, caption, and social post for this video.",
        .writeSchema = [](JsonWriter& json) { writeAnswerSchema(json, kAnswer); }};
    auto written = decodeDocument<GeneratedVideoCopy>(model.respond(request, stop));
    return {
        .title = std::move(written.title),
        .caption = std::move(written.caption),
        .socialPost = std::move(written.socialPost),
        .generatedByModel = true};
}

VideoCopy fallback(const SessionDigest& digest)
{
    const std::string app = digest.appName.value_or("the app");
    const std::string length = spokenSeconds(digest.outputDuration.value_or(digest.sourceDuration));
    const auto& picks =
        digest.highlightTitles.empty() ? digest.interactionTitles : digest.highlightTitles;
    const std::string post =
        "Recorded a quick demo of " + app + " — " + length + ", no cuts by hand.";
    if (picks.empty())
        return {
            .title = app + " demo",
            .caption = "A quick look at " + app + " in " + length + ".",
            .socialPost = post};
    return {
        .title = app + ": " + picks.front() + " in action",
        .caption =
            "A quick look at " + app + " — from " + picks.front() + " to done in " + length + ".",
        .socialPost = post + " Watch it walk through " + firstThree(picks) + "."};
}

} // namespace CopyGenerator

} // namespace zento
