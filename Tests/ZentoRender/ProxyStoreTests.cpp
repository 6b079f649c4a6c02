#include "TestSupport/DiskLimits.h"
#include "TestSupport/NumberedMovie.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoMedia/VideoSeeker.h"
#include "ZentoRender/ProxyStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <latch>
#include <string>
#include <thread>
#include <vector>

namespace zento {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(ProxySizeTest, IsEvenAndAtMost960Wide)
{
    struct Case {
        VideoSize master;
        VideoSize proxy;
    };
    const Case cases[] = {
        {{1920, 1200}, {960, 600}},
        {{1000, 563}, {960, 540}},
        {{800, 500}, {800, 500}},
        {{801, 501}, {800, 500}},
        {{2880, 1800}, {960, 600}},
        {{600, 4000}, {600, 4000}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(proxySize(c.master), c.proxy) << c.master.width << " x " << c.master.height;
}

class ProxyStoreTest : public testing::Test {
protected:
    ProxyStoreTest() { std::filesystem::create_directory(m_bundle); }

    void record(int first = 0, VideoSize size = {128, 96})
    {
        m_frames.clear();
        for (int i = 0; i < 120; ++i) // at no steady rate
            m_frames.push_back({first + i, i / 60.0 + (i % 3 == 0 ? 0.004 : 0)});
        test::writeNumberedRecording(m_bundle / "screen.mov", size, m_frames);
    }

    std::vector<std::string> files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_bundle))
            names.push_back(entry.path().filename().string());
        std::ranges::sort(names);
        return names;
    }

    std::string failure(const std::stop_token& stop = {})
    {
        try {
            m_store.ensure(m_bundle, {}, stop);
            return "";
        } catch (const Error& error) {
            m_code = error.code();
            return error.what();
        }
    }

    test::TemporaryFolder m_folder;
    std::filesystem::path m_bundle = m_folder / "a.zento";
    std::filesystem::path m_proxy = m_bundle / "proxy.mp4";
    std::vector<test::NumberedFrame> m_frames;
    int m_code = -1;
    ProxyStore m_store;
};

TEST_F(ProxyStoreTest, TheProxyHasEveryPictureAtItsTimeAndEachStandsAlone)
{
    record();
    std::vector<double> shares;
    EXPECT_EQ(m_store.ensure(m_bundle, [&](double share) { shares.push_back(share); }), m_proxy);
    EXPECT_THAT(files(), ElementsAre("proxy.mp4", "screen.mov"));
    EXPECT_TRUE(std::ranges::is_sorted(shares));
    EXPECT_GT(shares.back(), 0.9);
    VideoSeeker seeker(m_proxy);
    ASSERT_TRUE(seeker.span()); // every picture is a key frame, none reordered
    EXPECT_EQ(seeker.span()->pictures, m_frames.size());
    for (std::size_t i = m_frames.size(); i-- > 0;) {
        const auto frame = seeker.frame(m_frames[i].time);
        EXPECT_EQ(test::numberOf(*frame), m_frames[i].number);
        EXPECT_NEAR(frame->time(), m_frames[i].time, 1e-5);
    }
}

