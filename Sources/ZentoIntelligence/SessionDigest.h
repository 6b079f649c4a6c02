#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoCore/InputEvent.h"
#include "ZentoCore/SessionMeta.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace zento {

/// The facts of a recording that its announcement is written from.
struct SessionDigest {
    std::optional<std::string> appName;
    double sourceDuration = 0;            // seconds of the recording
    std::optional<double> outputDuration; // seconds of the film
    int clickCount = 0;
    int typingBurstCount = 0;                   // a single key is one
    int scrollCount = 0;                        // ticks
    std::vector<std::string> interactionTitles; // what was clicked, in order; at most 12
    std::vector<std::string> highlightTitles;   // what is zoomed into; at most 12

    /// Without a plan there is no film to speak of.
    static SessionDigest
    extract(const SessionMeta& meta, std::span<const InputEvent> events, const EditPlan* plan);

    /// As lines of text, for a language model.
    std::string promptSummary() const;

    bool operator==(const SessionDigest&) const = default;
};

/// "7 seconds": rounded, never in the singular.
std::string spokenSeconds(double seconds);

} // namespace zento
