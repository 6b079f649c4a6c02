#pragma once

#include "Zento/Desktop/DesktopFileServices.h"
#include "Zento/Desktop/Notifications.h"
#include "Zento/Desktop/SingleInstance.h"
#include "Zento/Desktop/TrayIcon.h"
#include "Zento/Model/AppModel.h"
#include "Zento/Model/GlobalHotkeys.h"
#include "ZentoRender/ProxyStore.h"

#include <QObject>
#include <QSettings>

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

namespace zento {

/// The application's model with the real desktop around it: tray, hot keys, notifications, the bus,
/// the threads that work for it. Needs a QGuiApplication; the window is somebody else's.
///
///     QGuiApplication application(argc, argv);
///     ApplicationHost host;
///     if (!host.claim()) return 0;      // another one runs, and has come to the front
///     … load the window on host.model() …
///     host.start(interruption.token());
///     return application.exec();
///
/// Threading: the main thread.
class ApplicationHost : public QObject {
    Q_OBJECT

public:
    ApplicationHost();
    ~ApplicationHost() override = default;

    /// False when another application runs in this session; it has been raised, with a bundle's
    /// path to open that.
    bool claim(const QString& bundle = {});

    AppModel& model() { return *m_model; }
    const TrayIcon& tray() const { return m_tray; }

    /// What happens at the start. A request to stop ends the program as `quit` does.
    void start(const std::stop_token& stop = {});

    /// Stops and writes a recording that runs, then ends the event loop.
    void quit();

private:
    AppServices services();
    void connectTray();
    void updateTray();
    void tellOutside();
    std::unique_ptr<GlobalHotkeys> makeHotkeys();
    void relaunch();

    EventLoopClock m_clock;
    QSettings m_defaults;
    DesktopFileServices m_fileServices;
    std::unique_ptr<GlobalHotkeys> m_hotkeys;
    SingleInstance m_instance;
    TrayIcon m_tray;
    Notifications m_notifications;
    ProxyStore m_proxyStore; // outlives the thread that builds for it
    ThreadWorker m_files{"model.files"};
    ThreadWorker m_capture{"model.capture"};
    ThreadWorker m_exports{"model.exports", ThreadWorker::Priority::Background};
    ThreadWorker m_probes{"model.probes"};
    ThreadWorker m_edits{"editor.edits"};
    ThreadWorker m_analyses{"editor.analyses"};
    ThreadWorker m_proxies{"editor.proxies", ThreadWorker::Priority::Background};
    ThreadWorker m_pictures{"editor.pictures"};
    ThreadWorker m_sounds{"editor.sounds", ThreadWorker::Priority::Background};
    ThreadWorker m_speech{"editor.speech", ThreadWorker::Priority::Background};
    ThreadWorker m_language{"model.language"};
    ThreadWorker m_speechModels{"model.speech"};
    ThreadWorker m_musicWorker{"model.music"};
    ThreadWorker m_musicPlayer{"music.preview"};
    std::unique_ptr<AppModel> m_model; // goes before the threads that work for it
    std::optional<std::stop_callback<std::function<void()>>> m_onStop;
    bool m_isQuitting = false;
};

} // namespace zento
