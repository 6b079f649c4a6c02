#pragma once

#include <cstddef>
#include <limits>
#include <map>
#include <string>
#include <utility>

namespace zento {

/// Values that are made once for a key. An entry never changes; a new one that finds `limit` of
/// them empties the cache first.
///
/// Threading: one thread at a time.
template <typename Value>
class DrawingCache {
public:
    static constexpr std::size_t kUnlimited = std::numeric_limits<std::size_t>::max();

    explicit DrawingCache(std::size_t limit = kUnlimited)
        : m_limit(limit)
    {
    }

    /// The value of `key`, from `make()` the first time. Valid until the next call.
    template <typename Make>
    const Value& get(const std::string& key, Make make)
    {
        if (const auto found = m_values.find(key); found != m_values.end())
            return found->second;
        Value value = make();
        if (m_values.size() >= m_limit)
            m_values.clear();
        return m_values.emplace(key, std::move(value)).first->second;
    }

    std::size_t size() const { return m_values.size(); }

private:
    std::size_t m_limit;
    std::map<std::string, Value> m_values;
};

} // namespace zento
