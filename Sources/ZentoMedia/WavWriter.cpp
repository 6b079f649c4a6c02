#include "ZentoMedia/WavWriter.h"

#include "ZentoCore/Error.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace zento {

namespace {

// Resource Interchange File Format, "WAVE" form, PCM: all numbers little-endian.
constexpr std::size_t kHeaderBytes = 44;
constexpr int kBytesPerSample = 2;
static_assert(std::endian::native == std::endian::little);

class Header {
public:
    Header& tag(const char (&name)[5])
    {
        std::memcpy(m_bytes.data() + m_size, name, 4);
        m_size += 4;
        return *this;
    }
    template <typename Integer>
    Header& number(std::uint64_t value)
    {
        const auto narrow = static_cast<Integer>(value);
        std::memcpy(m_bytes.data() + m_size, &narrow, sizeof narrow);
        m_size += sizeof narrow;
        return *this;
    }
    const std::array<char, kHeaderBytes>& bytes() const { return m_bytes; }

private:
    std::array<char, kHeaderBytes> m_bytes{};
    std::size_t m_size = 0;
};

std::int16_t sample16(float sample)
{
    return static_cast<std::int16_t>(std::lround(std::clamp(sample, -1.0F, 1.0F) * 32767));
}

} // namespace

WavWriter::WavWriter(std::filesystem::path path, int sampleRate, int channelCount)
    : m_path(std::move(path))
    , m_file(::open(m_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644))
    , m_sampleRate(sampleRate)
    , m_channelCount(channelCount)
{
    if (m_file.get() < 0)
        throw systemError("cannot write", m_path.string(), errno);
    writeHeader();
}

void WavWriter::append(AudioBlock block)
{
    assert(block.size() == static_cast<std::size_t>(m_channelCount));
    const std::size_t length = block.front().size();
    m_interleaved.resize(length * block.size());
    for (std::size_t channel = 0; channel < block.size(); ++channel)
        for (std::size_t i = 0; i < length; ++i)
            m_interleaved[i * block.size() + channel] = sample16(block[channel][i]);
    const std::size_t bytes = m_interleaved.size() * kBytesPerSample;
    if (m_sampleBytes + bytes + kHeaderBytes > std::numeric_limits<std::uint32_t>::max())
        throw systemError("cannot write", m_path.string(), EFBIG);
    write(m_interleaved.data(), bytes);
    m_sampleBytes += bytes;
}

void WavWriter::finish()
{
    if (::lseek(m_file.get(), 0, SEEK_SET) < 0)
        throw systemError("cannot write", m_path.string(), errno);
    writeHeader();
    if (::close(m_file.release()) != 0)
        throw systemError("cannot write", m_path.string(), errno);
}

void WavWriter::writeHeader()
{
    const auto rate = static_cast<std::uint64_t>(m_sampleRate);
    const auto frameBytes = static_cast<std::uint64_t>(m_channelCount) * kBytesPerSample;
    Header header;
    header.tag("RIFF").number<std::uint32_t>(kHeaderBytes - 8 + m_sampleBytes).tag("WAVE");
    header.tag("fmt ").number<std::uint32_t>(16).number<std::uint16_t>(1); // PCM
    header.number<std::uint16_t>(frameBytes / kBytesPerSample).number<std::uint32_t>(rate);
    header.number<std::uint32_t>(rate * frameBytes).number<std::uint16_t>(frameBytes);
    header.number<std::uint16_t>(8 * kBytesPerSample);
    header.tag("data").number<std::uint32_t>(m_sampleBytes);
    write(header.bytes().data(), kHeaderBytes);
}

void WavWriter::write(const void* bytes, std::size_t count)
{
    const auto* next = static_cast<const char*>(bytes);
    while (count > 0) {
        const ssize_t written = ::write(m_file.get(), next, count);
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            throw systemError("cannot write", m_path.string(), errno);
        next += written;
        count -= static_cast<std::size_t>(written);
    }
}

} // namespace zento
