#pragma once

#include <functional>

namespace zento {

/// Runs a question to the accessibility bus after those that wait already. An error of it is
/// dropped: the click stays without an element.
///
/// libatspi keeps its state per process and is not thread-safe, so all questions of a process share
/// one thread, "capture.atspi", which lives as long as the process. An application that does not
/// answer delays what waits behind it, and nothing else.
///
/// Threading: any thread.
void askAccessibility(std::function<void()> question);

} // namespace zento
