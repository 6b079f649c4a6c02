#pragma once

#include "ZentoCore/Plane.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>

namespace zento {

/// Writes a recording as it happens: ProRes 422 LT in a QuickTime movie, every picture at its own
/// time (timescale 60000), tagged BT.709 limited range.
///
/// The caller's thread never waits for the encoder or the disk. It fills a slot of a small pool and
/// submits it; threads of the writer encode and write. While all slots are on their way the writer
/// is not ready, and the caller drops its frame.
///
/// The file can be read at any moment, up to the last second; `finish` makes an ordinary movie of
/// it, and `MovieRecovery` does so for one that was left.
///
///     if (auto slot = writer.acquire()) {
///         convert(pixels, slot->planes());
///         writer.submit(std::move(*slot), time);
///     }
///
/// Threading: `acquire`, `submit` and `append` by one thread at a time, `isReady` and `hasFailed`
/// by any; `finish` after the last of them. A slot may be filled by any thread.
class ProResWriter {
    struct State;

public:
    /// A picture of the pool, lent to the caller: 4:2:2 of 10 bits, BT.709 limited range. It holds
    /// whatever the pool left in it. Destroying it unsubmitted gives it back.
    class Slot {
    public:
        Slot(Slot&&) noexcept = default;
        Slot& operator=(Slot&&) noexcept = default;

        const YuvPlanes<std::uint16_t>& planes() const { return m_planes; } // rows 64-byte aligned

    private:
        friend class ProResWriter;
        Slot(std::shared_ptr<void> samples, const YuvPlanes<std::uint16_t>& planes)
            : m_samples(std::move(samples))
            , m_planes(planes)
        {
        }

        std::shared_ptr<void> m_samples; // its deleter gives them back to the pool
        YuvPlanes<std::uint16_t> m_planes;
    };

    /// Creates the file, replacing one that exists. `width`, `height`: pixels, positive and even.
    /// `encoderThreads`: [1, ∞); two take the whole of two cores at 1080p with 60 pictures a
    /// second.
    ///
    /// Throws `Error`: the system's error, naming the file, if it cannot be written; code
    /// `kMovieNotStarted` for what the encoder or the container refuses.
    ProResWriter(const std::filesystem::path& path, int width, int height, int encoderThreads = 2);

    /// Without `finish` the recording is abandoned: what waits is dropped and the file is left as
    /// it is.
    ~ProResWriter();
    ProResWriter(const ProResWriter&) = delete;
    ProResWriter& operator=(const ProResWriter&) = delete;

    /// Whether `acquire` would give a slot. False for good once writing has failed.
    bool isReady() const;

    /// Whether writing has failed; `finish` will say why.
    bool hasFailed() const;

    /// A slot to fill, or nothing while the writer is not ready.
    std::optional<Slot> acquire();

    /// Hands a slot of this writer over to be encoded. `time`: seconds from the start of the movie,
    /// [0, ∞), the first usually 0. A time that is not later than the one before counts as one tick
    /// of 1/60000 s later.
    void submit(Slot slot, double time);

    /// `acquire`, copy, `submit`. False if the writer was not ready.
    bool append(YuvPlanes<const std::uint16_t> picture, double time);

    /// Waits until all that was submitted is in the file, and completes it. To be called once.
    ///
    /// Throws `Error` if anything went wrong since the start: the system's error, naming the file,
    /// for a disk that filled up or failed; else code `kMovieNotFinished`, also for a movie without
    /// a picture. Room for the movie's index is set aside while recording, so on a disk that filled
    /// up the file still holds all pictures up to there and can be read.
    void finish();

private:
    std::unique_ptr<State> m_state;
};

} // namespace zento
