#pragma once

#include "ZentoCapture/ScreenshotTool.h"
#include "ZentoCapture/ScrollStitch.h"
#include "ZentoCapture/ScrollWheel.h"

#include <functional>
#include <stop_token>
#include <vector>

namespace zento {

/// A page that is taller than the screen.
struct ScrolledShot {
    Shot shot;
    std::vector<ScrollSeam> seams; // where the page may not be what is shown
};

namespace ScrollingCapture {

/// What a run works with; none of it is called after the run.
struct Ports {
    std::function<Shot()> shoot; // the area
    ScrollWheel& wheel;
    /// Waits until the content has come to rest after a step.
    std::function<void()> settle;
};

/// Scrolls what lies under an area and puts the shots under each other. The first step is one
/// notch of the wheel; what that moves tells how many notches are 0.6 of the area's height.
///
/// Whoever moves the pointer meanwhile ends the run; what was gathered is kept, and told to be cut
/// short.
///
/// Escape gives the run up.
///
/// `area`: global points. The pointer goes back to where it was, also when the run fails.
/// Threading: blocks; any thread. Throws `Error`: 9 when it was stopped or given up, 45, or what a
/// shot says.
ScrolledShot run(const Rect& area, const Ports& ports, const std::stop_token& stop = {});

} // namespace ScrollingCapture
} // namespace zento
