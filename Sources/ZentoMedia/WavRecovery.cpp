#include "ZentoMedia/WavRecovery.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <limits>

namespace zento {

namespace {

// As `WavWriter` lays its header out; all numbers little-endian.
constexpr std::int64_t kHeaderBytes = 44;
constexpr std::int64_t kFileSizePlace = 4;
constexpr std::int64_t kFileSizeLess = 8;
constexpr std::int64_t kFrameBytesPlace = 32;
constexpr std::int64_t kSampleBytesPlace = 40;
static_assert(std::endian::native == std::endian::little);

using Header = std::array<char, kHeaderBytes>;

template <typename Integer>
Integer numberAt(const Header& header, std::int64_t place)
{
    Integer number{};
    std::memcpy(&number, header.data() + place, sizeof number);
    return number;
}

bool holds(const Header& header, std::int64_t place, const char (&tag)[5])
{
    return std::memcmp(header.data() + place, tag, 4) == 0;
}

void writeNumber(
    int file, std::int64_t place, std::int64_t value, const std::filesystem::path& path)
{
    const auto number = static_cast<std::uint32_t>(value);
    if (::pwrite(file, &number, sizeof number, place) != sizeof number) {
        throw systemError("Could not write", path.string(), errno);
    }
}

} // namespace

bool finishWav(const std::filesystem::path& path)
{
    const FileDescriptor file(::open(path.c_str(), O_RDWR | O_CLOEXEC));
    struct stat status{};
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0) {
        throw systemError("Could not read", path.string(), errno);
    }
    Header header{};
    const bool isWhole = ::pread(file.get(), header.data(), header.size(), 0) == kHeaderBytes;
    const std::int64_t frameBytes = numberAt<std::uint16_t>(header, kFrameBytesPlace);
    if (!isWhole || !holds(header, 0, "RIFF") || !holds(header, 8, "WAVE")
        || !holds(header, 36, "data") || frameBytes == 0) {
        throw Error(ErrorCode::kReadingFailed, "Could not read " + path.string() + ": no sound");
    }
    const std::int64_t most = std::numeric_limits<std::uint32_t>::max() - kHeaderBytes;
    const std::int64_t bytes = std::min<std::int64_t>(status.st_size - kHeaderBytes, most);
    const std::int64_t whole = bytes - bytes % frameBytes;
    if (numberAt<std::uint32_t>(header, kSampleBytesPlace) != whole) {
        writeNumber(file.get(), kSampleBytesPlace, whole, path);
        writeNumber(file.get(), kFileSizePlace, whole + kHeaderBytes - kFileSizeLess, path);
        if (::ftruncate(file.get(), whole + kHeaderBytes) != 0) {
            throw systemError("Could not write", path.string(), errno);
        }
    }
    return whole > 0;
}

} // namespace zento
