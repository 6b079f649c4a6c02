#include "DesktopTest.h"
#include "ZentoCapture/Backends/AtSpiElements.h"

#include <unistd.h>

#include <cstdlib>

namespace zento {
namespace {

constexpr PixelRect kAnywhere{0, 0, 640, 360};
constexpr Vec2 kCenter{320, 180};

/// libatspi keeps its state for the process's life, so each case has a process of its own.
class AtSpiTest : public DesktopTest {
protected:
    AtSpiTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    enum Outcome { Survived = 0, WrongAnswer = 1 };

    [[noreturn]] static void end(Outcome outcome)
    {
        endStage();
        std::_Exit(outcome);
    }

    /// Asks twice: the first failure must not spoil the second try.
    static bool isAnswered(pid_t process)
    {
        const bool first = hasElement(process);
        return hasElement(process) || first;
    }

    static bool hasElement(pid_t process)
    {
        return elementOfProcess(static_cast<std::uint32_t>(process), kAnywhere, kCenter)
            .has_value();
    }

    [[noreturn]] static void lookUpWithoutBus()
    {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): no other thread yet
        setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
        end(isAnswered(getpid()) ? WrongAnswer : Survived);
    }

    [[noreturn]] static void lookUpUntilTheBusDies()
    {
        const pid_t dialog = stage().start({"/usr/bin/zenity", "--info", "--text=Hello"});
        const bool wasThere = eventually([&] { return hasElement(dialog); });
        endStage();
        const bool isThere = isAnswered(dialog);
        std::_Exit(wasThere && !isThere ? Survived : WrongAnswer);
    }
};

TEST_F(AtSpiTest, aMissingBusCostsTheLookupOnly)
{
    EXPECT_EXIT(lookUpWithoutBus(), testing::ExitedWithCode(Survived), "");
}

TEST_F(AtSpiTest, aBusThatDiesCostsTheLookupOnly)
{
    EXPECT_EXIT(lookUpUntilTheBusDies(), testing::ExitedWithCode(Survived), "");
}

} // namespace
} // namespace zento
