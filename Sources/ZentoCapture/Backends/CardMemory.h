#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace zento {

/// Memory of a graphics card, as a file, mapped as it lies. That is a picture only where the card
/// keeps it in rows.
///
/// Threading: one thread at a time.
class CardMemory {
public:
    /// `file` stays the caller's, open for as long as this lives. `bytes` from `offset`; 0: up to
    /// the file's end. Never more than the file has.
    CardMemory(int file, std::size_t offset, std::size_t bytes);
    ~CardMemory();
    CardMemory(const CardMemory&) = delete;
    CardMemory& operator=(const CardMemory&) = delete;

    /// Empty where it cannot be mapped.
    std::span<const std::uint8_t> bytes() const { return m_bytes; }

    /// While it lives the card's writes are seen. Memory that is no card's needs none.
    class Reading {
    public:
        explicit Reading(const CardMemory& memory);
        ~Reading();
        Reading(const Reading&) = delete;
        Reading& operator=(const Reading&) = delete;

    private:
        const CardMemory& m_memory;
    };

private:
    void announce(std::uint64_t flags) const;

    int m_file;
    void* m_memory = nullptr;
    std::size_t m_length = 0;
    std::span<const std::uint8_t> m_bytes;
};

} // namespace zento
