#pragma once

#include <cstdint>
#include <set>

namespace zento {

/// Which modifiers a keyboard holds, and what its keys are, by the kernel's codes.
class DeviceKeys {
public:
    enum class Press : unsigned char { Down, Up };

    /// The key's virtual code (`kUnknownKey` without one) if its press is worth a record: not for a
    /// release and not for a modifier.
    struct Result {
        bool isRecord = false;
        std::int64_t keyCode = 0;
        std::uint64_t flags = 0; // `KeyFlag`s held before
    };
    Result handle(std::uint32_t code, Press press);

    std::uint64_t flags() const;

private:
    std::multiset<std::uint64_t> m_held; // a flag for each modifier key that is down
};

} // namespace zento
