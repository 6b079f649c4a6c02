#include "Zento/Commands/Interruption.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>

namespace zento {
namespace {

TEST(Interruption, turnsASignalIntoAStop)
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        const Interruption interruption;
        EXPECT_FALSE(interruption.token().stop_requested());
        ::kill(::getpid(), number);
        interruption.wait({}); // returns only for a stop
        EXPECT_TRUE(interruption.token().stop_requested());
    }
}

TEST(Interruption, endsWithoutASignal)
{
    Interruption interruption;
    interruption.wait(std::chrono::duration<double>(0));
    EXPECT_FALSE(interruption.token().stop_requested());
    interruption.requestStop();
    interruption.wait({});
}

} // namespace
} // namespace zento
