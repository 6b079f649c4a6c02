#pragma once

#include "Zento/Model/AppSettings.h"
#include "ZentoCore/Analyses.h"
#include "ZentoCore/EditPlan.h"
#include "ZentoCore/SessionMeta.h"

#include <optional>

namespace zento {

/// The text cards of a film; absent where they are switched off.
struct FilmCards {
    std::optional<TextCard> title;
    std::optional<TextCard> end;
    bool operator==(const FilmCards&) const = default;
};

/// The cards that settings and recording ask for. A text that is left empty in the settings comes
/// from what is known of the recording. Pure.
FilmCards currentCards(
    const AppSettings& settings, const SessionMeta& meta, const std::optional<VideoCopy>& copy);

} // namespace zento
