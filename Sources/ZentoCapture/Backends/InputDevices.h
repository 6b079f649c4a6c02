#pragma once

#include "ZentoCapture/InputSource.h"

#include <functional>
#include <memory>

namespace zento {

/// Mice, touch pads and keyboards as the kernel tells of them, where the user may read that: what
/// was done and when, but not where.
///
/// Threading: one thread at a time.
class InputDevices {
public:
    /// `RawInput::point` is not set.
    using Handler = std::function<void(const RawInput&)>;

    virtual ~InputDevices() = default;

    /// Readable once something has happened.
    virtual int fileDescriptor() const = 0;

    /// Hands over what has happened. Never waits.
    virtual void read(const Handler& handler) = 0;
};

/// All devices of this seat, those plugged in later too. Null where the user may read none.
std::unique_ptr<InputDevices> openInputDevices();

} // namespace zento
