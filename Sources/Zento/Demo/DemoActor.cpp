#include "Zento/Demo/DemoActor.h"

#include "Zento/Demo/Waiting.h"
#include "ZentoCore/Error.h"

#include <algorithm>
#include <chrono>

namespace zento {

namespace {

constexpr std::uint64_t kSeed = 20240317; // any will do; this one's film was looked at
constexpr double kPatienceSeconds = 10;
constexpr double kLookSeconds = 0.04;
constexpr double kBeforeChoosing = 0.4; // seconds in which a menu is read

/// What the step is done on, if it is done on an element.
const ElementQuery* target(const DemoStep& step)
{
    if (const auto* click = std::get_if<ClickStep>(&step)) {
        return &click->target;
    }
    if (const auto* scroll = std::get_if<ScrollStep>(&step)) {
        return &scroll->target;
    }
    const auto* move = std::get_if<MoveStep>(&step);
    return move != nullptr ? &move->target : nullptr;
}

/// A point a hand would hit: near the middle, but hardly ever on it.
Vec2 pointNearMiddle(const Rect& frame, Random& random)
{
    constexpr double kSpread = 0.12;
    return {
        frame.x + frame.w * (0.5 + random.between(-kSpread, kSpread)),
        frame.y + frame.h * (0.5 + random.between(-kSpread, kSpread))};
}

} // namespace

DemoActor::DemoActor(const std::string& display, const std::string& accessibilityAddress)
    : m_random(kSeed)
    , m_pointer(display, kSeed + 1)
    , m_typist(display, kSeed + 2)
    , m_finder(accessibilityAddress)
{
}

FoundElement DemoActor::await(const ElementQuery& query, const std::stop_token& stop)
{
    if (auto found = awaitFor(kPatienceSeconds, query, stop)) {
        return *std::move(found);
    }
    throw Error(
        ErrorCode::kElementMissing,
        "The demo cannot go on: " + description(query) + " is not to be found.");
}

std::optional<FoundElement>
DemoActor::awaitFor(double seconds, const ElementQuery& query, const std::stop_token& stop)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    std::optional<FoundElement> before;
    while (std::chrono::steady_clock::now() < deadline) {
        std::optional<FoundElement> now = m_finder.find(query);
        if (now && before && now->frame == before->frame) {
            return now;
        }
        before = std::move(now);
        if (!sleepFor(kLookSeconds, stop)) {
            throw Error(ErrorCode::kDemoStopped, "The demo was stopped.");
        }
    }
    return {};
}

void DemoActor::moveOnto(const ElementQuery& query, Spot spot, const std::stop_token& stop)
{
    const Rect frame = await(query, stop).frame;
    const Vec2 point = spot == Spot::Middle ? pointNearMiddle(frame, m_random)
                                            : Vec2{frame.x + frame.w - 1, frame.y + frame.h / 2};
    m_pointer.moveTo(point, std::min(frame.w, frame.h), stop);
}

void DemoActor::carryOut(const PauseStep& step, const std::stop_token& stop)
{
    sleepFor(step.seconds, stop);
}

void DemoActor::carryOut(const MoveStep& step, const std::stop_token& stop)
{
    moveOnto(step.target, Spot::Middle, stop);
}

void DemoActor::carryOut(const ClickStep& step, const std::stop_token& stop)
{
    moveOnto(step.target, step.spot, stop);
    m_pointer.click(PointerButton::Left, stop);
}

void DemoActor::carryOut(const MenuStep& step, const std::stop_token& stop)
{
    // On a busy machine a menu may be shown so late that it takes the button's release for a choice
    // and is gone. A person tries again.
    constexpr double kMenuSeconds = 3;
    bool isOpen = false;
    for (int attempt = 0; attempt < 2 && !isOpen; ++attempt) {
        moveOnto(step.target, step.spot, stop);
        m_pointer.click(PointerButton::Right, stop);
        sleepFor(kBeforeChoosing, stop);
        isOpen = awaitFor(kMenuSeconds, step.item, stop).has_value();
    }
    carryOut(ClickStep{step.item}, stop);
}

void DemoActor::carryOut(const TypeStep& step, const std::stop_token& stop)
{
    // From the mouse to the keys.
    if (sleepFor(m_random.between(0.25, 0.4), stop)) {
        m_typist.type(step.text, stop);
    }
}

void DemoActor::carryOut(const PressStep& step, const std::stop_token& stop)
{
    m_typist.press(step.keys, stop);
}

void DemoActor::carryOut(const ScrollStep& step, const std::stop_token& stop)
{
    moveOnto(step.target, Spot::Middle, stop);
    m_pointer.scroll(step.direction, step.notches, stop);
}

void DemoActor::carryOut(const SayStep& step, const std::stop_token&)
{
    const std::chrono::duration<double> now = std::chrono::steady_clock::now().time_since_epoch();
    m_spoken.push_back({.time = now.count(), .text = step.text});
}

void DemoActor::perform(const DemoStep& step, const std::stop_token& stop)
{
    std::visit([&](const auto& kind) { carryOut(kind, stop); }, step);
}

void awaitCurtain(std::span<const DemoStep> script, DemoActor& actor, const std::stop_token& stop)
{
    const auto first =
        std::ranges::find_if(script, [](const DemoStep& step) { return target(step) != nullptr; });
    if (first != script.end()) {
        actor.await(*target(*first), stop);
    }
}

void perform(std::span<const DemoStep> script, DemoActor& actor, const std::stop_token& stop)
{
    for (const DemoStep& step : script) {
        if (stop.stop_requested()) {
            return;
        }
        actor.perform(step, stop);
    }
}

} // namespace zento
