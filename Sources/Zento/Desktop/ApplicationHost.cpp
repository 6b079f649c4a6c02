#include "Zento/Desktop/ApplicationHost.h"

#include "Zento/Desktop/DesktopImage.h"
#include "Zento/Desktop/DesktopWindows.h"
#include "Zento/Desktop/DeviceCapture.h"
#include "Zento/Desktop/DiskSpace.h"
#include "Zento/Desktop/DisplayPictures.h"
#include "Zento/Desktop/FocusActions.h"
#include "Zento/Desktop/HttpFetch.h"
#include "Zento/Desktop/Identity.h"
#include "Zento/Desktop/PermissionProbe.h"
#include "Zento/Desktop/PortalHotkeys.h"
#include "Zento/Desktop/X11Hotkeys.h"
#include "ZentoCapture/DesktopKind.h"
#include "ZentoCapture/DeviceWatch.h"
#include "ZentoCore/SessionBundle.h"
#include "ZentoCore/UserFolders.h"
#include "ZentoIntelligence/FrameAnalyzer.h"
#include "ZentoIntelligence/NarrationTranscriber.h"
#include "ZentoIntelligence/SemanticAnalyzer.h"
#include "ZentoIntelligence/SpeechEngine.h"
#include "ZentoIntelligence/SpeechModelFile.h"

#include <QCursor>
#include <QGuiApplication>
#include <QProcess>
#include <QScreen>
#include <QTimer>

#include <chrono>
#include <utility>
#include <variant>

