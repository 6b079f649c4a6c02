#include "ZentoMedia/WavRecovery.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/FileDescriptor.h"
#include "ZentoMedia/WavWriter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <bit>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <utility>

namespace zento {

namespace {

// As `wavHeader` lays it out; all numbers little-endian.
constexpr std::size_t kFormatChunk = 48;
constexpr std::size_t kSampleKind = 56; // 1: integers, 3: floats
constexpr std::size_t kChannelCount = 58;
constexpr std::size_t kSampleRate = 60;
constexpr std::size_t kFrameBytes = 68;
static_assert(std::endian::native == std::endian::little);

template <typename Integer>
Integer numberAt(const std::string& header, std::size_t place)
{
    Integer number{};
    std::memcpy(&number, header.data() + place, sizeof number);
    return number;
}

/// The first bytes of the file, at most so many.
std::string beginning(int file, std::size_t count, const std::filesystem::path& path)
{
    std::string bytes(count, '\0');
    const ssize_t read = ::pread(file, bytes.data(), bytes.size(), 0);
    if (read < 0) {
        throw systemError("Could not read", path.string(), errno);
    }
    bytes.resize(static_cast<std::size_t>(read));
    return bytes;
}

/// Nothing if `bytes` does not begin with a header of ours.
std::optional<WavFormat> formatOf(const std::string& bytes)
{
    if (bytes.size() < kFrameBytes + sizeof(std::uint16_t)) {
        return {};
    }
    const WavFormat format{
        .sampleRate = numberAt<std::int32_t>(bytes, kSampleRate),
        .channelCount = numberAt<std::uint16_t>(bytes, kChannelCount),
        .samples = numberAt<std::uint16_t>(bytes, kSampleKind) == 3 ? WavSamples::Float32
                                                                    : WavSamples::Integer16};
    if (format.sampleRate < 1 || format.channelCount < 1) {
        return {};
    }
    // All that is the same for every length.
    const std::string header = wavHeader(format, 0);
    const bool isOurs = bytes.size() >= header.size() && bytes.substr(8, 4) == "WAVE"
                        && bytes.compare(kFormatChunk, 24, header, kFormatChunk, 24) == 0
                        && bytes.compare(header.size() - 8, 4, "data") == 0;
    return isOurs ? std::optional(format) : std::nullopt;
}

} // namespace

bool finishWav(const std::filesystem::path& path)
{
    const FileDescriptor file(::open(path.c_str(), O_RDWR | O_CLOEXEC));
    struct stat status{};
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0) {
        throw systemError("Could not read", path.string(), errno);
    }
    constexpr std::size_t kLongestHeader = 128;
    const std::string old = beginning(file.get(), kLongestHeader, path);
    const auto format = formatOf(old);
    if (!format) {
        throw Error(ErrorCode::kReadingFailed, "Could not read " + path.string() + ": no sound");
    }
    const std::uint64_t headerBytes = wavHeader(*format, 0).size();
    const std::uint64_t bytes = static_cast<std::uint64_t>(status.st_size) - headerBytes;
    const std::uint64_t whole = bytes - bytes % numberAt<std::uint16_t>(old, kFrameBytes);
    const std::string header = wavHeader(*format, whole);
    if (!old.starts_with(header)) {
        if (std::cmp_not_equal(
                ::pwrite(file.get(), header.data(), header.size(), 0), header.size())) {
            throw systemError("Could not write", path.string(), errno);
        }
    }
    if (whole != bytes && ::ftruncate(file.get(), static_cast<off_t>(headerBytes + whole)) != 0) {
        throw systemError("Could not write", path.string(), errno);
    }
    return whole > 0;
}

} // namespace zento
