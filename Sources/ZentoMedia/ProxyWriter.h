#pragma once

#include "ZentoCore/Plane.h"

#include <cstdint>
#include <filesystem>
#include <memory>

namespace zento {

/// Writes a small copy of a recording for seeking in: H.264 in an MP4 file, every picture a key
/// frame at its own time (timescale 60000), without reordering, 8 Mbit/s, tagged BT.709 limited
/// range.
///
/// Encoded as fast as it can be, without arithmetic coding and loop filter: measured on 960 × 540
/// pictures, that halves the time of encoding and takes a third off that of decoding.
///
/// Nothing but `finish` completes the file, and nothing here ever deletes it.
///
/// Threading: used by one thread at a time. The encoder has threads of its own.
class ProxyWriter {
public:
    /// Creates the file, replacing one that exists. `width`, `height`: pixels, even.
    ///
    /// Throws `Error`: the system's error, naming the file, if it cannot be written; code
    /// `kProxyNotStarted` for what the encoder or the container refuses.
    ProxyWriter(const std::filesystem::path& path, int width, int height);
    ~ProxyWriter();
    ProxyWriter(ProxyWriter&&) noexcept;
    ProxyWriter& operator=(ProxyWriter&&) noexcept;

    /// Encodes a 4:2:0 picture at `time` seconds, [0, ∞). One that is not later than the one before
    /// counts as one tick later. `owner` keeps the samples alive and unchanged while it is held.
    ///
    /// Throws `Error`: the system's error, naming the file; else code `kProxyNotFinished`.
    void
    append(YuvPlanes<const std::uint8_t> picture, std::shared_ptr<const void> owner, double time);

    /// Encodes what waits, completes the file and closes it. To be called once. Throws as `append`,
    /// also for a proxy without a picture.
    void finish();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento
