#include "ZentoCapture/Backends/AtSpiLookup.h"

#include "ZentoCapture/Backends/AtSpiElements.h"
#include "ZentoCapture/Backends/X11Connection.h"
#include "ZentoCapture/Backends/X11Windows.h"
#include "ZentoCapture/ThreadName.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace zento {

namespace {

struct Lookup {
    std::string displayName;
    Vec2 point; // global points
    ElementLookup::Handler found;
};

void perform(const Lookup& lookup)
{
    const X11Connection connection(lookup.displayName);
    const double scale = displayScale(connection);
    const Vec2 pixel{lookup.point.x * scale, lookup.point.y * scale};
    const auto window = windowUnder(connection, pixel);
    auto element = window ? elementOfProcess(window->processID, window->rect, pixel) : std::nullopt;
    if (!element) {
        return;
    }
    Rect& frame = element->frame;
    frame = {frame.x / scale, frame.y / scale, frame.w / scale, frame.h / scale};
    lookup.found(*element);
}

class Worker {
public:
    /// Never destroyed: a call into a hung application would hold up the end of the process.
    static Worker& shared()
    {
        static auto* const worker = new Worker;
        return *worker;
    }

    void add(Lookup lookup)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_lookups.push_back(std::move(lookup));
        }
        m_added.notify_one();
    }

private:
    Worker()
    {
        std::thread([this] { run(); }).detach();
    }

    [[noreturn]] void run()
    {
        nameThread("capture.atspi");
        for (;;) {
            const Lookup lookup = next();
            try {
                perform(lookup);
            } catch (const std::exception&) {
                continue; // the display is gone, and the click stays without an element
            }
        }
    }

    Lookup next()
    {
        std::unique_lock lock(m_mutex);
        m_added.wait(lock, [this] { return !m_lookups.empty(); });
        Lookup lookup = std::move(m_lookups.front());
        m_lookups.pop_front();
        return lookup;
    }

    std::mutex m_mutex;
    std::condition_variable m_added;
    std::deque<Lookup> m_lookups;
};

} // namespace

AtSpiLookup::AtSpiLookup(std::string displayName)
    : m_displayName(std::move(displayName))
{
}

void AtSpiLookup::lookUp(Vec2 point, Handler found)
{
    Worker::shared().add({.displayName = m_displayName, .point = point, .found = std::move(found)});
}

} // namespace zento
