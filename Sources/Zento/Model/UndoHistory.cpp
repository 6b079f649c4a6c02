#include "Zento/Model/UndoHistory.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

namespace zento {

namespace {

constexpr std::chrono::milliseconds kBurst{800};

/// One value that is put back by itself.
struct Field {
    bool (*differs)(const UndoableState&, const UndoableState&);
    void (*copy)(const UndoableState& from, UndoableState& to);
};

template <auto member>
constexpr Field kEdit = {
    [](const UndoableState& a, const UndoableState& b) {
        return a.edits.*member != b.edits.*member;
    },
    [](const UndoableState& from, UndoableState& to) { to.edits.*member = from.edits.*member; }};

constexpr Field kSettingsField = {
    [](const UndoableState& a, const UndoableState& b) { return a.settings != b.settings; },
    [](const UndoableState& from, UndoableState& to) { to.settings = from.settings; }};

constexpr std::array kFields = {
    kEdit<&SavedOverrides::disabledZooms>,
    kEdit<&SavedOverrides::zoomEdits>,
    kEdit<&SavedOverrides::addedZooms>,
    kEdit<&SavedOverrides::deletedZooms>,
    kEdit<&SavedOverrides::trimStart>,
    kEdit<&SavedOverrides::trimEnd>,
    kEdit<&SavedOverrides::musicStart>,
    kEdit<&SavedOverrides::musicEnd>,
    kSettingsField};

} // namespace

/// Adds what changed, unless the step has an earlier value of it.
void UndoHistory::remember(Step& step, const UndoableState& before, const UndoableState& after)
{
    for (std::size_t i = 0; i < kFields.size(); ++i) {
        if (kFields[i].differs(before, after)
            && std::ranges::find(step.fields, i) == step.fields.end()) {
            step.fields.push_back(i);
            kFields[i].copy(before, step.values);
        }
    }
}

void UndoHistory::record(
    std::string_view name,
    const UndoableState& before,
    const UndoableState& after,
    Clock::Instant now)
{
    if (before == after) {
        return;
    }
    m_undone.clear();
    const auto burst = m_bursts.find(name);
    const bool continues = burst != m_bursts.end() && now - burst->second < kBurst;
    m_bursts.insert_or_assign(std::string(name), now);
    const auto step = continues
                          ? std::ranges::find(m_done.rbegin(), m_done.rend(), name, &Step::name)
                          : m_done.rend();
    if (step != m_done.rend()) {
        remember(*step, before, after);
        return;
    }
    m_done.push_back({.name = std::string(name)});
    remember(m_done.back(), before, after);
}

std::optional<UndoableState> UndoHistory::undo(UndoableState state)
{
    if (m_done.empty()) {
        return std::nullopt;
    }
    m_undone.push_back(exchange(m_done.back(), state));
    m_done.pop_back();
    m_bursts.clear();
    return state;
}

std::optional<UndoableState> UndoHistory::redo(UndoableState state)
{
    if (m_undone.empty()) {
        return std::nullopt;
    }
    m_done.push_back(exchange(m_undone.back(), state));
    m_undone.pop_back();
    m_bursts.clear();
    return state;
}

/// Puts a step's values into the state, and gives the step that takes them out again.
UndoHistory::Step UndoHistory::exchange(const Step& step, UndoableState& state)
{
    Step inverse = {.name = step.name, .fields = step.fields, .values = state};
    for (const std::size_t field : step.fields) {
        kFields[field].copy(step.values, state);
    }
    return inverse;
}

} // namespace zento
