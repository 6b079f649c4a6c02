#pragma once

#include "ZentoCapture/Backends/Portal.h"
#include "ZentoCapture/Backends/RestoreTokens.h"
#include "ZentoCore/Geometry.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

namespace zento {

/// What the user is to choose in the desktop's dialog.
struct ScreenChoice {
    enum class Kind : unsigned char { Monitor, Window };
    Kind kind = Kind::Monitor;
    std::string name; // under which the choice is remembered

    /// What the program may do besides looking.
    enum class Hand : unsigned char { None, Pointer };
    Hand hand = Hand::None;
};

/// A stream the desktop offers, by the number it has over the session's own connection.
struct ScreenCastStream {
    std::uint32_t node = 0;
    std::optional<Vec2> position; // points, on the desktop
    std::optional<Vec2> size;     // points
};

/// The user's leave to record what they chose, for as long as it lives.
///
/// The desktop asks the user in a dialog, the first time; what it hands out to be known by is kept,
/// and a word it does not know any more brings the dialog back.
///
/// Threading: one thread at a time. `closed` runs on a thread of its own, "capture.portal".
class ScreenCastSession {
public:
    /// Blocks until the user has chosen. Throws `Error` as `Portal::request`, and kNoInput where
    /// the desktop lets no program have a hand, or the user has not given it.
    ScreenCastSession(
        const ScreenChoice& choice,
        const RestoreTokens& tokens,
        const PortalPatience& patience,
        const std::stop_token& stop);
    ~ScreenCastSession(); // ends it
    ScreenCastSession(const ScreenCastSession&) = delete;
    ScreenCastSession& operator=(const ScreenCastSession&) = delete;

    const ScreenCastStream& stream() const;

    /// Whether the pointer's place comes with the stream.
    bool tellsPointer() const;

    /// A connection to PipeWire that sees the stream, for the caller to own. Throws `Error`.
    int openRemote();

    // With a hand on the pointer; while `watch` runs, too. Throws `Error`.
    void movePointer(Vec2 place) const; // in the stream, in points; some desktops take pixels
    void movePointerBy(Vec2 way) const; // points
    void turnWheel(int notches) const;  // down, over where the pointer is

    /// From here on the desktop is listened to: `closed` runs once if it takes the leave back. To
    /// be called once, after which nothing else is but what a hand does.
    void watch(std::function<void()> closed);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento
