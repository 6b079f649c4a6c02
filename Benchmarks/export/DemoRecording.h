#pragma once

#include <filesystem>

namespace zento::bench {

/// A recording of the demo's work on a desktop of its own: clicks, menus, a list that is scrolled,
/// typing. It is made once and kept in `folder`; returns its bundle.
///
/// Threading: from a process of one thread.
std::filesystem::path demoRecording(const std::filesystem::path& folder);

} // namespace zento::bench