namespace zento {

namespace {

constexpr std::chrono::milliseconds kTimeToFront{1500};
constexpr auto kSettingsFormat = QSettings::IniFormat;
constexpr auto kSettingsName = "Zento";
constexpr auto kRecordingIcon = "dev.halvek.zento-recording";

QScreen* screenAt(QPoint point)
{
    QScreen* const screen = QGuiApplication::screenAt(point);
    return screen == nullptr ? QGuiApplication::primaryScreen() : screen;
}

/// The story, told by the model of the user's choice.
std::optional<SemanticNotes> storyOf(
    const SessionBundle& bundle,
    const std::vector<TranscriptSegment>& transcript,
    const std::stop_token& stop)
{
    return SemanticAnalyzer::loadOrAnalyze(
        bundle,
        transcript,
        [](const std::stop_token& token) {
            const QSettings defaults( // an object of this thread
                kSettingsFormat,
                QSettings::UserScope,
                kSettingsName,
                kSettingsName);
            return SystemLanguageModel::find(languageModelChoice(defaults), token);
        },
        stop);
}

/// Where the panels of a recording belong: on the area's display, else on the pointer's.
QRectF displayOf(const CaptureTarget& target)
{
    QPoint point = QCursor::pos();
    if (const auto* const area = std::get_if<Target::Area>(&target)) {
        const Vec2 center = area->rect.center();
        point = QPointF(center.x, center.y).toPoint();
    }
    const QScreen* const screen = screenAt(point);
    return screen == nullptr ? QRectF() : QRectF(screen->geometry());
}

std::vector<QRectF> displays()
{
    std::vector<QRectF> rects;
    const QScreen* const primary = QGuiApplication::primaryScreen();
    for (const QScreen* screen : QGuiApplication::screens()) {
        rects.insert(screen == primary ? rects.begin() : rects.end(), QRectF(screen->geometry()));
    }
    return rects;
}

} // namespace

ApplicationHost::ApplicationHost()
    : m_defaults(kSettingsFormat, QSettings::UserScope, kSettingsName, kSettingsName)
    , m_hotkeys(makeHotkeys())
    , m_model(std::make_unique<AppModel>(services()))
{
    QGuiApplication::setDesktopFileName(kApplicationId);
    QGuiApplication::setQuitOnLastWindowClosed(false); // the window may be hidden for a recording
    connect(&m_instance, &SingleInstance::activated, this, [this] { m_model->activate(); });
    connect(&m_instance, &SingleInstance::openRequested, this, [this](const QString& bundle) {
        m_model->openFromSearch(bundle);
    });
    connect(&m_instance, &SingleInstance::actionRequested, this, [this](const QString& action) {
        m_model->run(action);
    });
    connect(&m_notifications, &Notifications::activated, this, [this] { m_model->activate(); });
    connect(
        m_model->messages(), &Messages::errorMessageChanged, this, &ApplicationHost::tellOutside);
    connectTray();
}

std::unique_ptr<GlobalHotkeys> ApplicationHost::makeHotkeys()
{
    if (!environmentFacts().isWaylandSession()) {
        return std::make_unique<X11Hotkeys>();
    }
    return std::make_unique<PortalHotkeys>([this] {
        m_model->messages()->setErrorMessage(
            tr("This desktop has no shortcuts that work anywhere. The tray icon works, and a "
               "shortcut of the desktop's own that runs: zento record --toggle"));
    });
}

AppServices ApplicationHost::services()
{
    const std::filesystem::path sessions = sessionsFolder();
    const auto devices = std::make_shared<DeviceWatch>(); // used on the probes' thread alone
    return {
        .clock = m_clock,
        .files = m_files,
        .capture = m_capture,
        .exports = m_exports,
        .probes = m_probes,
        .editor =
            {.edits = m_edits,
             .analyses = m_analyses,
             .speech = m_speech,
             .proxies = m_proxies,
             .pictures = m_pictures,
             .sounds = m_sounds,
             .makeProxy =
                 [this](
                     const std::filesystem::path& bundle,
                     const ProxyStore::Progress& onProgress,
                     const std::stop_token& stop) {
                     return m_proxyStore.ensure(bundle, onProgress, stop);
                 },
             .makeComposer = threadedComposer,
             .desktopImage = desktopImage,
             .analysers =
                 {.findRegions = FrameAnalyzer::loadOrAnalyze,
                  .transcribe =
                      [](const SessionBundle& bundle, const std::stop_token& stop) {
                          return NarrationTranscriber::loadOrTranscribe(bundle, stop);
                      },
                  .tellStory = storyOf}},
        .language = m_language,
        .findModel =
            [](const LanguageModelChoice& choice, const std::stop_token& stop) {
                return SystemLanguageModel::find(choice, stop);
            },
        .speechModels = m_speechModels,
        .speechModel =
            {.file = speechModelFile(),
             .site = ZENTO_SPEECH_MODELS,
             .canUseModels = canUseWhisper(),
             .hasBasicEngine = canUseSphinx,
             .requireModel = requireSpeechModel},
        .music = m_musicWorker,
        .musicPlayer = m_musicPlayer,
        .musicSources =
            musicSources({.api = ZENTO_MUSIC_API, .site = ZENTO_MUSIC_SITE, .ownSite = ZENTO_SITE}),
        .fileServices = m_fileServices,
        .hotkeys = *m_hotkeys,
        .defaults = m_defaults,
        .settingsFile = AppSettings::fileURL(),
        .sessionsFolder = sessions,
        .home = userHomeFolder(),
        .makeCapture = deviceCaptures(),
        .choice = environmentFacts().isWaylandSession() ? Desktop::Choice::ByUser
                                                        : Desktop::Choice::ByProgram,
        .displayPicture = displayPicture,
        .makers = filmMakers(desktopImage),
        .freeSpace = [sessions] { return freeSpace(sessions); },
        .runAction =
            [this](const std::string& name) {
                m_probes.run([name] { FocusActions::run(name); }, [] {});
            },
        .installedActions = [] { return FocusActions::installed(FocusActions::folder()); },
        .displayOf = displayOf,
        .displays = displays,
        .permissions = [probe = std::make_shared<PermissionProbe>(devices)] { return (*probe)(); },
        .permissionRequests =
            {.input = {},
             .accessibility = enableAccessibility,
             .microphone = openSoundSettings,
             .camera = openCameraSettings},
        .devices = [devices] { return devices->devices(); },
        .windows = [] { return desktopWindows(); },
        .windowThumbnail = [](std::uint32_t window,
                              int width) { return windowThumbnail(window, width); },
        .fetch = httpFetch(),
        .updates = {QUrl(ZENTO_UPDATE_URL), ZENTO_SITE},
        .version = ZENTO_VERSION,
        .hasTray = [this] { return m_tray.isShown(); },
        .relaunch = [this] { relaunch(); },
        .quit = [] { QCoreApplication::quit(); },
    };
}

bool ApplicationHost::claim(const QString& bundle)
{
    return m_instance.claim(bundle) == SingleInstance::Standing::First;
}

void ApplicationHost::start(const std::stop_token& stop)
{
    m_onStop.emplace(stop, [this] {
        QMetaObject::invokeMethod(this, &ApplicationHost::quit, Qt::QueuedConnection);
    });
    m_model->start();
    compute(
        m_probes,
        this,
        [] { return QString::fromStdString(name(desktopKind(sessionFacts()))); },
        [this](const Outcome<QString>& desktop) {
            m_model->setProperty("desktop", desktop.value_or(QString()));
        });
}

void ApplicationHost::quit()
{
    if (!std::exchange(m_isQuitting, true)) {
        m_model->quit();
    }
}

void ApplicationHost::connectTray()
{
    connect(&m_tray, &TrayIcon::activated, this, [this] {
        // The icon is the way to stop that is always there.
        if (m_model->recording()->phase() == RecordingFlow::Phase::Recording) {
            m_model->recording()->stopRecording();
        } else {
            m_model->activate();
        }
    });
    connect(m_model->recording(), &RecordingFlow::phaseChanged, this, &ApplicationHost::updateTray);
    connect(m_model->permissions(), &Permissions::changed, this, &ApplicationHost::updateTray);
    updateTray();
}

void ApplicationHost::updateTray()
{
    using Phase = RecordingFlow::Phase;
    const Phase phase = m_model->recording()->phase();
    const bool isIdle = phase == Phase::Idle;
    const Permissions& permissions = *m_model->permissions();
    const bool canRecord = permissions.canRecord();
    const auto run = [this](const char* action) {
        return [this, action] { m_model->run(action); };
    };
    const QString toggle = phase == Phase::Recording      ? tr("Stop recording")
                           : phase == Phase::CountingDown ? tr("Cancel")
                                                          : tr("Start recording");
    const bool canToggle =
        phase == Phase::Recording || phase == Phase::CountingDown || (isIdle && canRecord);
    m_tray.setIcon(phase == Phase::Recording ? kRecordingIcon : kApplicationId);
    m_tray.setToolTip(phase == Phase::Recording ? tr("Zento is recording") : tr("Zento"));
    m_tray.setMenu(
        {{toggle, run("toggleRecording"), canToggle},
         {tr("Record a window"), run("recordWindow"), isIdle && canRecord && permissions.window()},
         {tr("Record an area"), run("recordArea"), isIdle && canRecord},
         {tr("Capture panel"), run("capturePanel"), isIdle},
         {},
         {tr("Show Zento"), [this] { m_model->activate(); }, isIdle},
         {tr("Quit"), [this] { quit(); }}});
}

/// A message that nobody sees in the window is told by the desktop. The window gets the time to
/// come to the front.
void ApplicationHost::tellOutside()
{
    QTimer::singleShot(kTimeToFront, this, [this] {
        const QString message = m_model->messages()->errorMessage();
        if (!message.isEmpty() && QGuiApplication::applicationState() != Qt::ApplicationActive) {
            m_notifications.show(tr("Zento"), message);
        }
    });
}

/// The name on the bus has to be free before the new one asks for it.
void ApplicationHost::relaunch()
{
    m_instance.release();
    QProcess::startDetached(QCoreApplication::applicationFilePath(), {});
    QCoreApplication::quit();
}

} // namespace zento
