#include "Zento/Demo/Typist.h"

#include "Zento/Demo/Waiting.h"
#include "Zento/Demo/XConnection.h"
#include "ZentoCore/Error.h"

#include <xcb/xcb.h>
#include <xcb/xtest.h>

namespace zento {

namespace {

/// The characters of well-formed UTF-8.
std::u32string decoded(std::string_view text)
{
    std::u32string result;
    for (const char byte : text) {
        const auto value = static_cast<unsigned char>(byte);
        if (value < 0x80) {
            result.push_back(value);
        } else if (value >= 0xc0) {
            result.push_back(value & (value >= 0xf0 ? 0x07U : value >= 0xe0 ? 0x0fU : 0x1fU));
        } else if (!result.empty()) {
            result.back() = result.back() << 6U | (value & 0x3fU);
        }
    }
    return result;
}

Error untypeable(const std::string& what)
{
    return {ErrorCode::kUntypeable, "No key of the display's layout types " + what + "."};
}

} // namespace

double typingGap(char32_t previous, char32_t next, Random& random)
{
    if (previous == U'\n') {
        return random.between(0.14, 0.18);
    }
    if (previous == next) {
        return random.between(0.06, 0.09); // the finger is already there
    }
    const bool beginsWord = previous == U' ' || previous == U'.' || previous == U',';
    return beginsWord ? random.between(0.10, 0.18) : random.between(0.06, 0.14);
}

Typist::Typist(const std::string& display, std::uint64_t seed)
    : m_connection(std::make_unique<XConnection>(display))
    , m_layout(*m_connection)
    , m_random(seed)
{
    const auto shift = m_layout.strokeOf("Shift_L");
    if (!shift) {
        throw untypeable("Shift");
    }
    m_shift = *shift;
}

Typist::~Typist() = default;

void Typist::send(KeyAction action, std::uint8_t keycode) const
{
    const std::uint8_t type = action == KeyAction::Press ? XCB_KEY_PRESS : XCB_KEY_RELEASE;
    xcb_test_fake_input(m_connection->get(), type, keycode, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    m_connection->flush();
}

void Typist::strike(const TypedKey& stroke, const std::stop_token& stop)
{
    if (stroke.withShift) {
        send(KeyAction::Press, m_shift.keycode);
        sleepFor(m_random.between(0.015, 0.025), stop);
    }
    send(KeyAction::Press, stroke.keycode);
    sleepFor(m_random.between(0.025, 0.04), stop);
    send(KeyAction::Release, stroke.keycode);
    if (stroke.withShift) {
        send(KeyAction::Release, m_shift.keycode);
    }
}

void Typist::type(std::string_view text, const std::stop_token& stop)
{
    using Clock = std::chrono::steady_clock;
    const std::u32string characters = decoded(text);
    std::vector<TypedKey> strokes;
    for (std::size_t i = 0; i < characters.size(); ++i) {
        const auto stroke = m_layout.strokeOf(characters[i]);
        if (!stroke) {
            throw untypeable(
                "the character " + std::to_string(i + 1) + " of “" + std::string(text) + "”");
        }
        strokes.push_back(*stroke);
    }
    auto due = Clock::now();
    for (std::size_t i = 0; i < strokes.size(); ++i) {
        if (i > 0) {
            const double gap = typingGap(characters[i - 1], characters[i], m_random);
            due += std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(gap));
        }
        if (!sleepUntil(due, stop)) {
            return;
        }
        strike(strokes[i], stop);
    }
}

void Typist::press(const std::vector<std::string>& keys, const std::stop_token& stop)
{
    std::vector<std::uint8_t> keycodes;
    for (const std::string& key : keys) {
        const auto stroke = m_layout.strokeOf(std::string_view(key));
        if (!stroke || stroke->withShift) {
            throw untypeable(key);
        }
        keycodes.push_back(stroke->keycode);
    }
    for (const std::uint8_t keycode : keycodes) {
        send(KeyAction::Press, keycode);
        sleepFor(m_random.between(0.03, 0.06), stop);
    }
    while (!keycodes.empty()) {
        send(KeyAction::Release, keycodes.back());
        keycodes.pop_back();
    }
}

} // namespace zento
