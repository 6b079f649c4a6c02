#include "ZentoIntelligence/SpeechModelFile.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/UserFolders.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <optional>
#include <string>

namespace zento {

namespace {

constexpr std::uint32_t kMagic = 0x67676d6c;

/// How many bytes hold how many numbers of a kind of table.
struct Packing {
    std::uint64_t bytes = 0;
    std::uint64_t numbers = 1;
};

std::optional<Packing> packing(std::int32_t type)
{
    switch (type) {
    case 0:
        return Packing{4, 1};
    case 1:
        return Packing{2, 1};
    case 2:
        return Packing{18, 32}; // 4 bits
    case 3:
        return Packing{20, 32};
    case 6:
        return Packing{22, 32}; // 5 bits
    case 7:
        return Packing{24, 32};
    case 8:
        return Packing{34, 32}; // 8 bits
    default:
        return std::nullopt;
    }
}

class ModelReader {
public:
    explicit ModelReader(const std::filesystem::path& file)
        : m_file(file)
        , m_stream(file, std::ios::binary)
    {
        std::error_code error;
        m_size = std::filesystem::file_size(file, error);
        if (!m_stream || error)
            throw Error(ErrorCode::kNoSpeechModel, file.string() + " cannot be read.");
    }

    template <typename Number>
    Number next()
    {
        std::array<char, sizeof(Number)> bytes{};
        skip(bytes.size());
        m_stream.read(bytes.data(), bytes.size());
        Number number{};
        std::ranges::copy(bytes, reinterpret_cast<char*>(&number));
        return number;
    }

    std::uint64_t within(std::int32_t number, std::int32_t most) const
    {
        if (number < 1 || number > most)
            refuse();
        return static_cast<std::uint64_t>(number);
    }

    /// Past bytes that must be there.
    void pass(std::uint64_t bytes)
    {
        skip(bytes);
        m_stream.seekg(static_cast<std::streamoff>(bytes), std::ios::cur);
    }

    bool isAtEnd() const { return m_place == m_size; }

    [[noreturn]] void refuse() const
    {
        throw Error(ErrorCode::kNoSpeechModel, m_file.string() + " is not a whole speech model.");
    }

private:
    void skip(std::uint64_t bytes)
    {
        if (bytes > m_size - m_place)
            refuse();
        m_place += bytes;
    }

    std::filesystem::path m_file;
    std::ifstream m_stream;
    std::uint64_t m_size = 0;
    std::uint64_t m_place = 0; // at most the size
};

void passHeader(ModelReader& reader)
{
    // The largest model there is, and some room: vocabulary, audio (frames, width, heads, layers),
    // text (the same), mel bands, kind.
    constexpr std::array<std::int32_t, 10> kMost = {
        60000, 3000, 2048, 64, 64, 1024, 2048, 64, 64, 256};
    if (reader.next<std::uint32_t>() != kMagic)
        reader.refuse();
    for (const std::int32_t most : kMost)
        reader.within(reader.next<std::int32_t>(), most);
    reader.next<std::int32_t>();
}

void passFilters(ModelReader& reader)
{
    const std::uint64_t bands = reader.within(reader.next<std::int32_t>(), 256);
    const std::uint64_t bins = reader.within(reader.next<std::int32_t>(), 4096);
    reader.pass(bands * bins * sizeof(float));
}

void passVocabulary(ModelReader& reader)
{
    const std::uint64_t words = reader.within(reader.next<std::int32_t>(), 60000);
    for (std::uint64_t i = 0; i < words; ++i)
        reader.pass(reader.next<std::uint32_t>());
}

void passTable(ModelReader& reader)
{
    const std::uint64_t dimensions = reader.within(reader.next<std::int32_t>(), 4);
    const std::uint64_t nameLength = reader.within(reader.next<std::int32_t>(), 255);
    const auto packed = packing(reader.next<std::int32_t>());
    if (!packed)
        reader.refuse();
    std::uint64_t numbers = 1;
    for (std::uint64_t i = 0; i < dimensions; ++i)
        numbers *= reader.within(reader.next<std::int32_t>(), 1 << 16);
    reader.pass(nameLength);
    reader.pass(numbers / packed->numbers * packed->bytes);
}

} // namespace

std::filesystem::path speechModelFile()
{
    return userDataFolder() / "Zento" / "Models" / "speech.bin";
}

void requireSpeechModel(const std::filesystem::path& file)
{
    ModelReader reader(file);
    passHeader(reader);
    passFilters(reader);
    passVocabulary(reader);
    if (reader.isAtEnd())
        reader.refuse();
    while (!reader.isAtEnd())
        passTable(reader);
}

} // namespace zento
