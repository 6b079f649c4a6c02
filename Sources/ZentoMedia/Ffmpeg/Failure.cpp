#include "ZentoMedia/Ffmpeg/Failure.h"

extern "C" {
#include <libavutil/error.h>
#include <libavutil/log.h>
}

#include <array>
#include <cerrno>

namespace zento::ffmpeg {

namespace {

// The library's own codes are negated four-letter tags, far beyond any errno.
constexpr int kLargestErrno = 4095;

} // namespace

Error failure(const std::string& action, const std::filesystem::path& path, int result, int code)
{
    // The library says EINVAL for whatever it does not like; no file operation of ours can.
    const bool isSystems = result < 0 && result >= -kLargestErrno && AVUNERROR(result) != EINVAL;
    if (isSystems)
        return systemError(action, path.string(), AVUNERROR(result));
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(result, text.data(), text.size());
    return {code, action + " " + path.string() + ": " + text.data()};
}

void silenceLog()
{
    static const bool kSilent = [] {
        av_log_set_level(AV_LOG_QUIET);
        return true;
    }();
    static_cast<void>(kSilent);
}

std::string fileUrl(const std::filesystem::path& path)
{
    return "file:" + path.string();
}

} // namespace zento::ffmpeg
