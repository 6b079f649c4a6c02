#pragma once

#include "Zento/Demo/KeyboardLayout.h"
#include "Zento/Demo/Random.h"

#include <memory>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace zento {

class XConnection;

/// Hands on the keyboard of a display: real key presses through XTEST, at a person's pace.
///
/// Each call takes as long as typing would and returns early, with all keys released, on a stop
/// request. Threading: one thread at a time.
class Typist {
public:
    /// Throws `Error` kDesktopFailed if the display is out of reach or does not tell its layout.
    Typist(const std::string& display, std::uint64_t seed);
    ~Typist();

    /// Types UTF-8 text; gaps between presses of 60 to 180 ms, longer ones where a word or a line
    /// begins. A line break presses Return. Throws `Error` kUntypeable, before it types anything,
    /// if the layout lacks one of the characters.
    void type(std::string_view text, const std::stop_token& stop);

    /// Presses keys together, named by their symbols, the last one briefly while the ones before
    /// it are held: {"Control_L", "s"}. Throws `Error` kUntypeable.
    void press(const std::vector<std::string>& keys, const std::stop_token& stop);

private:
    enum class KeyAction : unsigned char { Press, Release };

    void strike(const TypedKey& stroke, const std::stop_token& stop);
    void send(KeyAction action, std::uint8_t keycode) const;

    std::unique_ptr<XConnection> m_connection;
    KeyboardLayout m_layout;
    TypedKey m_shift;
    Random m_random;
};

/// How long a typist waits before `next` when `previous` was the character before it, in seconds.
double typingGap(char32_t previous, char32_t next, Random& random);

} // namespace zento
