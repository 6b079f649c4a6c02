#include "Zento/Demo/DemoStage.h"

#include "Zento/Commands/Interruption.h"
#include "Zento/Demo/DemoActor.h"
#include "Zento/Demo/Waiting.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileDescriptor.h"

#include <atspi/atspi.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fstream>
#include <sstream>

namespace zento {
namespace {

namespace fs = std::filesystem;

std::string content(const fs::path& file)
{
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

fs::path socketOf(const std::string& display)
{
    return "/tmp/.X11-unix/X" + display.substr(1);
}

/// Whether nobody answers at a socket. The number of a server that is gone may be another's by now.
bool isDead(const fs::path& socket)
{
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    socket.native().copy(address.sun_path, sizeof(address.sun_path) - 1);
    const FileDescriptor client(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    return ::connect(client.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address))
               != 0
           && errno == ECONNREFUSED;
}

/// A server that is just starting does not answer for a moment either; what was left never will.
void expectNothingLeft(const fs::path& socket)
{
    const auto isClean = [&] { return !isDead(socket); };
    EXPECT_NO_THROW(waitUntil(isClean, 30, "a socket is left", {}));
}

/// The programs that have `folder` for their home: only a desktop's own have.
std::vector<std::string> programsAtHomeIn(const fs::path& folder)
{
    std::vector<std::string> result;
    for (const auto& entry : fs::directory_iterator("/proc")) {
        if (content(entry.path() / "environ").contains("HOME=" + folder.string())) {
            result.push_back(content(entry.path() / "cmdline"));
        }
    }
    return result;
}

/// What a process that sets a stage tells those who look after it has gone.
struct Traces {
    fs::path home;
    std::string display;

    static Traces of(const DemoStage& stage)
    {
        return {stage.desktop().home().path(), stage.display()};
    }

    void write(const fs::path& file) const
    {
        std::ofstream(file) << home.string() << '\n' << display << '\n';
    }

    static Traces read(const fs::path& file)
    {
        Traces traces;
        std::string home;
        std::ifstream(file) >> home >> traces.display;
        traces.home = home;
        return traces;
    }
};

TEST(DemoStage, leavesNothingBehind)
{
    Traces traces;
    {
        const DemoStage stage;
        traces = Traces::of(stage);
        EXPECT_GE(programsAtHomeIn(traces.home).size(), 7U)
            << "server, windows, two buses with their two helpers, two programs";
        EXPECT_TRUE(fs::exists(socketOf(traces.display)));
    }
    EXPECT_TRUE(programsAtHomeIn(traces.home).empty());
    EXPECT_FALSE(fs::exists(traces.home));
    expectNothingLeft(socketOf(traces.display));
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child is left, dead or alive";
    EXPECT_EQ(errno, ECHILD);
}

TEST(DemoStage, twoStandSideBySide)
{
    const DemoStage one;
    const DemoStage other;
    EXPECT_NE(one.display(), other.display());
    EXPECT_NE(one.accessibilityAddress(), other.accessibilityAddress());
}

TEST(DemoStage, saysThatItWasStopped)
{
    std::stop_source stop;
    stop.request_stop();
    try {
        const DemoStage stage(stop.get_token());
        FAIL() << "it was set";
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), ErrorCode::kDemoStopped);
    }
}

/// In a process of its own: sets a stage, is hit by a signal, and goes the way a command goes.
class InterruptedStageTest : public testing::Test {
public:
    InterruptedStageTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    ~InterruptedStageTest() override
    {
        std::error_code ignored;
        fs::remove(m_note, ignored);
    }

protected:
    [[noreturn]] void runAndGetHit(int signal) const
    {
        const Interruption interruption;
        try {
            const DemoStage stage(interruption.token());
            Traces::of(stage).write(m_note);
            const std::vector<DemoStep> script = demoScript();
            DemoActor actor(stage.display(), stage.accessibilityAddress());
            kill(getpid(), signal);
            perform(script, actor, interruption.token());
        } catch (const Error& error) {
            if (error.code() != ErrorCode::kDemoStopped) {
                _exit(1);
            }
        }
        _exit(interruption.token().stop_requested() ? kInterrupted : 0);
    }

