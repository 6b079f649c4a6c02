#include "ModelFakes.h"
#include "ZentoCore/FileIO.h"

#include <QSignalSpy>

#include <gmock/gmock.h>

namespace zento::test {

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Phase = RecordingFlow::Phase;

class RecordingFlowTest : public ModelTest {
protected:
    RecordingFlowTest() { start(); }

    RecordingFlow& flow() { return *m_model->recording(); }
    Phase phase() { return flow().phase(); }
    void set(const char* key, const QVariant& value)
    {
        m_model->settings()->setProperty(key, value);
    }
    std::vector<std::filesystem::path> inSessions() const
    {
        return {
            std::filesystem::directory_iterator(m_sessions), std::filesystem::directory_iterator()};
    }
};

TEST_F(RecordingFlowTest, ARecordingGoesFromPressToLibrary)
{
    flow().toggleRecording();
    EXPECT_EQ(phase(), Phase::Recording);
    EXPECT_TRUE(flow().stopPanelVisible());
    EXPECT_TRUE(flow().isApplicationHidden());
    m_clock.advance(67s);
    EXPECT_EQ(flow().elapsed(), "1:07");
    flow().toggleRecording();
    EXPECT_EQ(phase(), Phase::Idle);
    EXPECT_FALSE(flow().isApplicationHidden());
    EXPECT_EQ(flow().elapsed(), "");
    EXPECT_EQ(error(), "");
    ASSERT_EQ(m_captures.orders.size(), 1U);
    EXPECT_EQ(m_captures.orders[0].bundle, m_sessions / "2026-03-09T14-05-33Z.zento");
    EXPECT_EQ(m_captures.orders[0].target, CaptureTarget(Target::Display{}));
    EXPECT_EQ(m_model->library()->selected().toStdString(), m_captures.orders[0].bundle.string());
}

TEST_F(RecordingFlowTest, SettingsBecomeTheOrder)
{
    set("recordNarration", true);
    set("microphoneID", "desk");
    set("recordSystemAudio", true);
    m_captures.sideFiles = {"narration.wav", "system.wav"};
    flow().recordArea({10, 20, 300, 200});
    ASSERT_EQ(m_captures.orders.size(), 1U);
    const CaptureOrder& order = m_captures.orders[0];
    EXPECT_EQ(order.target, CaptureTarget(Target::Area{{10, 20, 300, 200}}));
    EXPECT_TRUE(order.recordNarration && order.recordSystemAudio && !order.recordWebcam);
    EXPECT_EQ(order.microphoneID, "desk");
    EXPECT_EQ(order.cameraID, std::nullopt);
    flow().stopRecording();
    EXPECT_EQ(error(), "");
}

TEST_F(RecordingFlowTest, ToggleNeedsItsThreePermissionsAndAnIdleProgram)
{
    for (bool PermissionState::* missing :
         {&PermissionState::screen, &PermissionState::input, &PermissionState::accessibility}) {
        m_permissions = {true, true, true, false, false};
        m_permissions.*missing = false;
        m_clock.advance(1500ms);
        flow().toggleRecording();
        EXPECT_EQ(phase(), Phase::Idle);
    }
    m_permissions = {true, true, true, false, false};
    m_clock.advance(1500ms);
    ASSERT_TRUE(flow().beginExport(Phase::Rendering));
    flow().toggleRecording();
    EXPECT_EQ(phase(), Phase::Rendering);
    flow().endExport();
    flow().toggleRecording();
    EXPECT_EQ(phase(), Phase::Recording);
    EXPECT_FALSE(flow().beginExport(Phase::Rendering));
}

TEST_F(RecordingFlowTest, TheCountdownShowsEverySecondAndThenRecords)
{
    set("countdownSeconds", 3);
    std::vector<int> shown;
    QObject::connect(&flow(), &RecordingFlow::countdownRemainingChanged, [&] {
        shown.push_back(flow().countdownRemaining());
    });
    flow().toggleRecording();
    EXPECT_EQ(phase(), Phase::CountingDown);
    EXPECT_TRUE(flow().countdownVisible());
    EXPECT_TRUE(flow().isApplicationHidden());
    m_clock.advance(2999ms);
    EXPECT_EQ(phase(), Phase::CountingDown);
    m_clock.advance(1ms);
    EXPECT_EQ(phase(), Phase::Recording);
    EXPECT_THAT(shown, ElementsAre(3, 2, 1));
}

TEST_F(RecordingFlowTest, TheHotKeyCancelsACountdown)
{
    set("countdownSeconds", 1);
    flow().toggleRecording();
    const QSignalSpy activated(&flow(), &RecordingFlow::activationRequested);
    EXPECT_TRUE(m_hotkeys.press("Super+Alt+R"));
    EXPECT_EQ(phase(), Phase::Idle);
    EXPECT_FALSE(flow().isApplicationHidden());
    EXPECT_EQ(activated.size(), 1);
    m_clock.advance(10s);
    EXPECT_EQ(phase(), Phase::Idle);
    EXPECT_THAT(m_captures.orders, IsEmpty());
}

struct DiskCase {
    const char* name;
    std::optional<std::int64_t> free;
    const char* message; // empty: it may start
};

class DiskTest : public RecordingFlowTest, public testing::WithParamInterface<DiskCase> {};

TEST_P(DiskTest, DecidesWhetherARecordingStarts)
{
    m_freeSpace = GetParam().free;
    m_model->pickArea();
    m_model->finishArea({0, 0, 41, 41});
    EXPECT_EQ(error(), GetParam().message);
    const bool starts = error().isEmpty();
    EXPECT_EQ(phase(), starts ? Phase::Recording : Phase::Idle);
    EXPECT_EQ(flow().isApplicationHidden(), starts);
    EXPECT_EQ(inSessions().empty(), !starts);
}

INSTANTIATE_TEST_SUITE_P(
    Disk,
    DiskTest,
    testing::Values(
        DiskCase{"JustEnough", 2'000'000'000, ""},
        DiskCase{"Unknown", std::nullopt, ""},
        DiskCase{
            "TooLittle",
            1'400'000'000,
            "Not enough free disk space to record — 1.4 GB left, and a recording needs about 1 GB "
            "per minute."}),
    [](const auto& testCase) { return testCase.param.name; });

TEST_F(RecordingFlowTest, AFillingDiskStopsTheRecordingAndSaysSo)
{
    flow().toggleRecording();
    m_freeSpace = 500'000'000;
    m_clock.advance(60s);
    EXPECT_EQ(phase(), Phase::Recording);
    m_freeSpace = 499'999'999;
    m_clock.advance(5s);
    EXPECT_EQ(phase(), Phase::Idle);
    EXPECT_EQ(error(), "Recording was stopped early: the disk is almost full.");
}

TEST_F(RecordingFlowTest, TheDesktopMayEndTheCapture)
{
    flow().toggleRecording();
    m_captures.onStreamStopped(Error(ErrorCode::kWindowGone, "the display went away"));
    EXPECT_EQ(phase(), Phase::Recording); // it comes from another thread
    QCoreApplication::processEvents();
    EXPECT_EQ(phase(), Phase::Idle);
    EXPECT_EQ(error(), "Recording was stopped early: the display went away.");

    flow().toggleRecording();
    const auto ended = m_captures.onStreamStopped;
    ended(std::nullopt);
    QCoreApplication::processEvents();
    EXPECT_EQ(phase(), Phase::Idle);
    EXPECT_EQ(error(), "");

    m_model.reset();
    ended(std::nullopt); // outlives the model
    QCoreApplication::processEvents();
}

TEST_F(RecordingFlowTest, OfTwoStopsTheFirstCounts)
{
    flow().toggleRecording();
    m_captureWorker.isHeld = true;
    flow().stopRecording();
    EXPECT_TRUE(flow().isStopping());
    EXPECT_FALSE(flow().stopPanelVisible());
    EXPECT_EQ(phase(), Phase::Recording);
    flow().stopRecording(Error(ErrorCode::kDiskFull, "the disk is almost full"));
    flow().toggleRecording();
    m_captureWorker.release();
    EXPECT_EQ(phase(), Phase::Idle);
    EXPECT_EQ(error(), "");
    EXPECT_THAT(m_captures.steps, ElementsAre("start", "stop"));
}

TEST_F(RecordingFlowTest, AStartThatFailsLeavesNothingBehind)
{
    m_captures.startFailure = "no display available";
    const QSignalSpy activated(&flow(), &RecordingFlow::activationRequested);
    flow().toggleRecording();
    EXPECT_EQ(phase(), Phase::Idle);
    EXPECT_EQ(error(), "Could not start recording: no display available");
    EXPECT_EQ(activated.size(), 1);
    EXPECT_THAT(inSessions(), IsEmpty());
    m_captures.startFailure.clear();
    flow().toggleRecording();
    EXPECT_EQ(phase(), Phase::Recording);
    EXPECT_EQ(error(), "");
}

TEST_F(RecordingFlowTest, AStopBehindAFailingStartIsNoSecondFailure)
{
    m_captures.startFailure = "no display available";
    m_captureWorker.isHeld = true;
    flow().toggleRecording();
    flow().stopRecording();
    m_captureWorker.release();
    EXPECT_EQ(phase(), Phase::Idle);
    EXPECT_FALSE(flow().isStopping());
    EXPECT_EQ(error(), "Could not start recording: no display available");
}

TEST_F(RecordingFlowTest, AStopThatFailsRemovesOnlyTheOrphan)
{
    const auto kept = bundle("2020-01-01T00-00-00Z", metaText());
    m_captures.stopFailure = "no frames captured";
    flow().toggleRecording();
    flow().toggleRecording();
    EXPECT_EQ(phase(), Phase::Idle);
    EXPECT_EQ(error(), "Recording failed: no frames captured");
    EXPECT_THAT(inSessions(), ElementsAre(kept));
}

struct StopCase {
    const char* name;
    int frames;
    int dropped;
    std::vector<std::string> sideFiles; // with all three recorders switched on
    std::optional<Error> reason;
    const char* message;
};

class StopMessageTest : public RecordingFlowTest, public testing::WithParamInterface<StopCase> {};

TEST_P(StopMessageTest, TellsWhatWentWrong)
{
    for (const char* key : {"recordNarration", "recordWebcam", "recordSystemAudio"}) {
        set(key, true);
    }
    m_captures.frameCount = GetParam().frames;
    m_captures.droppedFrameCount = GetParam().dropped;
    m_captures.sideFiles = GetParam().sideFiles;
    flow().toggleRecording();
    flow().stopRecording(GetParam().reason);
    EXPECT_EQ(error(), GetParam().message);
}

const std::vector<std::string> kAllFiles{"narration.wav", "webcam.mov", "system.wav"};

INSTANTIATE_TEST_SUITE_P(
    Stop,
    StopMessageTest,
    testing::Values(
        StopCase{"Nothing", 98, 2, kAllFiles, {}, ""}, // exactly 2 %
        StopCase{"NoFrames", 0, 0, kAllFiles, {}, ""},
        StopCase{
            "Dropped",
            97,
            3,
            kAllFiles,
            {},
            "3 of 100 frames were dropped — the computer was under load, so the video may "
            "stutter."},
        StopCase{
            "OneRecorder",
            100,
            0,
            {"narration.wav", "system.wav"},
            {},
            "The camera didn't record — check permissions in Record → Permissions, then try "
            "again."},
        StopCase{
            "Everything",
            1,
            1,
            {},
            Error(26, "the disk is almost full"),
            "Recording was stopped early: the disk is almost full. The microphone and camera and "
            "system audio didn't record — check permissions in Record → Permissions, then try "
            "again. 1 of 2 frames were dropped — the computer was under load, so the video may "
            "stutter."}),
    [](const auto& testCase) { return testCase.param.name; });

TEST_F(RecordingFlowTest, NotificationsRestForEveryRecordingAndOnlyThen)
{
    set("muteNotifications", true);
    flow().toggleRecording();
    EXPECT_THAT(m_actions, ElementsAre("Zento Focus On"));
    flow().toggleRecording();
    EXPECT_THAT(m_actions, ElementsAre("Zento Focus On", "Zento Focus Off"));
    m_actions.clear();
    m_captures.startFailure = "no";
    flow().toggleRecording();
    EXPECT_THAT(m_actions, ElementsAre("Zento Focus On", "Zento Focus Off"));
}

TEST_F(RecordingFlowTest, TheEndOfTheProgramWaitsForTheBundle)
{
    flow().toggleRecording();
    m_captureWorker.isHeld = true;
    bool isDone = false;
    m_model->shutDown([&] { isDone = true; });
    EXPECT_FALSE(isDone);
    m_captureWorker.release();
    EXPECT_TRUE(isDone);
    EXPECT_TRUE(std::filesystem::exists(m_captures.orders.at(0).bundle / "meta.json"));
    isDone = false;
    m_model->shutDown([&] { isDone = true; });
    EXPECT_TRUE(isDone);
}

TEST_F(RecordingFlowTest, APickerAnswersWhoeverOpenedItOnce)
{
    std::vector<std::optional<QRectF>> areas;
    std::vector<std::optional<quint32>> windows;
    const auto pickArea = [&] {
        m_model->pickArea([&](const std::optional<QRectF>& area) { areas.push_back(area); });
    };
    const auto pickWindow = [&] {
        m_model->pickWindow([&](std::optional<quint32> window) { windows.push_back(window); });
    };
    pickArea();
    EXPECT_TRUE(m_model->picksForShot());
    m_model->finishArea({5, 5, 200, 100});
    m_model->finishArea({5, 5, 300, 100}); // nobody asks any more
    pickArea();
    m_model->cancelArea();
    pickArea();
    pickWindow(); // instead of the other
    m_model->finishWindow(7);
    pickWindow();
    m_model->setPanel(AppModel::Panel::NoPanel);
    EXPECT_FALSE(m_model->picksForShot());
    EXPECT_EQ(
        areas, (std::vector<std::optional<QRectF>>{QRectF(5, 5, 200, 100), std::nullopt, {}}));
    EXPECT_EQ(windows, (std::vector<std::optional<quint32>>{7, std::nullopt}));
    EXPECT_TRUE(m_captures.orders.empty()); // and nothing is recorded
}

TEST_F(RecordingFlowTest, AnAreaOf40PointsIsACancel)
{
    for (const auto& [width, height] : {std::pair(40.0, 300.0), std::pair(300.0, 40.0)}) {
        m_model->pickArea();
        EXPECT_TRUE(flow().isApplicationHidden());
        m_model->finishArea({5, 5, width, height});
        EXPECT_EQ(phase(), Phase::Idle);
        EXPECT_FALSE(flow().isApplicationHidden());
        EXPECT_EQ(m_model->panel(), AppModel::Panel::NoPanel);
    }
}

/// On a desktop whose dialog is where a user chooses.
class DialogTest : public RecordingFlowTest {
protected:
    DialogTest()
    {
        m_choice = Desktop::Choice::ByUser;
        makeModel();
        set("countdownSeconds", 1);
        start();
    }
};

TEST_F(DialogTest, TheUserChoosesBeforeTheCountdownAndNothingFloatsInTheFilm)
{
    Phase asked = Phase::Recording;
    m_captures.whileChoosing = [&] {
        asked = phase();
        EXPECT_TRUE(flow().isApplicationHidden());
    };
    flow().toggleRecording();
    EXPECT_EQ(asked, Phase::Idle);
    EXPECT_EQ(phase(), Phase::CountingDown);
    EXPECT_THAT(m_captures.steps, ElementsAre("choose"));
    m_clock.advance(1s);
    EXPECT_EQ(phase(), Phase::Recording);
    EXPECT_FALSE(flow().stopPanelVisible());
    m_model->activate(); // the window is the way to stop it
    EXPECT_FALSE(flow().isApplicationHidden());
    flow().stopRecording();
    EXPECT_THAT(m_captures.steps, ElementsAre("choose", "start", "stop"));
    EXPECT_EQ(m_captures.orders.size(), 1U);
}

TEST_F(DialogTest, WhatIsChosenOnceIsAskedForAgainWhereTheUserMeansToChoose)
{
    using Asking = CaptureOrder::Asking;
    struct Case {
        const char* name;
        std::function<void()> act;
        CaptureTarget target;
        Asking asking;
    };
    for (const Case& each :
         {Case{"record", [&] { flow().recordDisplay(); }, Target::Display{}, Asking::Once},
          Case{"another screen", [&] { flow().chooseDisplay(); }, Target::Display{}, Asking::Again},
          Case{"a window", [&] { m_model->pickWindow(); }, Target::Window{0}, Asking::Again}}) {
        each.act();
        flow().cancelCountdown();
        EXPECT_EQ(m_captures.orders.back().target, each.target) << each.name;
        EXPECT_EQ(m_captures.orders.back().asking, each.asking) << each.name;
    }
    EXPECT_EQ(m_captures.orders.size(), 3U);
    EXPECT_EQ(m_model->panel(), AppModel::Panel::NoPanel);
}

TEST_F(DialogTest, ADialogThatIsNotAnsweredWithAChoiceBringsTheWindowBack)
{
    m_captures.choiceFailure = "the answer was no";
    flow().toggleRecording();
    EXPECT_EQ(error(), "Could not start recording: the answer was no");
    EXPECT_FALSE(flow().isApplicationHidden());

    m_captures.whileChoosing = [&] { flow().toggleRecording(); }; // the hot key once more
    flow().toggleRecording();
    EXPECT_EQ(error(), "") << "the user gave it up";
    EXPECT_FALSE(flow().isApplicationHidden());

    bool isEnded = false;
    m_captures.whileChoosing = [&] { m_model->shutDown([&] { isEnded = true; }); };
    flow().toggleRecording();
    EXPECT_TRUE(isEnded);
    EXPECT_EQ(phase(), Phase::Idle);
    EXPECT_TRUE(inSessions().empty());
    EXPECT_THAT(m_captures.steps, ElementsAre("choose", "choose", "choose"));
}

TEST_F(DialogTest, AnAreaIsMarkedOnAPictureOfTheChosenDisplay)
{
    m_displayPicture = [] {
        return DisplayPicture{{1920, 0, 1280, 720}, QImage(4, 4, QImage::Format_RGB32)};
    };
    m_model->pickArea();
    EXPECT_EQ(m_model->displays(), (QVariantList{QRectF(1920, 0, 1280, 720)}));
    EXPECT_FALSE(m_model->displayImage().isNull());
    m_model->finishArea({1930, 10, 100, 100});
    EXPECT_TRUE(m_model->displayImage().isNull());
    EXPECT_EQ(m_captures.orders.back().target, CaptureTarget(Target::Area{{1930, 10, 100, 100}}));
    EXPECT_EQ(m_captures.orders.back().asking, CaptureOrder::Asking::Once);
    flow().cancelCountdown();

    m_displayPicture = []() -> DisplayPicture {
        throw Error(ErrorCode::kPortalDenied, "the answer was no");
    };
    bool isAnswered = false;
    m_model->pickArea([&](const std::optional<QRectF>& area) { isAnswered = !area; });
    EXPECT_TRUE(isAnswered);
    EXPECT_EQ(error(), "No area can be marked: the answer was no");
    EXPECT_FALSE(flow().isApplicationHidden());
}

} // namespace

} // namespace zento::test
