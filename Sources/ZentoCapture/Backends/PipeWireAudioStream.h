#pragma once

#include "ZentoCapture/Backends/PipeWireLoop.h"
#include "ZentoCapture/ClockedWav.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace zento {

enum class SoundSource : unsigned char {
    Microphone,    // in its own rate and channels
    DefaultOutput, // 48 kHz, stereo; whichever output that is at the time
};

enum class Hearing : unsigned char { On, Off };

/// Sound as it comes from PipeWire, stamped with when it was heard.
///
/// The real-time thread of the library copies it into a ring; the loop's thread hands it on, so the
/// handler may take its time: ten seconds of stereo wait for it. What the service moves to another
/// device goes on, perhaps in another format.
///
/// Threading: the handler runs on the loop's thread, at last in the destructor; `hear` from any.
class PipeWireAudioStream {
public:
    using Handler = std::function<void(const TimedSound&)>;

    /// `target`: a microphone's name or serial number; absent: the default one. Throws `Error` of
    /// the system when the service refuses.
    PipeWireAudioStream(
        PipeWireLoop& loop,
        SoundSource source,
        const std::optional<std::string>& target,
        Handler handler);
    ~PipeWireAudioStream(); // hands over what has come
    PipeWireAudioStream(const PipeWireAudioStream&) = delete;
    PipeWireAudioStream& operator=(const PipeWireAudioStream&) = delete;

    /// The service's number of it, once it has one. With the loop's lock.
    std::uint32_t node() const;

    /// What comes while it is off is thrown away.
    void hear(Hearing hearing);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento
