#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zento {

/// Writes one JSON text, piece by piece, in one of the two forms of a bundle's files.
///
/// Keys must be given in ascending byte order within an object (asserted), so that equal values
/// always give equal bytes; only a record whose own order is its form says so. Text is made
/// well-formed on the way: nothing written here can fail to be read back. Numbers are the shortest
/// that read back as the same double; a whole number has no fraction.
class JsonWriter {
public:
    enum class Form {
        Document, // pretty printed, slashes escaped
        Line,     // compact, slashes as they are
    };

    enum class KeyOrder { Ascending, AsGiven };

    explicit JsonWriter(Form form, KeyOrder keyOrder = KeyOrder::Ascending)
        : m_form(form)
        , m_keyOrder(keyOrder)
    {
    }

    void beginObject() { begin('{', /*isObject=*/true); }
    void endObject() { end('}'); }
    void beginArray() { begin('[', /*isObject=*/false); }
    void endArray() { end(']'); }

    /// The next value's key.
    void key(std::string_view name);

    void value(double number); // throws `Error` for a number that JSON cannot hold
    void value(int number);
    void value(bool flag);
    void value(std::string_view text);
    void value(const char* text) { value(std::string_view(text)); }

    /// The text so far; whole once every object and array has been ended.
    const std::string& text() const { return m_text; }
    std::string takeText() { return std::move(m_text); }

    /// Starts the next record of a file of lines.
    void endLine() { m_text += '\n'; }

    /// Room for about that many bytes, to spare copies of a large text.
    void reserve(std::size_t bytes) { m_text.reserve(bytes); }

private:
    struct Level {
        bool isObject = false;
        bool isEmpty = true;
        std::string lastKey;
    };

    void begin(char bracket, bool isObject);
    void end(char bracket);
    void beforeValue();
    void separate();
    void breakLine();
    void writeString(std::string_view text);

    Form m_form;
    KeyOrder m_keyOrder;
    std::string m_text;
    std::vector<Level> m_levels;
    bool m_afterKey = false;
};

} // namespace zento
