#pragma once

#include "ZentoCore/SessionBundle.h"

namespace zento {

/// The last step of a recording and of a recovery: writes "meta.json" and "events.jsonl" and
/// returns when the disk has them. Throws `Error`.
void complete(const SessionBundle& bundle);

/// What tells a bundle that is complete from one that is not; failure goes unnoticed.
void removeJournal(const std::filesystem::path& bundle) noexcept;

} // namespace zento
