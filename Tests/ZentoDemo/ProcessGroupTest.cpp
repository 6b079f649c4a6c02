#include "Zento/Demo/ProcessGroup.h"

#include "Zento/Demo/PrivateFolder.h"
#include "Zento/Demo/Programs.h"
#include "Zento/Demo/Waiting.h"
#include "ZentoCore/Error.h"

#include <gtest/gtest.h>
#include <unistd.h>

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
    text << std::ifstream(file).rdbuf();
    return text.str();
}

class ProcessGroupTest : public testing::Test {
protected:
    pid_t shell(const std::string& script)
    {
        return m_group.start(
            {"/bin/sh", "-c", script}, {{"PATH", "/usr/bin:/bin"}, {"MARK", "here"}}, m_log);
    }

    void awaitLog(const std::string& text) const
    {
        waitUntil([&] { return content(m_log).contains(text); }, 30, "no " + text, {});
    }

    PrivateFolder m_folder{"zento-test-"};
    fs::path m_log = m_folder.path() / "log";
    ProcessGroup m_group;
};

TEST_F(ProcessGroupTest, aProgramGetsItsEnvironmentAndNothingElse)
{
    sigset_t before;
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const int inheritable = dup2(STDIN_FILENO, 57);
    shell("env; test -e /proc/$$/fd/57 && echo inherited; grep SigBlk /proc/self/status; echo end");
    close(inheritable);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    awaitLog("end");
    const std::string log = content(m_log);
    EXPECT_TRUE(log.contains("MARK=here"));
    EXPECT_FALSE(log.contains("HOME="));
    EXPECT_FALSE(log.contains("inherited"));
    EXPECT_TRUE(log.contains("SigBlk:\t0000000000000000")) << log;
}

TEST_F(ProcessGroupTest, endsOrphansAndThoseThatDoNotWantTo)
{
    // The middle shell ends at once, so its child loses its parent; all of them ignore SIGTERM.
    shell("trap '' TERM; sh -c 'sleep 1000 & echo orphan $!.'; echo stubborn; sleep 1000");
    awaitLog("stubborn");
    const std::string log = content(m_log);
    const pid_t orphan = std::stoi(log.substr(log.find("orphan ") + 7));
    ASSERT_EQ(kill(orphan, 0), 0);
    m_group.stop();
    EXPECT_EQ(kill(orphan, 0), -1);
    EXPECT_EQ(errno, ESRCH);
}

TEST_F(ProcessGroupTest, seesThatAProgramHasEnded)
{
    const pid_t program = shell("read line"); // its input is empty
    waitUntil([&] { return !ProcessGroup::isRunning(program); }, 30, "it did not end", {});
    EXPECT_TRUE(ProcessGroup::isRunning(shell("echo up; sleep 1000")));
}

TEST_F(ProcessGroupTest, saysWhyAProgramCannotBeStarted)
{
    const fs::path text = m_folder.writeFile("plain", "no program");
    try {
        m_group.start({text.string()}, {}, m_log);
        FAIL() << "it started";
    } catch (const Error& error) {
        EXPECT_EQ(error.domain(), "errno");
        EXPECT_EQ(error.code(), EACCES);
        EXPECT_TRUE(std::string(error.what()).contains(text.string())) << error.what();
    }
}

TEST(Programs, theFirstExecutableOnThePathCounts)
{
    const PrivateFolder folder("zento-test-");
    const auto program = [&](const std::string& name, fs::perms mode) {
        const fs::path file = folder.writeFile(name, "#!/bin/sh\n");
        fs::permissions(file, mode);
        return file;
    };
    program("a/tool", fs::perms::owner_read);
    fs::create_directories(folder.path() / "b/tool");
    const fs::path expected = program("c/tool", fs::perms::owner_all);
    program("d/tool", fs::perms::owner_all);
    const std::string base = folder.path().string();
    const std::string path =
        base + "/none::" + base + "/a:" + base + "/b:" + base + "/c:" + base + "/d";
    EXPECT_EQ(findProgram("tool", path), expected);
    EXPECT_EQ(findProgram("other", path), std::nullopt);
}

TEST(Programs, aMissingOneIsNamedWithItsPackage)
{
    const PrivateFolder folder("zento-test-");
    try {
        requireProgram("Xvfb", "xvfb", folder.path().string());
        FAIL() << "found in an empty folder";
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), ErrorCode::kProgramMissing);
        EXPECT_STREQ(error.what(), "the demo needs Xvfb; install the package xvfb");
    }
}

} // namespace
} // namespace zento
