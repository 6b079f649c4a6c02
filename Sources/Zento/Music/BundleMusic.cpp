#include "Zento/Music/BundleMusic.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/ScratchFile.h"
#include "ZentoCore/SessionBundle.h"
#include "ZentoMedia/AudioReader.h"

#include <system_error>

namespace zento::BundleMusic {

namespace {

std::filesystem::path fileIn(const std::filesystem::path& bundle)
{
    return SessionBundle{bundle, {}, {}}.musicURL();
}

std::filesystem::path creditIn(const std::filesystem::path& bundle)
{
    return bundle / "music-credit.txt";
}

void copyFile(const std::filesystem::path& from, const std::filesystem::path& to)
{
    std::error_code error;
    std::filesystem::copy_file(from, to, std::filesystem::copy_options::overwrite_existing, error);
    if (error)
        throw systemError("Cannot copy to", to.string(), error.value());
}

} // namespace

void put(
    const std::filesystem::path& bundle,
    const std::filesystem::path& source,
    const std::string& credit)
{
    static_cast<void>(AudioReader(source)); // throws for what is no sound
    const ScratchFile part(bundle / "music.part.m4a");
    copyFile(source, part.path());
    replaceFile(part.path(), fileIn(bundle));
    if (credit.empty()) {
        std::error_code ignored;
        std::filesystem::remove(creditIn(bundle), ignored);
    } else {
        writeFile(creditIn(bundle), credit);
    }
}

void remove(const std::filesystem::path& bundle)
{
    for (const std::filesystem::path& file : {fileIn(bundle), creditIn(bundle)}) {
        std::error_code error;
        std::filesystem::remove(file, error);
        if (error)
            throw systemError("Cannot remove", file.string(), error.value());
    }
}

Description describe(const std::filesystem::path& bundle)
{
    std::error_code ignored;
    Description result;
    result.exists = std::filesystem::is_regular_file(fileIn(bundle), ignored);
    if (!result.exists)
        return result;
    try {
        const AudioReader reader(fileIn(bundle));
        if (reader.sampleRate() > 0)
            result.duration = static_cast<double>(reader.expectedLength()) / reader.sampleRate();
        if (std::filesystem::is_regular_file(creditIn(bundle), ignored))
            result.credit = readFile(creditIn(bundle));
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): told when it is to be heard
    }
    return result;
}

} // namespace zento::BundleMusic
