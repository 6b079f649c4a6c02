#pragma once

#include "ZentoCapture/Desktop.h"
#include "ZentoCapture/ScreenWriter.h"
#include "ZentoCore/Error.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zento {

/// A desktop in memory. The test is its user, its screen and its applications; everything a
/// recording does to it is written down in `steps`, in order.
class FakeDesktop final : public Desktop {
public:
    // What the desktop is.
    std::vector<DisplayInfo> displayList{
        {.id = 7,
         .name = "ONE",
         .bounds = {0, 0, 640, 480},
         .scale = 1,
         .role = DisplayRole::Main}};
    std::map<std::uint32_t, WindowInfo> windows;
    std::optional<Vec2> pointer = Vec2{10, 20};
    std::optional<std::string> application = "Editor";

    // What goes wrong.
    std::optional<Error> inputFailure;
    std::optional<Error> streamFailure;
    std::optional<Error> writerFailure;
    std::optional<Error> finishFailure;
    bool writerIsReady = true;

    // What a recording did.
    std::vector<std::string> steps;
    std::optional<FrameRequest> request;
    std::vector<double> appendedTimes;
    std::vector<std::pair<Vec2, ElementLookup::Handler>> lookups;
    std::pair<int, int> writerSize;
    std::atomic<int> pointerReads = 0; // by the poll
    std::atomic<int> windowReads = 0;  // by the poll

    /// Where the recorded window goes to while the poll runs; nothing: it is not on the screen.
    void moveWindow(const std::optional<Rect>& frame)
    {
        const std::lock_guard lock(m_frameMutex);
        m_windowFrame = frame;
    }

    // What happens while it runs.
    InputSource::Handler input;
    FrameSource::FrameHandler frames;
    FrameSource::EndHandler streamEnd;

    FrameVerdict showFrame(double time, FrameStatus status = FrameStatus::Complete)
    {
        static constexpr std::array<std::uint8_t, 4> kPixel{};
        return frames(
            {.picture = {.data = kPixel.data(), .width = 1, .height = 1, .stride = 4},
             .time = time,
             .status = status});
    }

    ScreenWriterFactory writerFactory()
    {
        return [this](const std::filesystem::path&, int width, int height) {
            if (writerFailure) {
                throw Error(*writerFailure);
            }
            writerSize = {width, height};
            steps.emplace_back("writer");
            return std::make_unique<Writer>(*this);
        };
    }

    std::vector<DisplayInfo> displays() override
    {
        steps.emplace_back("displays");
        return displayList;
    }
    std::optional<WindowInfo> window(std::uint32_t windowID) override
    {
        const auto found = windows.find(windowID);
        return found == windows.end() ? std::nullopt : std::optional(found->second);
    }
    WindowFrameQuery windowFrameQuery(std::uint32_t) override
    {
        return [this] {
            const std::lock_guard lock(m_frameMutex);
            ++windowReads;
            return m_windowFrame;
        };
    }
    std::optional<Vec2> pointerPosition() override { return pointer; }
    std::optional<std::string> frontmostApplication() override { return application; }
    std::unique_ptr<FrameSource> frameSource(const FrameRequest& wanted) override
    {
        request = wanted;
        return std::make_unique<Frames>(*this);
    }
    std::unique_ptr<InputSource> inputSource() override { return std::make_unique<Input>(*this); }
    std::unique_ptr<ElementLookup> elementLookup() override
    {
        return std::make_unique<Lookup>(*this);
    }

private:
    class Frames final : public FrameSource {
    public:
        explicit Frames(FakeDesktop& desktop)
            : m_desktop(desktop)
        {
        }
        void start(FrameHandler onFrame, EndHandler onEnd) override
        {
            if (m_desktop.streamFailure) {
                throw Error(*m_desktop.streamFailure);
            }
            m_desktop.steps.emplace_back("stream on");
            m_desktop.frames = std::move(onFrame);
            m_desktop.streamEnd = std::move(onEnd);
        }
        void stop() override { m_desktop.steps.emplace_back("stream off"); }

    private:
        FakeDesktop& m_desktop;
    };

    class Input final : public InputSource {
    public:
        explicit Input(FakeDesktop& desktop)
            : m_desktop(desktop)
        {
        }
        void start(Handler handler) override
        {
            if (m_desktop.inputFailure) {
                throw Error(*m_desktop.inputFailure);
            }
            m_desktop.steps.emplace_back("input on");
            m_desktop.input = std::move(handler);
        }
        void stop() override { m_desktop.steps.emplace_back("input off"); }
        std::optional<Vec2> pointerPosition() override
        {
            ++m_desktop.pointerReads;
            return m_desktop.pointer;
        }

    private:
        FakeDesktop& m_desktop;
    };

    class Lookup final : public ElementLookup {
    public:
        explicit Lookup(FakeDesktop& desktop)
            : m_desktop(desktop)
        {
        }
        void lookUp(Vec2 point, Handler found) override
        {
            m_desktop.lookups.emplace_back(point, std::move(found));
        }

    private:
        FakeDesktop& m_desktop;
    };

    class Writer final : public ScreenWriter {
    public:
        explicit Writer(FakeDesktop& desktop)
            : m_desktop(desktop)
        {
        }
        AppendResult append(const BgraView&, double time) override
        {
            if (!m_desktop.writerIsReady) {
                return AppendResult::NotReady;
            }
            m_desktop.appendedTimes.push_back(time);
            return AppendResult::Appended;
        }
        void finish() override
        {
            m_desktop.steps.emplace_back("finish");
            if (m_desktop.finishFailure) {
                throw Error(*m_desktop.finishFailure);
            }
        }

    private:
        FakeDesktop& m_desktop;
    };

    std::mutex m_frameMutex;
    std::optional<Rect> m_windowFrame;
};

} // namespace zento
