#pragma once

#include <string>
#include <thread>

namespace zento::bench {

/// A window that covers a part of the screen and scrolls a page of noise 60 times a second, on the
/// thread "stage". The server does the work; the thread only asks for it.
class Animation {
public:
    /// `share` of the screen's area: (0, 1].
    Animation(const std::string& display, int screenWidth, int screenHeight, double share);

private:
    std::jthread m_thread;
};

} // namespace zento::bench
