#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoCore/RemapCurve.h"
#include "ZentoEngine/MusicInfo.h"
#include "ZentoEngine/SpeechRanges.h"

#include <span>

namespace zento::EditPlanner {

/// How the music is played: quieter under speech and, less so, where the film runs faster than 1.9;
/// started on the beat nearest to the user's trim. `segments` are the film's final ones, `speech`
/// is what `speechRanges` gave. There are two duck points a range, also where the level stays.
MusicPlan planMusic(
    const MusicInfo& music,
    std::span<const SpeedSegment> segments,
    std::span<const TimeRange> speech,
    const RemapCurve& remap);

} // namespace zento::EditPlanner
