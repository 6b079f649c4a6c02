#include "ModelFakes.h"
#include "Zento/Model/CloudCopy.h"
#include "ZentoCore/FileIO.h"

#include <QSignalSpy>

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

namespace zento::test {

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class SettingsModelTest : public ModelTest {
protected:
    SettingsModel& settings() { return *m_model->settings(); }
    std::filesystem::path file() const { return m_folder / "settings.json"; }
};

TEST_F(SettingsModelTest, EveryChangeIsWrittenWhole)
{
    const QSignalSpy changed(&settings(), &SettingsModel::settingsChanged);
    settings().setProperty("typingSpeed", 3);
    settings().setProperty("aspect", "1:1");
    settings().setProperty("customBackgroundPath", "/a.png");
    EXPECT_EQ(changed.size(), 3);
    EXPECT_EQ(loadSettings(file()), settings().current());
    EXPECT_EQ(settings().current().aspect, AppSettings::Aspect::Square);
    settings().setProperty("customBackgroundPath", "");
    EXPECT_EQ(settings().current().customBackgroundPath, std::nullopt);
}

TEST_F(SettingsModelTest, ValuesThatDoNotFitChangeNothing)
{
    const AppSettings before = settings().current();
    const std::vector<std::pair<const char*, QVariant>> cases{
        {"typingSpeed", "fast"},
        {"typingSpeed", std::numeric_limits<double>::quiet_NaN()},
        {"countdownSeconds", 2.5},
        {"cutIdle", "false"},
        {"cameraIntensity", "wild"},
        {"endCardLine", 7},
        {"noSuchKey", 1},
    };
    for (const auto& [key, value] : cases) {
        settings().setProperty(key, value);
        EXPECT_EQ(settings().current(), before) << key;
    }
    EXPECT_EQ(settings().value("typingSpeed"), before.typingSpeed);
}

TEST_F(SettingsModelTest, ChangesWhileWritingAreWrittenTogether)
{
    m_files.isHeld = true;
    for (int i = 1; i <= 10; ++i) {
        settings().setProperty("cornerRadius", i);
    }
    EXPECT_EQ(m_files.waiting(), 1U);
    bool isFlushed = false;
    settings().flush([&] { isFlushed = true; });
    m_files.step();
    EXPECT_FALSE(isFlushed);
    m_files.release();
    EXPECT_TRUE(isFlushed);
    EXPECT_EQ(loadSettings(file()).cornerRadius, 10);
}

TEST_F(SettingsModelTest, ATornFileGivesDefaultsAndIsKept)
{
    writeFile(file(), R"({"typingSpeed": 3,)");
    makeModel();
    EXPECT_EQ(settings().current(), AppSettings());
    settings().setProperty("typingSpeed", 4);
    EXPECT_EQ(loadSettings(file()).typingSpeed, 4);
    EXPECT_EQ(readFile(m_folder / "settings.json.unread"), R"({"typingSpeed": 3,)");
}

TEST_F(SettingsModelTest, AFileFromTheFutureKeepsWhatIsKnown)
{
    writeFile(file(), R"({"typingSpeed": 3, "hologram": true})");
    makeModel();
    EXPECT_EQ(settings().current().typingSpeed, 3);
}

TEST_F(SettingsModelTest, AFileThatCannotBeWrittenIsPassedOver)
{
    std::filesystem::remove(file());
    std::filesystem::create_directories(file()); // nobody can write a folder
    settings().setProperty("typingSpeed", 4);
    EXPECT_EQ(settings().current().typingSpeed, 4);
    EXPECT_EQ(error(), "");
}

class ShortcutsTest : public ModelTest {
protected:
    Shortcuts& shortcuts() { return *m_model->shortcuts(); }
    std::map<std::string, KeyCombo> stored() { return m_model->settings()->current().shortcuts; }
    QVariantMap row(const QString& action)
    {
        for (const QVariant& group : shortcuts().groups()) {
            for (const QVariant& entry : group.toMap()["rows"].toList()) {
                if (entry.toMap()["action"] == action) {
                    return entry.toMap();
                }
            }
        }
        return {};
    }
    bool record(const QString& action, int key, int modifiers, int scanCode = 0)
    {
        shortcuts().startRecording(action);
        return shortcuts().pressed(key, modifiers, scanCode);
    }
};

TEST_F(ShortcutsTest, CommandIsControlInTheWindowAndSuperElsewhere)
{
    const std::vector<std::pair<const char*, const char*>> cases{
        {"toggleRecording", "Super+Alt+R"},
        {"capturePanel", "Super+Alt+5"},
        {"recordScreen", "Ctrl+N"},
        {"recordWindow", "Ctrl+Shift+N"},
        {"recordArea", "Ctrl+Alt+N"},
        {"screenshotScreen", "Super+Ctrl+1"},
        {"copyVideo", "Ctrl+Shift+C"},
    };
    for (const auto& [action, keys] : cases) {
        EXPECT_EQ(shortcuts().keys(action).join('+'), keys) << action;
    }
    EXPECT_EQ(shortcuts().sequence("screenshotScreen"), "Meta+Ctrl+1");
    EXPECT_EQ(shortcuts().groups().size(), 4);
}

TEST_F(ShortcutsTest, EveryStrokeIsTheComboItCameFrom)
{
    for (const ShortcutEntry& entry : shortcutEntries()) {
        EXPECT_EQ(
            keyCombo(keyStroke(entry.defaultCombo, reach(entry)), reach(entry)), entry.defaultCombo)
            << entry.id;
        EXPECT_EQ(conflictingEntry(entry, {}), nullptr) << entry.id;
    }
}

TEST_F(ShortcutsTest, RecordsACombinationAndGoesBackToTheDefault)
{
    start();
    const int held = Qt::ControlModifier | Qt::AltModifier;
    EXPECT_FALSE(record("toggleRecording", Qt::Key_Control, Qt::ControlModifier)); // not yet
    EXPECT_THAT(m_hotkeys.live(), IsEmpty()); // so that they can be pressed
    EXPECT_FALSE(
        shortcuts().pressed(Qt::Key_K, Qt::ShiftModifier)); // a capital letter is no hot key
    EXPECT_TRUE(shortcuts().pressed(Qt::Key_K, held));
    EXPECT_EQ(
        stored().at("toggleRecording"), (KeyCombo{.key = "k", .option = true, .control = true}));
    EXPECT_THAT(m_hotkeys.live(), ElementsAre("Ctrl+Alt+K", "Super+Alt+5"));
    EXPECT_TRUE(record("toggleRecording", Qt::Key_Escape, 0));
    EXPECT_EQ(stored().size(), 1U);
    EXPECT_TRUE(record("toggleRecording", Qt::Key_R, Qt::MetaModifier | Qt::AltModifier));
    EXPECT_THAT(stored(), IsEmpty()); // the default is not stored
    EXPECT_TRUE(
        record("recordScreen", Qt::Key_Exclam, Qt::ControlModifier | Qt::ShiftModifier, 10));
    EXPECT_EQ(stored().at("recordScreen").key, "1"); // by its place
    EXPECT_TRUE(record("recordScreen", Qt::Key_Backspace, 0));
    EXPECT_THAT(stored(), IsEmpty());
    EXPECT_THAT(m_hotkeys.live(), ElementsAre("Super+Alt+5", "Super+Alt+R"));
}

TEST_F(ShortcutsTest, SaysWhoElseUsesACombination)
{
    record("recordScreen", Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(row("recordScreen")["conflict"], "Also used by Record a window");
    EXPECT_EQ(row("recordWindow")["conflict"], "Also used by Record screen");
    EXPECT_EQ(row("recordScreen")["defaultText"], "Ctrl+N");
    EXPECT_EQ(row("recordArea")["conflict"], "");
}

TEST_F(ShortcutsTest, TakenHotKeysAreToldWithWhatStillWorks)
{
    struct Case {
        std::vector<std::string> taken;
        bool isThere;
        bool hasTray;
        const char* message;
    };
    for (const Case& item : std::vector<Case>{
             {{}, true, true, ""},
             {{"Super+Alt+R"},
              true,
              true,
              "Another app already uses Start / stop recording, so that shortcut won't reach "
              "Zento. The tray icon and the File menu still work."},
             {{"Super+Alt+R", "Super+Alt+5"},
              true,
              false,
              "Another app already uses Start / stop recording and Capture panel, so that shortcut "
              "won't reach Zento. The File menu still works."},
             {{},
              false,
              true,
              "This desktop has no shortcuts that work anywhere, so Start / stop recording and "
              "Capture panel won't reach Zento. The tray icon and the File menu still work."},
         }) {
        m_hotkeys.taken = item.taken;
        m_hotkeys.isThere = item.isThere;
        m_hasTray = item.hasTray;
        makeModel();
        start();
        EXPECT_EQ(error(), item.message);
        EXPECT_EQ(row("toggleRecording")["isRegistered"], error().isEmpty());
    }
}

TEST_F(ShortcutsTest, AKeyOfNoTableCountsAsTheDefaults)
{
    AppSettings settings;
    settings.shortcuts["toggleRecording"] = {.key = "play", .control = true};
    m_model->settings()->replace(settings);
    EXPECT_EQ(shortcuts().keys("toggleRecording").join('+'), "Ctrl+R");
}

class UpdateCheckTest : public ModelTest {
protected:
    void document(const char* version, const char* url)
    {
        m_updateDocument = QString(R"({"version":"%1","url":"%2"})").arg(version, url).toUtf8();
    }
};

TEST_F(UpdateCheckTest, TellsWhatThereIs)
{
    struct Case {
        const char* name;
        const char* version;
        const char* url;
        const char* toast;
        bool isOffered;
    };
    constexpr auto kFailed = "Update check failed — try again later";
    for (const Case& item : std::vector<Case>{
             {"newer", "1.10", "https://zento.example.org/zento.deb", "", true},
             {"same",
              "1.9",
              "https://zento.example.org/zento.deb",
              "Zento 1.9 is up to date",
              false},
             {"older", "1.8.9", "https://zento.example.org/", "Zento 1.9 is up to date", false},
             {"foreign", "2", "https://example.com/zento.deb", kFailed, false},
             {"a host that begins alike",
              "2",
              "https://zento.example.org.evil.net/",
              kFailed,
              false},
             {"a name before the host", "2", "https://zento.example.org@evil.net/", kFailed, false},
             {"no web address", "2", "file://zento.example.org/etc", kFailed, false},
         }) {
        document(item.version, item.url);
        m_model->messages()->closeToast();
        m_model->question()->reject();
        m_model->updates()->check();
        EXPECT_EQ(toast(), item.toast) << item.name;
        EXPECT_EQ(m_model->question()->isOpen(), item.isOffered) << item.name;
    }
    for (const char* broken : {"", "[]", R"({"version":"2"})", R"({"version":2,"url":"x"})"}) {
        m_updateDocument = broken;
        m_model->messages()->closeToast();
        m_model->updates()->check();
        EXPECT_EQ(toast(), kFailed) << broken;
    }
    document("1.10", "https://zento.example.org/zento.deb");
    m_model->updates()->check();
    EXPECT_EQ(m_model->question()->text(), "Zento 1.10 is available");
    m_model->question()->accept();
    EXPECT_THAT(m_services.calls, ElementsAre("open https://zento.example.org/zento.deb"));
}

TEST_F(UpdateCheckTest, AsksOnceAWeekAndOnlyIfWanted)
{
    start();
    EXPECT_THAT(m_fetched, IsEmpty());
    m_model->settings()->setProperty("autoCheckUpdates", true);
    const auto startAgain = [&] {
        makeModel();
        start();
        return m_fetched.size();
    };
    EXPECT_EQ(startAgain(), 1U);
    EXPECT_EQ(toast(), ""); // a failure of its own is not told
    m_clock.advance(604'800s);
    EXPECT_EQ(startAgain(), 1U);
    m_clock.advance(1s);
    EXPECT_EQ(startAgain(), 2U);
}

TEST(Versions, CompareByTheirNumbers)
{
    EXPECT_TRUE(isNewerVersion("1.10", "1.9"));
    EXPECT_TRUE(isNewerVersion("1.9.1", "1.9"));
    EXPECT_TRUE(isNewerVersion("10000000000000000000001.0", "10000000000000000000000.9"));
    EXPECT_FALSE(isNewerVersion("1.9", "1.9"));
    EXPECT_FALSE(isNewerVersion("1.09", "1.9"));
    EXPECT_FALSE(isNewerVersion("", "1"));
}

class SharingTest : public ModelTest {
protected:
    SharingTest()
    {
        m_recording = bundle("1", metaText("a/b"));
        start();
    }

    Sharing& sharing() { return *m_model->sharing(); }
    void addFilm()
    {
        writeFile(m_sessions / "1.mp4", "film");
        m_model->library()->refresh();
    }

    std::filesystem::path m_recording;
};

TEST_F(SharingTest, NeedsAFilm)
{
    EXPECT_FALSE(sharing().shareLastExport());
    EXPECT_EQ(sharing().cloudStatus(), "Export the video first");
    sharing().uploadToCloud();
    sharing().composeMail();
    EXPECT_THAT(m_services.calls, IsEmpty());
    addFilm();
    EXPECT_TRUE(sharing().shareLastExport());
    sharing().composeMail();
    sharing().openWith();
    EXPECT_THAT(m_services.calls, ElementsAre("mail a/b 1.mp4", "openWith 1.mp4"));
    EXPECT_EQ(sharing().cloudStatus(), "Sharing failed: no portal");
}

TEST_F(SharingTest, CopiesIntoTheSyncedFolderAndShowsItThere)
{
    addFilm();
    sharing().uploadToCloud();
    EXPECT_EQ(sharing().cloudStatus(), "No synced folder is set up here. Choose one under Share.");
    std::filesystem::create_directories(m_folder / "Nextcloud");
    sharing().shareCloudLink(); // copies first
    const auto copy = m_folder / "Nextcloud/Zento/a-b.mp4";
    EXPECT_EQ(readFile(copy), "film");
    EXPECT_EQ(sharing().cloudCopy().toStdString(), copy.string());
    EXPECT_TRUE(sharing().cloudStatus().startsWith("In Nextcloud › Zento."));
    EXPECT_THAT(m_services.calls, ElementsAre("reveal a-b.mp4"));
    writeFile(m_sessions / "1.mp4", "a longer film");
    sharing().uploadToCloud();
    EXPECT_EQ(readFile(copy), "a longer film");

    sharing().setCloudFolder("/proc/nowhere");
    sharing().uploadToCloud();
    EXPECT_TRUE(sharing().cloudStatus().startsWith("No synced folder"));
    sharing().setCloudFolder("/proc");
    sharing().uploadToCloud();
    EXPECT_TRUE(sharing().cloudStatus().startsWith("Could not copy to the synced folder: "));
}

TEST_F(ModelTest, ThePickerOffersOrdinaryWindowsOfOthers)
{
    m_windows = {
        {.id = 1, .title = "Editor", .width = 201, .height = 151},
        {.id = 2, .title = "Narrow", .width = 200, .height = 400},
        {.id = 3, .title = "Low", .width = 400, .height = 150},
        {.id = 4, .title = "Dock", .width = 900, .height = 900, .isOrdinary = false},
        {.id = 5, .title = "Ours", .width = 900, .height = 900, .isOurs = true},
    };
    m_model->pickWindow();
    WindowList& windows = *m_model->windows();
    ASSERT_EQ(windows.count(), 1);
    EXPECT_EQ(windows.data(windows.index(0), WindowList::WindowIdRole), 1);
    EXPECT_EQ(windows.thumbnail(1).width(), 320);
    m_model->finishWindow(1);
    ASSERT_EQ(m_captures.orders.size(), 1U);
    EXPECT_EQ(m_captures.orders[0].target, CaptureTarget(Target::Window{1}));
}

TEST_F(ModelTest, OffersTheDevicesThereAre)
{
    start();
    EXPECT_EQ(m_model->freeSpace(), "50 GB free");
    m_devices = {.microphones = {{"desk", "Desk microphone"}}, .cameras = {}};
    m_permissions.camera = false; // a camera was pulled out
    m_clock.advance(std::chrono::seconds(2));
    ASSERT_EQ(m_model->microphones().size(), 1);
    const QVariantMap microphone = m_model->microphones().front().toMap();
    EXPECT_EQ(microphone["value"], "desk");
    EXPECT_EQ(microphone["name"], "Desk microphone");
    EXPECT_TRUE(m_model->cameras().isEmpty());
}

TEST_F(ModelTest, ToastsGoByThemselves)
{
    Messages& messages = *m_model->messages();
    messages.setToast("One");
    m_clock.advance(3000ms);
    messages.setToast("Two");
    m_clock.advance(3000ms);
    EXPECT_EQ(toast(), "Two");
    m_clock.advance(200ms);
    EXPECT_EQ(toast(), "");
}

TEST_F(ModelTest, TheWindowIsAsItWas)
{
    EXPECT_TRUE(m_model->showWelcome());
    EXPECT_TRUE(m_model->showInspector());
    m_model->setShowWelcome(false);
    m_model->run("toggleSidebar");
    m_model->setInspectorTab("sound");
    makeModel();
    EXPECT_FALSE(m_model->showWelcome());
    EXPECT_FALSE(m_model->showInspector());
    EXPECT_EQ(m_model->inspectorTab(), "sound");
    m_defaults->setValue("inspectorTab", "hologram");
    makeModel();
    EXPECT_EQ(m_model->inspectorTab(), "look");
}

TEST(ThreadWorkerTest, WorksInOrderAndAnswersOnTheMainThread)
{
    std::vector<int> order; // the worker's, until it has answered
    std::atomic_int answers = 0;
    {
        ThreadWorker worker("test.worker");
        for (int i = 0; i < 3; ++i) {
            worker.run(
                [&order, i] { order.push_back(i); },
                [&, main = std::this_thread::get_id()] {
                    EXPECT_EQ(std::this_thread::get_id(), main);
                    ++answers;
                });
        }
        while (answers < 3) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        worker.run([&order] { order.push_back(3); }, [&] { ++answers; });
    }
    QCoreApplication::processEvents();
    EXPECT_THAT((std::vector(order.begin(), order.begin() + 3)), ElementsAre(0, 1, 2));
    EXPECT_EQ(answers, 3); // who is gone is not called
}

} // namespace

} // namespace zento::test
