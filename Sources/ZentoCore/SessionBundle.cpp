#include "ZentoCore/SessionBundle.h"

#include "ZentoCore/FileIO.h"
#include "ZentoCore/Json/JsonFields.h"
#include "ZentoCore/UserFolders.h"

#include <array>
#include <ctime>
#include <system_error>

namespace zento {

void decode(const JsonObject& object, SessionMeta& meta)
{
    object.optional("appName", meta.appName);
    object.required("pixelWidth", meta.pixelWidth);
    object.required("pixelHeight", meta.pixelHeight);
    object.required("scaleFactor", meta.scaleFactor);
    object.required("nominalFPS", meta.nominalFPS);
    object.required("duration", meta.duration);
    object.optional("narrationOffset", meta.narrationOffset);
    object.optional("webcamOffset", meta.webcamOffset);
    object.optional("systemAudioOffset", meta.systemAudioOffset);
    object.optional("title", meta.title);
    object.optional("input", meta.input);
}

std::string encodeMeta(const SessionMeta& meta)
{
    JsonWriter json(JsonWriter::Form::Document);
    json.beginObject();
    field(json, "appName", meta.appName);
    field(json, "duration", meta.duration);
    field(json, "input", meta.input);
    field(json, "narrationOffset", meta.narrationOffset);
    field(json, "nominalFPS", meta.nominalFPS);
    field(json, "pixelHeight", meta.pixelHeight);
    field(json, "pixelWidth", meta.pixelWidth);
    field(json, "scaleFactor", meta.scaleFactor);
    field(json, "systemAudioOffset", meta.systemAudioOffset);
    field(json, "title", meta.title);
    field(json, "webcamOffset", meta.webcamOffset);
    json.endObject();
    return json.takeText();
}

SessionMeta decodeMeta(std::string_view json)
{
    return decodeDocument<SessionMeta>(json);
}

std::filesystem::path SessionBundle::filmURL() const
{
    std::filesystem::path folder = url;
    if (!folder.has_filename()) {
        folder = folder.parent_path(); // a path that ends in a slash
    }
    return folder.replace_extension("mp4");
}

SessionBundle SessionBundle::load(const std::filesystem::path& url)
{
    std::error_code ignored;
    if (std::filesystem::exists(url, ignored) && !std::filesystem::is_directory(url, ignored)) {
        throw Error(ErrorCode::kUndecodable, url.string() + " is a file, not a recording's folder");
    }
    SessionBundle bundle{url, {}, {}};
    bundle.meta = parseFile(bundle.metaURL(), decodeMeta);
    bundle.events = parseFile(bundle.eventsURL(), JSONL::decode);
    return bundle;
}

void SessionBundle::writeMetadata() const
{
    makeFolder(url);
    writeFile(metaURL(), encodeMeta(meta));
    writeFile(eventsURL(), JSONL::encode(events));
}

std::filesystem::path sessionsFolder()
{
    static const std::filesystem::path kFolder = userVideosFolder() / "Zento";
    return kFolder;
}

std::string bundleName(std::chrono::system_clock::time_point start)
{
    const std::time_t seconds = std::chrono::system_clock::to_time_t(start);
    std::tm utc{};
    ::gmtime_r(&seconds, &utc);
    std::array<char, 64> text{};
    const std::size_t length =
        std::strftime(text.data(), text.size(), "%Y-%m-%dT%H-%M-%SZ.zento", &utc);
    return {text.data(), length};
}

} // namespace zento
