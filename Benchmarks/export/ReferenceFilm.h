#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoCore/SessionBundle.h"

#include <filesystem>

namespace zento::bench {

/// What an export would cost if composing were free.
struct ReferenceCost {
    double processor = 0; // seconds
    double wall = 0;
};

/// Makes the film of a plan, the same bytes that an export makes, from pictures that were composed
/// before: the recording is decoded frame by frame as an export does, with what it skips, and the
/// pictures, kept in memory in parts of some seconds, are encoded, the one thread beside the other.
/// What composing them took is not in the figures.
ReferenceCost makeReferenceFilm(
    const SessionBundle& bundle, const EditPlan& plan, const std::filesystem::path& to);

struct ComposeCost {
    double median = 0;   // milliseconds of processor time, of the frames that were composed
    double quick = 0;    // the same of the tenth that took least: what neighbours do to a shared
                         // machine's memory shows in the difference
    double composed = 0; // the share of the frames that were
    double decoded = 0;  // the share of the frames that were decoded
    double decode = 0;   // milliseconds of processor time of a frame that was
    double frames = 0;
};

/// Decodes and composes all frames of a plan on this thread, with the pool of pictures that an
/// export has.
ComposeCost measureComposing(const SessionBundle& bundle, const EditPlan& plan);

} // namespace zento::bench