    void expectNoProgramsLeft() const
    {
        const Traces traces = Traces::read(m_note);
        ASSERT_TRUE(traces.home.string().contains("zento-desktop-"));
        const auto isGone = [&] { return programsAtHomeIn(traces.home).empty(); };
        EXPECT_NO_THROW(waitUntil(isGone, 30, "programs are left", {}));
        expectNothingLeft(socketOf(traces.display));
    }

    static constexpr int kInterrupted = 42;

    // Found again by the process of the test's other half: the same name there.
    fs::path m_note =
        fs::temp_directory_path()
        / ("zento-test-"
           + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
};

using InterruptedStageDeathTest = InterruptedStageTest;

TEST_F(InterruptedStageDeathTest, sigtermTakesEverythingDown)
{
    EXPECT_EXIT(runAndGetHit(SIGTERM), testing::ExitedWithCode(kInterrupted), "");
    expectNoProgramsLeft();
    EXPECT_FALSE(fs::exists(Traces::read(m_note).home));
}

TEST_F(InterruptedStageDeathTest, sigintTakesEverythingDown)
{
    EXPECT_EXIT(runAndGetHit(SIGINT), testing::ExitedWithCode(kInterrupted), "");
    expectNoProgramsLeft();
    EXPECT_FALSE(fs::exists(Traces::read(m_note).home));
}

TEST_F(InterruptedStageDeathTest, noProgramOutlivesEvenAKilledProcess)
{
    EXPECT_EXIT(runAndGetHit(SIGKILL), testing::KilledBySignal(SIGKILL), "");
    expectNoProgramsLeft();
    fs::remove_all(Traces::read(m_note).home); // nobody was left to do it
}

TEST(DemoScript, holdsWhatAnEditorWorksOn)
{
    const std::vector<DemoStep> script = demoScript();
    const auto count = [&](const auto& isWanted) {
        return std::ranges::count_if(script, isWanted);
    };
    EXPECT_GE(
        count([](const DemoStep& step) {
            const auto* pause = std::get_if<PauseStep>(&step);
            return pause != nullptr && pause->seconds >= 6;
        }),
        1);
    EXPECT_GE(count([](const DemoStep& s) { return std::holds_alternative<MenuStep>(s); }), 1);
    EXPECT_GE(count([](const DemoStep& s) { return std::holds_alternative<ScrollStep>(s); }), 1);
    EXPECT_GE(count([](const DemoStep& s) { return std::holds_alternative<TypeStep>(s); }), 2);
    EXPECT_GE(count([](const DemoStep& s) { return std::holds_alternative<ClickStep>(s); }), 6);
}

/// What the recorder is to the stage's programs: a client that asks to hear of every change. They
/// answer differently then.
class Listener {
public:
    explicit Listener(const DemoStage& stage)
    {
        stage.adoptEnvironment();
        atspi_init();
        m_listener = atspi_event_listener_new([](AtspiEvent*, void*) {}, nullptr, nullptr);
        EXPECT_TRUE(atspi_event_listener_register(m_listener, "object:", nullptr));
    }

    ~Listener()
    {
        g_object_unref(m_listener);
        atspi_exit();
    }

    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

private:
    AtspiEventListener* m_listener = nullptr;
};

// Every click has to hit and every key to arrive for this: the icon's name in the notes has gone
// through a dialog's button, the clipboard and a menu, and the file was saved by the keyboard.
TEST(DemoScript, endsWithTheNotesWrittenAndTheSearchDone)
{
    const DemoStage stage;
    const Listener listener(stage);
    const std::vector<DemoStep> script = demoScript();
    DemoActor actor(stage.display(), stage.accessibilityAddress());
    awaitCurtain(script, actor, {});
    perform(script, actor, {});

    std::string expected = notesText();
    const std::string line = "A picture for the storm warning";
    expected.insert(
        expected.find(line) + line.size(),
        ": weather-storm-symbolic\n- Ask Ida: is it clear at 16 px?");
    EXPECT_EQ(content(stage.desktop().home().path() / kNotesFile), expected);
    EXPECT_EQ(
        ElementFinder(stage.accessibilityAddress())
            .textOf(
                {.application = "gtk3-icon-browser",
                 .window = "Icon Browser",
                 .role = "text",
                 .name = ""}),
        "calendar");
}

} // namespace
} // namespace zento
