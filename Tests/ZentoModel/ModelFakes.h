#pragma once

#include "TestSupport/TemporaryFolder.h"
#include "Zento/Model/AppModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zento::test {

/// Time stands still until a test moves it.
class FakeClock final : public Clock {
public:
    Instant now() const override { return m_now; }

    std::unique_ptr<Timer>
    every(std::chrono::milliseconds interval, std::function<void()> tick) override
    {
        auto timer = std::make_unique<FakeTimer>(*this);
        m_timers[timer.get()] = {interval, m_now + interval, std::move(tick)};
        return timer;
    }

    /// Runs what falls due, in order.
    void advance(std::chrono::milliseconds time)
    {
        const Instant end = m_now + time;
        while (true) {
            const auto next = std::ranges::min_element(
                m_timers, {}, [](const auto& entry) { return entry.second.due; });
            if (next == m_timers.end() || next->second.due > end) {
                break;
            }
            m_now = next->second.due;
            next->second.due += next->second.interval;
            const auto tick = next->second.tick; // it may drop its timer
            tick();
        }
        m_now = end;
    }

private:
    class FakeTimer final : public Timer {
    public:
        explicit FakeTimer(FakeClock& clock)
            : m_clock(clock)
        {
        }
        ~FakeTimer() override { m_clock.m_timers.erase(this); }

    private:
        FakeClock& m_clock;
    };

    struct Entry {
        std::chrono::milliseconds interval{};
        Instant due;
        std::function<void()> tick;
    };

