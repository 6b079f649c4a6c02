#include "ZentoCapture/JournalText.h"

#include "ZentoCore/InputEventJson.h"
#include "ZentoCore/Json/JsonFields.h"
#include "ZentoCore/SessionBundle.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zento {

namespace {

constexpr std::array<std::pair<SideFile, std::string_view>, 3> kSideFiles{{
    {SideFile::Narration, "narration.wav"},
    {SideFile::Webcam, "webcam.mov"},
    {SideFile::SystemAudio, "system.wav"},
}};

constexpr double kNominalFPS = 60;

template <typename Write>
std::string line(Write writeFields)
{
    JsonWriter json(JsonWriter::Form::Line);
    json.beginObject();
    writeFields(json);
    json.endObject();
    json.endLine();
    return json.takeText();
}

void readFacts(const JsonObject& object, SessionMeta& meta)
{
    object.optional("appName", meta.appName);
    object.required("pixelHeight", meta.pixelHeight);
    object.required("pixelWidth", meta.pixelWidth);
    object.required("scaleFactor", meta.scaleFactor);
    meta.nominalFPS = kNominalFPS;
}

void readStart(const JsonObject& object, std::map<SideFile, double>& starts)
{
    std::string name;
    double time = 0;
    object.required("file", name);
    object.required("start", time);
    const auto found =
        std::ranges::find(kSideFiles, name, &std::pair<SideFile, std::string_view>::second);
    if (found != kSideFiles.end()) {
        starts[found->first] = time;
    }
}

void readFound(const JsonObject& object, std::vector<InputEvent>& events)
{
    int index = 0;
    AXInfo ax;
    object.required("index", index);
    object.required("ax", ax);
    if (std::cmp_greater_equal(index, 0) && std::cmp_less(index, events.size())) {
        events[static_cast<std::size_t>(index)].ax = std::move(ax);
    }
}

void readLine(const JsonObject& object, JournalContents& contents)
{
    if (object.find("kind")) {
        InputEvent event;
        decode(object, event);
        contents.events.push_back(std::move(event));
    } else if (object.find("epoch")) {
        object.optional("epoch", contents.epoch);
    } else if (object.find("file")) {
        readStart(object, contents.starts);
    } else if (object.find("index")) {
        readFound(object, contents.events);
    }
}

} // namespace

std::string_view fileName(SideFile file)
{
    return std::ranges::find(kSideFiles, file, &std::pair<SideFile, std::string_view>::first)
        ->second;
}

namespace JournalText {

std::string facts(const SessionMeta& meta)
{
    return line([&](JsonWriter& json) {
        field(json, "appName", meta.appName);
        field(json, "pixelHeight", meta.pixelHeight);
        field(json, "pixelWidth", meta.pixelWidth);
        field(json, "scaleFactor", meta.scaleFactor);
    });
}

std::string epoch(double hostTime)
{
    return line([&](JsonWriter& json) { field(json, "epoch", hostTime); });
}

std::string start(SideFile file, double hostTime)
{
    return line([&](JsonWriter& json) {
        field(json, "file", fileName(file));
        field(json, "start", hostTime);
    });
}

std::string news(const EventNews& news)
{
    std::string text = JSONL::encode(news.events);
    for (const EventNews::Found& found : news.found) {
        text += line([&](JsonWriter& json) {
            field(json, "ax", found.ax);
            field(json, "index", static_cast<int>(found.index));
        });
    }
    return text;
}

} // namespace JournalText

JournalContents decodeJournal(std::string_view text)
{
    JournalContents contents;
    simdjson::dom::parser parser;
    bool isFirst = true;
    for (std::size_t end = 0; (end = text.find('\n')) != std::string_view::npos;) {
        try {
            const JsonObject object(parseJson(parser, text.substr(0, end)));
            if (isFirst) {
                readFacts(object, contents.meta);
            } else {
                readLine(object, contents);
            }
        } catch (const Error&) {
            break;
        }
        isFirst = false;
        text.remove_prefix(end + 1);
    }
    if (isFirst) {
        throw Error(ErrorCode::kUndecodable, "it does not say what was recorded");
    }
    return contents;
}

} // namespace zento
