#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoCore/RemapCurve.h"

#include <optional>

namespace zento {

/// How many frames each run of a film has; they follow one another.
struct FilmFrames {
    int title = 0;
    int main = 0;
    int end = 0;

    int total() const { return title + main + end; }
    bool operator==(const FilmFrames&) const = default;
};

/// The main part keeps whole frames only, a card is rounded to the nearest number of them, halves
/// up; one whose duration is not positive has none. Nothing where an int cannot count them all.
std::optional<FilmFrames> filmFrames(const EditPlan& plan, const RemapCurve& curve);

} // namespace zento