    Instant m_now{std::chrono::seconds(1'773'065'133)}; // 2026-03-09 14:05:33 UTC
    std::map<const FakeTimer*, Entry> m_timers;
};

/// Does its work when the test says so, or at once.
class FakeWorker final : public Worker {
public:
    bool isHeld = false;

    void run(std::function<void()> work, std::function<void()> done) override
    {
        m_pieces.emplace_back(std::move(work), std::move(done));
        if (!isHeld && !m_isRunning) {
            release();
        }
    }

    void release()
    {
        m_isRunning = true;
        while (!m_pieces.empty()) {
            step();
        }
        m_isRunning = false;
    }

    void step()
    {
        const auto [work, done] = std::move(m_pieces.front());
        m_pieces.pop_front();
        work();
        done();
    }

    std::size_t waiting() const { return m_pieces.size(); }

private:
    std::deque<std::pair<std::function<void()>, std::function<void()>>> m_pieces;
    bool m_isRunning = false;
};

class FakeFileServices final : public FileServices {
public:
    std::vector<std::string> calls;

    void reveal(const std::filesystem::path& file) override { add("reveal", file); }
    void copyToClipboard(const std::filesystem::path& file) override { add("copy", file); }
    void openUrl(const std::string& url) override { calls.push_back("open " + url); }
    void
    openWith(const std::filesystem::path& file, std::function<void(std::string)> failed) override
    {
        add("openWith", file);
        failed("no portal");
    }
    void composeMail(
        const std::filesystem::path& file,
        const std::string& subject,
        std::function<void(std::string)>) override
    {
        add("mail " + subject, file);
    }

private:
    void add(const std::string& what, const std::filesystem::path& file)
    {
        calls.push_back(what + " " + file.filename().string());
    }
};

class FakeHotkeys final : public GlobalHotkeys {
public:
    bool isThere = true;
    std::vector<std::string> taken; // caps joined by "+"

    bool isAvailable() const override { return isThere; }

    std::unique_ptr<GlobalHotkey> registerHotkey(
        const KeyStroke& stroke, const HotkeyName& /*name*/, std::function<void()> pressed) override
    {
        const std::string name = text(stroke);
        if (!isThere || std::ranges::find(taken, name) != taken.end() || m_live.contains(name)) {
            return nullptr;
        }
        m_live[name] = std::move(pressed);
        return std::make_unique<Hotkey>(*this, name);
    }

    /// True when it was registered.
    bool press(const std::string& name)
    {
        const auto found = m_live.find(name);
        if (found == m_live.end()) {
            return false;
        }
        found->second();
        return true;
    }

    std::vector<std::string> live() const
    {
        std::vector<std::string> names;
        for (const auto& [name, pressed] : m_live) {
            names.push_back(name);
        }
        return names;
    }

private:
    class Hotkey final : public GlobalHotkey {
    public:
        Hotkey(FakeHotkeys& hotkeys, std::string name)
            : m_hotkeys(hotkeys)
            , m_name(std::move(name))
        {
        }
        ~Hotkey() override { m_hotkeys.m_live.erase(m_name); }

    private:
        FakeHotkeys& m_hotkeys;
        std::string m_name;
    };

    static std::string text(const KeyStroke& stroke)
    {
        std::string joined;
        for (const std::string& cap : keyCaps(stroke)) {
            joined += (joined.empty() ? "" : "+") + cap;
        }
        return joined;
    }

    std::map<std::string, std::function<void()>> m_live;
};

/// What the fake recordings do, and what was done to them.
struct FakeCaptures {
    std::string choiceFailure; // empty: the user chooses
    std::function<void()> whileChoosing;
    std::string startFailure; // empty: it starts
    std::string stopFailure;
    int frameCount = 600;
    int droppedFrameCount = 0;
    std::vector<std::string> sideFiles;
    bool leavesBundle = true; // a stop writes "meta.json"

    std::vector<CaptureOrder> orders;
    std::vector<std::string> steps;
    std::function<void(const std::optional<Error>&)> onStreamStopped;

    CaptureFactory factory();
};

/// What the fake maker of films does, and what it was asked for.
struct FakeFilms {
    std::string failure;                               // empty: it succeeds
    std::vector<std::string> made;                     // names of the files, in order
    std::function<void(const FilmReports&)> meanwhile; // before a film or a GIF is there

    FilmMakers makers();
};

/// Never answers.
class SilentComposer final : public FrameComposer {
public:
    void request(PreviewRequest) override {}
    void drop() override {}
};

/// The whole model over fakes, in a folder of its own.
class ModelTest : public testing::Test {
protected:
    ModelTest();

    void start() { m_model->start(); }
    void makeModel();

    /// A folder of a recording; with an empty text one without "meta.json". `Later` waits until the
    /// file system's clock has moved on, so that it is newer than all before.
    enum class Age { Any, Later };
    std::filesystem::path
    bundle(const std::string& name, const std::string& meta, Age age = Age::Later) const;

    QString error() const { return m_model->messages()->errorMessage(); }
    QString toast() const { return m_model->messages()->toast(); }

    TemporaryFolder m_folder;
    std::filesystem::path m_sessions = m_folder / "Videos/Zento";
    FakeClock m_clock;
    FakeWorker m_files;
    FakeWorker m_captureWorker;
    FakeWorker m_exports;
    FakeWorker m_probes;
    FakeWorker m_edits;
    FakeWorker m_analyses;
    FakeFileServices m_services;
    FakeHotkeys m_hotkeys;
    FakeCaptures m_captures;
    FakeFilms m_films;
    PermissionState m_permissions{true, true, true, true, true};
    std::optional<std::int64_t> m_freeSpace = 50'000'000'000;
    std::vector<std::string> m_actions;
    std::optional<QByteArray> m_updateDocument;
    std::vector<QUrl> m_fetched;
    bool m_hasTray = true;
    Desktop::Choice m_choice = Desktop::Choice::ByProgram;
    std::function<DisplayPicture()> m_displayPicture;
    CaptureDevices m_devices;
    std::vector<DesktopWindow> m_windows;
    std::function<SystemLanguageModel(const LanguageModelChoice&)> m_findModel = [](const auto&) {
        return SystemLanguageModel();
    };
    std::unique_ptr<QSettings> m_defaults;
    std::unique_ptr<AppModel> m_model;
};

/// A "meta.json" of a recording.
std::string metaText(const std::string& title = "", const std::string& application = "");

} // namespace zento::test
