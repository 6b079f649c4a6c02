#pragma once

#include "Zento/Demo/DemoScript.h"
#include "Zento/Demo/ElementFinder.h"
#include "Zento/Demo/Pointer.h"
#include "Zento/Demo/Random.h"
#include "Zento/Demo/Typist.h"

#include <span>
#include <stop_token>
#include <string>
#include <vector>

namespace zento {

/// A sentence that was said during a performance.
struct SpokenLine {
    double time = 0; // seconds of the monotonic clock
    std::string text;
};

/// Performs steps of a script as a person would: looks for the element, moves there, does it.
///
/// The same seed gives the same ways and pauses, apart from the time that the programs take.
/// Threading: one thread at a time.
class DemoActor {
public:
    /// `display` as in DISPLAY; `accessibilityAddress` of that desktop's accessibility bus. Throws
    /// `Error` kDesktopFailed.
    DemoActor(const std::string& display, const std::string& accessibilityAddress);

    /// Returns when the element is shown and stands still. Throws `Error` kElementMissing when it
    /// is not there within some seconds, kDemoStopped on a stop request.
    FoundElement await(const ElementQuery& query, const std::stop_token& stop);

    /// Throws `Error` kElementMissing, kUntypeable, kDemoStopped.
    void perform(const DemoStep& step, const std::stop_token& stop);

    /// What was said so far. Nothing sounds: the voice is added to the recording afterwards.
    const std::vector<SpokenLine>& spoken() const { return m_spoken; }

private:
    void carryOut(const PauseStep& step, const std::stop_token& stop);
    void carryOut(const MoveStep& step, const std::stop_token& stop);
    std::optional<FoundElement>
    awaitFor(double seconds, const ElementQuery& query, const std::stop_token& stop);

    void carryOut(const ClickStep& step, const std::stop_token& stop);
    void carryOut(const MenuStep& step, const std::stop_token& stop);
    void carryOut(const TypeStep& step, const std::stop_token& stop);
    void carryOut(const PressStep& step, const std::stop_token& stop);
    void carryOut(const ScrollStep& step, const std::stop_token& stop);
    void carryOut(const SayStep& step, const std::stop_token& stop);
    void moveOnto(const ElementQuery& query, Spot spot, const std::stop_token& stop);

    Random m_random;
    Pointer m_pointer;
    Typist m_typist;
    ElementFinder m_finder;
    std::vector<SpokenLine> m_spoken;
};

/// Waits until the first element that the script names can be found: a program that has just
/// started needs a moment until it shows itself on the accessibility bus.
void awaitCurtain(std::span<const DemoStep> script, DemoActor& actor, const std::stop_token& stop);

/// The whole script, step by step. On a stop request it ends after the step under way, with
/// everything released, and returns.
void perform(std::span<const DemoStep> script, DemoActor& actor, const std::stop_token& stop);

} // namespace zento