TEST_F(ProxyStoreTest, AWholeProxyIsKeptAndAnyOtherIsMadeAnew)
{
    record();
    m_store.ensure(m_bundle);
    const std::string whole = readFile(m_proxy);
    std::filesystem::copy(
        m_bundle, m_folder / "other.zento", std::filesystem::copy_options::recursive);
    struct Case {
        const char* name;
        std::function<void()> spoil;
        bool isKept;
    };
    const Case cases[] = {
        {"as it was made", [] {}, true},
        {"its end is missing",
         [&] { std::filesystem::resize_file(m_proxy, whole.size() / 2); },
         false},
        {"empty", [&] { writeFile(m_proxy, ""); }, false},
        {"no movie", [&] { writeFile(m_proxy, std::string(5000, 'x')); }, false},
        {"of a recording of another size", [&] { record(0, {160, 96}); }, false},
        {"of a longer recording",
         [&] {
             m_frames.resize(40);
             test::writeNumberedRecording(m_bundle / "screen.mov", {128, 96}, m_frames);
         },
         false},
        {"with the recording gone",
         [&] { std::filesystem::remove(m_bundle / "screen.mov"); },
         true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        record();
        writeFile(m_proxy, whole);
        c.spoil();
        const auto before = std::filesystem::last_write_time(m_proxy);
        m_store.ensure(m_bundle);
        EXPECT_EQ(std::filesystem::last_write_time(m_proxy) == before, c.isKept);
        EXPECT_TRUE(isProxyOf(m_proxy, m_bundle / "screen.mov"));
    }
}

TEST_F(ProxyStoreTest, ClearsWhatACrashLeftOnceItIsOld)
{
    record();
    const auto now = std::filesystem::file_time_type::clock::now();
    const auto leave = [&](const std::string& name, std::chrono::minutes age) {
        writeFile(m_bundle / name, "x");
        std::filesystem::last_write_time(m_bundle / name, now - age);
    };
    leave("proxy-1.tmp.mp4", 30min);
    leave("proxy-2.tmp.mp4", 120min);
    leave("proxy.tmp.mp4", 0min);
    leave("other.tmp.mp4", 999min);
    m_store.ensure(m_bundle);
    EXPECT_THAT(
        files(), ElementsAre("other.tmp.mp4", "proxy-1.tmp.mp4", "proxy.mp4", "screen.mov"));
}

TEST_F(ProxyStoreTest, CallersShareABuildAndOnlyTheFirstHearsOfIt)
{
    record();
    std::latch isUnderWay(1);
    std::latch othersAsk(3);
    std::atomic<int> told = 0;
    const auto temporaries = [&] {
        return std::ranges::count_if(
            files(), [](const std::string& name) { return name.ends_with(".tmp.mp4"); });
    };
    std::thread first([&] {
        m_store.ensure(m_bundle, [&](double) {
            if (told++ == 0) {
                isUnderWay.count_down();
                othersAsk.wait();
                EXPECT_LE(temporaries(), 1);
            }
        });
    });
    isUnderWay.wait();
    std::vector<std::thread> others;
    std::atomic<int> toldOthers = 0;
    for (int i = 0; i < 3; ++i)
        others.emplace_back([&] {
            othersAsk.count_down();
            EXPECT_EQ(m_store.ensure(m_bundle, [&](double) { ++toldOthers; }), m_proxy);
        });
    for (std::thread& other : others)
        other.join();
    first.join();
    EXPECT_GT(told, 0);
    EXPECT_EQ(toldOthers, 0);
    EXPECT_THAT(files(), ElementsAre("proxy.mp4", "screen.mov"));
}

TEST_F(ProxyStoreTest, ACancelledBuildLeavesNothingAndTheNextBeginsAnew)
{
    record();
    std::stop_source stop;
    EXPECT_THROW(
        m_store.ensure(m_bundle, [&](double) { stop.request_stop(); }, stop.get_token()), Error);
    EXPECT_THAT(files(), ElementsAre("screen.mov"));
    EXPECT_THAT(failure(stop.get_token()), HasSubstr("cancelled"));
    EXPECT_EQ(m_code, ErrorCode::kCancelled);
    EXPECT_EQ(failure(), "");
}

TEST_F(ProxyStoreTest, ALeavingCallerDoesNotTakeTheBuildFromAnother)
{
    record();
    std::stop_source stop;
    std::latch otherAsks(1);
    std::thread other;
    EXPECT_THROW(
        m_store.ensure(
            m_bundle,
            [&](double) {
                if (!other.joinable()) {
                    other = std::thread([&] {
                        otherAsks.count_down();
                        EXPECT_EQ(m_store.ensure(m_bundle), m_proxy);
                    });
                    otherAsks.wait();
                    stop.request_stop();
                }
            },
            stop.get_token()),
        Error);
    other.join();
    EXPECT_TRUE(isProxyOf(m_proxy, m_bundle / "screen.mov"));
}

TEST_F(ProxyStoreTest, FailuresAreToldAndLeaveNothing)
{
    EXPECT_THAT(failure(), HasSubstr("screen.mov"));
    writeFile(m_bundle / "screen.mov", "no movie");
    EXPECT_THAT(failure(), HasSubstr("screen.mov"));
    record();
    {
        const test::FileSizeLimit disk(3000); // full before the index
        EXPECT_THAT(failure(), HasSubstr("proxy-"));
    }
    EXPECT_THAT(files(), ElementsAre("screen.mov"));
    EXPECT_EQ(failure(), "");
}

} // namespace
} // namespace zento
