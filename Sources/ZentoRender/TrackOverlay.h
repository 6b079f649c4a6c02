#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoMedia/AudioReader.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zento {

/// A recorded track cut to the edit: it is heard where the film runs at normal speed (within 1 %)
/// and is silent where it runs at another, as speech is neither stretched nor pitched. Every
/// stretch begins and ends with a ramp of 6 ms.
///
/// The stretches lie one behind the other by their plain lengths. The picture eases through changes
/// of speed, so that the sound may lead it there by a fraction of the ramp.
class TrackOverlay {
public:
    /// `titleOffset`: seconds of film before output time 0.
    TrackOverlay(
        const NarrationPlan& track, const std::vector<SpeedSegment>& timeRemap, double titleOffset);

    /// Adds what the stretches take of a block of the track, sample `first` of it on, to the film's
    /// channels, of one length.
    void
    add(AudioBlock block, std::int64_t first, std::span<float> left, std::span<float> right) const;

    /// The end of what any stretch takes: no sample of the track at or past it is heard.
    std::int64_t end() const;

private:
    struct Stretch {
        std::int64_t source = 0; // samples of the track
        std::int64_t film = 0;   // samples of the film
        std::int64_t count = 0;
    };

    float gainAt(const Stretch& stretch, std::int64_t k) const;

    std::vector<Stretch> m_stretches;
    double m_gain; // factor
};

} // namespace zento
