#include "Zento/Model/AppModel.h"

#include <QLocale>

#include <array>
#include <string_view>
#include <utility>

namespace zento {

namespace {

constexpr std::array<std::string_view, 9> kInspectorTabs{
    "look", "edit", "pointer", "sound", "webcam", "text", "share", "record", "app"};
constexpr double kLeastArea = 40; // points; an area must be larger both ways

constexpr auto kShowInspectorKey = "showInspector";
constexpr auto kInspectorTabKey = "inspectorTab";
constexpr auto kWelcomeShownKey = "welcomeShown";

QLatin1StringView latin(std::string_view text)
{
    return {text.data(), static_cast<qsizetype>(text.size())};
}

QString knownTab(const QString& tab)
{
    for (const std::string_view known : kInspectorTabs) {
        if (tab == latin(known)) {
            return tab;
        }
    }
    return latin(kInspectorTabs.front());
}

QVariantList choices(const std::vector<CaptureDevice>& devices)
{
    QVariantList list;
    for (const CaptureDevice& device : devices) {
        list.append(QVariantMap{
            {"value", QString::fromStdString(device.id)},
            {"name", QString::fromStdString(device.name)}});
    }
    return list;
}

} // namespace

AppModel::AppModel(AppServices services)
    : m_services(std::move(services))
    , m_messages(m_services.clock)
    , m_settings(m_services.settingsFile, m_services.files)
    , m_permissions(
          m_services.clock,
          m_services.probes,
          m_services.permissions,
          m_services.permissionRequests)
    , m_library({
          .folder = m_services.sessionsFolder,
          .clock = m_services.clock,
          .worker = m_services.files,
          .files = m_services.fileServices,
          .messages = m_messages,
          .question = m_question,
          .defaults = m_services.defaults,
      })
    , m_recording({
          .clock = m_services.clock,
          .capture = m_services.capture,
          .files = m_services.files,
          .settings = m_settings,
          .permissions = m_permissions,
          .library = m_library,
          .messages = m_messages,
          .makeCapture = m_services.makeCapture,
          .choice = m_services.choice,
          .freeSpace = m_services.freeSpace,
          .runAction = m_services.runAction,
          .displayOf = m_services.displayOf,
          .excludedWindows = [this] { return excludedWindows(); },
      })
    , m_editor(m_services.clock, m_settings, m_services.editor)
    , m_language(
          {.worker = m_services.language,
           .defaults = m_services.defaults,
           .findModel = m_services.findModel})
    , m_speech(
          {.clock = m_services.clock,
           .worker = m_services.speechModels,
           .messages = m_messages,
           .place = m_services.speechModel})
    , m_copy(
          {.session = *m_editor.session(),
           .files = m_services.files,
           .language = m_services.language,
           .messages = m_messages,
           .defaults = m_services.defaults,
           .findModel = m_services.findModel})
    , m_music({
          .clock = m_services.clock,
          .worker = m_services.music,
          .player = m_services.musicPlayer,
          .messages = m_messages,
          .sources = m_services.musicSources,
      })
    , m_export({
          .clock = m_services.clock,
          .worker = m_services.exports,
          .files = m_services.fileServices,
          .settings = m_settings,
          .library = m_library,
          .flow = m_recording,
          .messages = m_messages,
          .makers = m_services.makers,
          .saveEdits =
              [this](std::function<void()> saved) {
                  m_exportedVersion = m_editor.session()->version();
                  m_editor.session()->flush(std::move(saved));
              },
      })
    , m_sharing({
          .library = m_library,
          .worker = m_services.files,
          .files = m_services.fileServices,
          .defaults = m_services.defaults,
          .home = m_services.home,
      })
    , m_shortcuts(m_settings, m_services.hotkeys)
    , m_updates({
          .clock = m_services.clock,
          .messages = m_messages,
          .question = m_question,
          .files = m_services.fileServices,
          .settings = m_settings,
          .defaults = m_services.defaults,
          .fetch = m_services.fetch,
          .endpoint = m_services.updates,
          .runningVersion = m_services.version,
      })
    , m_windows({m_services.probes, m_services.windows, m_services.windowThumbnail})
    , m_inspectorTab(knownTab(m_services.defaults.value(kInspectorTabKey).toString()))
    , m_showInspector(m_services.defaults.value(kShowInspectorKey, true).toBool())
    , m_showWelcome(!m_services.defaults.value(kWelcomeShownKey, false).toBool())
{
    connect(&m_permissions, &Permissions::changed, this, &AppModel::refreshDevices);
    connect(&m_library, &RecordingLibrary::refreshed, this, &AppModel::refreshFreeSpace);
    connectEditor();
    m_shortcuts.onHotkey = [this](ShortcutAction action) { run(latin(shortcutEntry(action).id)); };
}

AppModel::~AppModel()
{
    m_looking.request_stop();
}

void AppModel::connectEditor()
{
    EditSession* const session = m_editor.session();
    connect(&m_library, &RecordingLibrary::selectedChanged, session, [this, session] {
        session->open(m_library.selected());
        m_music.open(m_library.selected());
    });
    connect(&m_music, &RecordingMusic::fileChanged, session, &EditSession::reloadMusic);
    // What Zento plays itself does not belong into a recording of what the computer plays.
    connect(&m_recording, &RecordingFlow::phaseChanged, &m_music, &RecordingMusic::stopPreview);
    connect(session, &EditSession::historyChanged, this, &AppModel::historyChanged);
    connect(&m_export, &FilmExport::filmWritten, session, [this, session](const QString& path) {
        if (path == session->path()) {
            session->rendered(m_exportedVersion);
        }
    });
}

QString AppModel::undoText()
{
    const QString name = m_editor.session()->undoName();
    return name.isEmpty() ? tr("Undo") : tr("Undo %1").arg(name);
}

QString AppModel::redoText()
{
    const QString name = m_editor.session()->redoName();
    return name.isEmpty() ? tr("Redo") : tr("Redo %1").arg(name);
}

void AppModel::start()
{
    m_permissions.start();
    m_library.refresh();
    m_shortcuts.registerHotkeys();
    tellTakenHotkeys();
    m_updates.checkIfDue();
}

void AppModel::tellTakenHotkeys()
{
    const QStringList titles = m_shortcuts.unregisteredTitles();
    if (titles.isEmpty()) {
        return;
    }
    const QString names = titles.join(tr(" and "));
    const QString reason =
        m_services.hotkeys.isAvailable()
            ? tr("Another app already uses %1, so that shortcut won't reach Zento.").arg(names)
            : tr("This desktop has no shortcuts that work anywhere, so %1 won't reach Zento.")
                  .arg(names);
    const QString remedy = m_services.hasTray() ? tr("The tray icon and the File menu still work.")
                                                : tr("The File menu still works.");
    m_hotkeyMessage = reason + ' ' + remedy;
    m_messages.setErrorMessage(m_hotkeyMessage);
}

void AppModel::trayChanged()
{
    if (!m_hotkeyMessage.isEmpty() && m_messages.errorMessage() == m_hotkeyMessage) {
        tellTakenHotkeys();
    }
}

void AppModel::setShowInspector(bool isShown)
{
    if (m_showInspector != isShown) {
        m_showInspector = isShown;
        m_services.defaults.setValue(kShowInspectorKey, isShown);
        Q_EMIT viewChanged();
    }
}

void AppModel::setInspectorTab(const QString& tab)
{
    if (const QString known = knownTab(tab); m_inspectorTab != known) {
        m_inspectorTab = known;
        m_services.defaults.setValue(kInspectorTabKey, known);
        Q_EMIT viewChanged();
    }
}

void AppModel::setShowWelcome(bool isShown)
{
    if (m_showWelcome != isShown) {
        m_showWelcome = isShown;
        m_services.defaults.setValue(kWelcomeShownKey, !isShown);
        Q_EMIT viewChanged();
    }
}

void AppModel::setPanel(Panel panel)
{
    if (m_panel != panel) {
        m_panel = panel;
        m_displayPicture = {};
        const auto areaPicked = std::exchange(m_areaPicked, {});
        const auto windowPicked = std::exchange(m_windowPicked, {});
        Q_EMIT panelChanged();
        if (areaPicked) {
            areaPicked({}); // closed without an answer
        }
        if (windowPicked) {
            windowPicked({});
        }
    }
}

void AppModel::excludeFromRecording(QWindow* window)
{
    m_excluded.emplace_back(window);
}

std::vector<std::uint32_t> AppModel::excludedWindows() const
{
    std::vector<std::uint32_t> ids;
    for (const QPointer<QWindow>& window : m_excluded) {
        if (window) {
            ids.push_back(static_cast<std::uint32_t>(window->winId()));
        }
    }
    return ids;
}

void AppModel::showCapturePanel()
{
    setPanel(Panel::CapturePanel);
}

void AppModel::pickArea()
{
    openAreaPicker({});
}

void AppModel::pickArea(AreaHandler picked)
{
    openAreaPicker(std::move(picked));
}

void AppModel::openAreaPicker(AreaHandler picked)
{
    if (m_recording.phase() != RecordingFlow::Phase::Idle || m_isLooking) {
        return;
    }
    setPanel(Panel::NoPanel);
    m_recording.hideApplication();
    if (!choosesInDialog()) {
        showAreaPicker(std::move(picked));
        return;
    }
    m_isLooking = true;
    compute(
        m_services.capture,
        this,
        [look = m_services.displayPicture, stop = m_looking.get_token()] { return look(stop); },
        [this, picked = std::move(picked)](Outcome<DisplayPicture> picture) {
            m_isLooking = false;
            if (picture && m_recording.phase() == RecordingFlow::Phase::Idle) {
                m_displayPicture = *std::move(picture);
                showAreaPicker(picked);
                return;
            }
            if (!picture) {
                m_messages.setErrorMessage(
                    tr("No area can be marked: %1").arg(QString::fromStdString(picture.error())));
                m_recording.showApplication();
            }
            if (picked) {
                picked({});
            }
        });
}

void AppModel::showAreaPicker(AreaHandler picked)
{
    m_areaPicked = std::move(picked);
    m_panel = Panel::AreaPicker;
    Q_EMIT panelChanged();
}

void AppModel::finishArea(const QRectF& area)
{
    if (m_panel != Panel::AreaPicker) {
        return;
    }
    if (area.width() <= kLeastArea || area.height() <= kLeastArea) {
        cancelArea();
        return;
    }
    const auto picked = std::exchange(m_areaPicked, {});
    setPanel(Panel::NoPanel);
    if (picked) {
        picked(area);
    } else {
        m_recording.recordArea(area);
    }
}

void AppModel::cancelArea()
{
    if (m_panel == Panel::AreaPicker) {
        setPanel(Panel::NoPanel);
        m_recording.showApplication();
    }
}

void AppModel::pickWindow()
{
    if (choosesInDialog()) {
        m_recording.recordWindow(0);
    } else if (m_recording.phase() == RecordingFlow::Phase::Idle) {
        m_windows.refresh();
        setPanel(Panel::WindowPicker);
        m_recording.showApplication();
    }
}

void AppModel::pickWindow(WindowHandler picked)
{
    if (choosesInDialog()) {
        picked(0);
    } else if (m_recording.phase() == RecordingFlow::Phase::Idle) {
        setPanel(Panel::NoPanel);
        m_windowPicked = std::move(picked);
        m_windows.refresh();
        m_panel = Panel::WindowPicker;
        Q_EMIT panelChanged();
        m_recording.showApplication();
    }
}

void AppModel::finishWindow(quint32 windowID)
{
    if (m_panel == Panel::WindowPicker) {
        const auto picked = std::exchange(m_windowPicked, {});
        setPanel(Panel::NoPanel);
        if (picked) {
            picked(windowID);
        } else {
            m_recording.recordWindow(windowID);
        }
    }
}

QVariantList AppModel::displays() const
{
    QVariantList list;
    if (!m_displayPicture.image.isNull()) {
        return {m_displayPicture.bounds};
    }
    for (const QRectF& display : m_services.displays()) {
        list.append(display);
    }
    return list;
}

QRectF AppModel::displayUnderPointer() const
{
    return m_services.displayOf(Target::Display{});
}

void AppModel::run(const QString& action)
{
    const ShortcutEntry* const entry = shortcutEntry(action.toStdString());
    if (entry == nullptr) {
        return;
    }
    switch (entry->action) {
    case ShortcutAction::ToggleRecording:
        m_recording.toggleRecording();
        break;
    case ShortcutAction::CapturePanel:
        showCapturePanel();
        break;
    case ShortcutAction::RecordScreen:
        m_recording.recordDisplay();
        break;
    case ShortcutAction::RecordWindow:
        pickWindow();
        break;
    case ShortcutAction::RecordArea:
        pickArea();
        break;
    case ShortcutAction::CopyVideo:
        m_library.copyRenderToClipboard();
        break;
    case ShortcutAction::ToggleSidebar:
        setShowInspector(!m_showInspector);
        break;
    case ShortcutAction::Recordings:
        activate();
        Q_EMIT actionRequested(action);
        break;
    case ShortcutAction::ScreenshotScreen:
    case ShortcutAction::ScreenshotWindow:
    case ShortcutAction::ScreenshotArea:
    case ShortcutAction::ScrollingCapture:
    case ShortcutAction::ExportVideo:
        Q_EMIT actionRequested(action);
        break;
    }
}

void AppModel::refreshActions()
{
    compute(
        m_services.probes,
        this,
        m_services.installedActions,
        [this](const Outcome<std::vector<std::string>>& names) {
            m_installedActions.clear();
            for (const std::string& name : names.value_or(std::vector<std::string>{})) {
                m_installedActions.append(QString::fromStdString(name));
            }
            Q_EMIT installedActionsChanged();
        });
}

void AppModel::refreshDevices()
{
    compute(
        m_services.probes,
        this,
        m_services.devices,
        [this](const Outcome<CaptureDevices>& devices) {
            m_devices = devices.value_or(CaptureDevices{});
            Q_EMIT devicesChanged();
        });
}

void AppModel::refreshFreeSpace()
{
    compute(
        m_services.files,
        this,
        m_services.freeSpace,
        [this](const Outcome<std::optional<std::int64_t>>& free) {
            const auto bytes = free.value_or(std::nullopt);
            m_freeSpace = bytes ? tr("%1 free").arg(QLocale().formattedDataSize(
                                      *bytes, 0, QLocale::DataSizeSIFormat))
                                : QString();
            Q_EMIT freeSpaceChanged();
        });
}

QVariantList AppModel::microphones() const
{
    return choices(m_devices.microphones);
}

QVariantList AppModel::cameras() const
{
    return choices(m_devices.cameras);
}

void AppModel::relaunch()
{
    shutDown(m_services.relaunch);
}

void AppModel::closeWindow()
{
    if (m_services.hasTray()) {
        m_recording.hideApplication();
    } else {
        quit();
    }
}

void AppModel::quit()
{
    shutDown(m_services.quit);
}

void AppModel::activate()
{
    // The window would be in the film; where no stop panel floats, it is what a recording is ended
    // with.
    const auto phase = m_recording.phase();
    const bool isInTheWay = phase == RecordingFlow::Phase::CountingDown
                            || (phase == RecordingFlow::Phase::Recording && !choosesInDialog());
    if (!isInTheWay) {
        m_recording.showApplication();
    }
}

void AppModel::openFromSearch(const QString& identifier)
{
    m_library.refresh([this, identifier] {
        if (m_library.openFromSearch(identifier)) {
            activate();
        }
    });
}

void AppModel::shutDown(std::function<void()> done)
{
    m_looking.request_stop();
    m_recording.finish([this, done = std::move(done)]() mutable {
        m_export.finish([this, done = std::move(done)]() mutable {
            m_editor.session()->flush([this, done = std::move(done)]() mutable {
                m_settings.flush([this, done = std::move(done)] {
                    m_isEnding = true;
                    done();
                });
            });
        });
    });
}

} // namespace zento
