#pragma once

#include "Zento/Model/AppSettings.h"
#include "Zento/Model/Clock.h"
#include "ZentoCore/Overrides.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zento {

/// Everything an undo can put back.
struct UndoableState {
    SavedOverrides edits;
    AppSettings settings;

    bool operator==(const UndoableState&) const = default;
};

/// The named steps that can be undone and redone.
///
/// A step holds the values of what it changed and nothing else. A change under a name that was
/// recorded less than 0.8 s ago belongs to that step, so a slider dragged for ten seconds is one;
/// an undo or redo ends such a burst.
///
/// Threading: a value.
class UndoHistory {
public:
    /// Does nothing for equal states. What was undone can then no longer be redone.
    void record(
        std::string_view name,
        const UndoableState& before,
        const UndoableState& after,
        Clock::Instant now);

    /// The state after undoing or redoing a step in `state`; nothing if there is none.
    std::optional<UndoableState> undo(UndoableState state);
    std::optional<UndoableState> redo(UndoableState state);

    /// Empty if there is none.
    std::string undoName() const { return m_done.empty() ? "" : m_done.back().name; }
    std::string redoName() const { return m_undone.empty() ? "" : m_undone.back().name; }

private:
    struct Step {
        std::string name;
        std::vector<std::size_t> fields; // which of `values` count
        UndoableState values;
    };

    static void remember(Step& step, const UndoableState& before, const UndoableState& after);
    static Step exchange(const Step& step, UndoableState& state);

    std::vector<Step> m_done;
    std::vector<Step> m_undone;
    std::map<std::string, Clock::Instant, std::less<>> m_bursts; // the last change of a name
};

} // namespace zento
