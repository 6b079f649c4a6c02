#include "Zento/Demo/Voice.h"

#include "Zento/Demo/PrivateFolder.h"
#include "Zento/Demo/ProcessGroup.h"
#include "Zento/Demo/Programs.h"
#include "Zento/Demo/Waiting.h"
#include "ZentoCore/Error.h"
#include "ZentoMedia/AudioReader.h"

namespace zento {

namespace {

constexpr double kPatienceSeconds = 20;

Speech readSpeech(const std::filesystem::path& file)
{
    AudioReader reader(file);
    Speech speech{.sampleRate = reader.sampleRate()};
    while (const auto block = reader.next())
        speech.samples.insert(speech.samples.end(), block->front().begin(), block->front().end());
    return speech;
}

} // namespace

std::optional<Speech> speak(const std::string& sentence, const std::stop_token& stop)
{
    const auto program = findProgram("flite", programSearchPath());
    if (!program)
        return std::nullopt;
    const PrivateFolder folder("zento-voice-");
    const std::filesystem::path file = folder.path() / "speech.wav";
    try {
        ProcessGroup group;
        const pid_t speaker = group.start(
            {program->string(), "-voice", "slt", "-t", sentence, "-o", file.string()},
            {},
            folder.path() / "log");
        waitUntil(
            [speaker] { return !ProcessGroup::isRunning(speaker); },
            kPatienceSeconds,
            "The voice did not speak",
            stop);
        return readSpeech(file);
    } catch (const Error& error) {
        if (error.code() == ErrorCode::kDemoStopped && error.domain() == "Zento")
            throw;
        return std::nullopt;
    }
}

} // namespace zento
