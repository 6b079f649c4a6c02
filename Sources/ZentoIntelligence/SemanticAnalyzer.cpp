#include "ZentoIntelligence/SemanticAnalyzer.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/Json/JsonFields.h"
#include "ZentoCore/Text.h"
#include "ZentoIntelligence/AnswerSchema.h"
#include "ZentoIntelligence/TypingBursts.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <limits>

namespace zento::SemanticAnalyzer {

namespace {

constexpr std::string_view kInstructions =
    "You analyze screen recordings of product demos. You get a numbered list of the user's actions "
    "in order (button titles they clicked, when they typed) and sometimes what they said while "
    "recording. Identify the story: which single action is the payoff the demo builds toward, and "
    "how the recording splits into a few named chapters. Be literal and specific to the given "
    "actions; never invent actions that are not listed.";

constexpr std::array<AnswerField, 2> kChapter = {{
    {"startIndex",
     "integer",
     "Index of the moment this chapter starts at; the first chapter starts at index 0"},
    {"title",
     "string",
     "2-4 word title describing what happens in that stretch of the demo, sentence case, no "
     "punctuation - a section name like 'Creating the invoice', never just a button's own label"},
}};

constexpr std::array<AnswerField, 2> kAnswer = {{
    {"heroIndex",
     "integer",
     "Index (from the numbered list) of the single climactic moment the video builds toward - the "
     "payoff action, not setup like opening panels or filling fields"},
    {"chapters",
     "array",
     "2 to 4 chapters in chronological order. The first starts at index 0; every later chapter "
     "starts at a strictly larger index. Together they cover the whole recording",
     kChapter},
}};

struct ChapterRead {
    int startIndex = 0;
    std::string title;
};

struct SemanticRead {
    int heroIndex = 0;
    std::vector<ChapterRead> chapters;
};

// Read by argument-dependent lookup.

[[maybe_unused]] void decode(const JsonObject& object, ChapterRead& chapter)
{
    object.required("startIndex", chapter.startIndex);
    object.required("title", chapter.title);
}

[[maybe_unused]] void decode(const JsonObject& object, SemanticRead& read)
{
    object.required("heroIndex", read.heroIndex);
    object.required("chapters", read.chapters);
}

/// "[1:05.3] "
std::string timeMark(double seconds)
{
    constexpr int kMinute = 60;
    std::array<char, 64> text{};
    std::snprintf(
        text.data(),
        text.size(),
        "[%d:%04.1f] ",
        static_cast<int>(seconds) / kMinute,
        std::fmod(seconds, kMinute));
    return text.data();
}

} // namespace

std::optional<SemanticNotes> loadOrAnalyze(
    const SessionBundle& bundle,
    const std::vector<TranscriptSegment>& transcript,
    const ModelFinder& findModel,
    const std::stop_token& stop)
{
    constexpr std::size_t kFewest = 3;
    try {
        return decodeSemanticNotes(readFile(bundle.semanticsURL()));
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): they are made now
    }
    const auto moments = keyMoments(bundle.events);
    if (moments.size() < kFewest)
        return std::nullopt;
    const SystemLanguageModel model = findModel(stop);
    if (model.availability() != SystemLanguageModel::Availability::Available)
        return std::nullopt;
    SemanticNotes made;
    try {
        made = analyze(moments, bundle.meta, transcript, model, stop);
    } catch (const Error&) {
        return std::nullopt;
    }
    try {
        writeFile(bundle.semanticsURL(), encodeSemanticNotes(made));
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): they are made again the next time
    }
    return made;
}

std::vector<KeyMoment> keyMoments(std::span<const InputEvent> events)
{
    constexpr std::size_t kMost = 24;
    std::vector<KeyMoment> moments;
    TypingBursts bursts;
    for (const InputEvent& event : events) {
        if (event.kind == EventKind::KeyDown) {
            if (bursts.begins(event.t))
                moments.push_back({event.t, "typed into a field"});
        } else if (event.kind == EventKind::Click && event.ax && event.ax->title) {
            const std::string title(trimmed(*event.ax->title));
            if (!title.empty())
                moments.push_back({event.t, "clicked \"" + title + '"'});
        }
    }
    if (moments.size() > kMost)
        moments.resize(kMost);
    return moments;
}

std::string storyPrompt(
    std::span<const KeyMoment> moments,
    const SessionMeta& meta,
    std::span<const TranscriptSegment> transcript)
{
    std::string text;
    if (meta.appName)
        text += "App: " + *meta.appName + '\n';
    text += "Actions, in order:";
    for (std::size_t i = 0; i < moments.size(); ++i)
        text +=
            '\n' + std::to_string(i) + ". " + timeMark(moments[i].sourceTime) + moments[i].label;
    std::string narration;
    for (const TranscriptSegment& segment : transcript)
        if (!segment.text.empty())
            narration += '\n' + timeMark(segment.start) + '"' + segment.text + '"';
    return narration.empty() ? text : text + "\nNarration:" + narration;
}

SemanticNotes analyze(
    std::span<const KeyMoment> moments,
    const SessionMeta& meta,
    std::span<const TranscriptSegment> transcript,
    const SystemLanguageModel& model,
    const std::stop_token& stop)
{
    const LanguageRequest request = {
        .instructions = kInstructions,
        .prompt = storyPrompt(moments, meta, transcript),
        .writeSchema = [](JsonWriter& json) { writeAnswerSchema(json, kAnswer); }};
    auto read = decodeDocument<SemanticRead>(model.respond(request, stop));
    std::vector<std::pair<int, std::string>> chapters;
    chapters.reserve(read.chapters.size());
    for (ChapterRead& chapter : read.chapters)
        chapters.emplace_back(chapter.startIndex, std::move(chapter.title));
    return notes(read.heroIndex, chapters, moments);
}

SemanticNotes notes(
    int heroIndex,
    std::span<const std::pair<int, std::string>> chapters,
    std::span<const KeyMoment> moments)
{
    const auto timeOf = [&](int index) -> std::optional<double> {
        if (index < 0 || static_cast<std::size_t>(index) >= moments.size())
            return std::nullopt;
        return moments[static_cast<std::size_t>(index)].sourceTime;
    };
    SemanticNotes result;
    result.heroSourceTime = timeOf(heroIndex);
    double last = -std::numeric_limits<double>::infinity();
    for (const auto& [startIndex, title] : chapters) {
        const auto t = timeOf(startIndex);
        const std::string_view name = trimmed(title);
        if (t && *t > last && !name.empty()) {
            result.chapters.push_back({*t, std::string(name)});
            last = *t;
        }
    }
    return result;
}

} // namespace zento::SemanticAnalyzer
