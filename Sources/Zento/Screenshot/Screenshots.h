#pragma once

#include "Zento/Model/AppModel.h"
#include "Zento/Screenshot/ScreenshotEditor.h"
#include "ZentoCapture/ScrollingCapture.h"

#include <QObject>
#include <QString>
#include <QTemporaryDir>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zento {

/// What shooting needs. All of it outlives the object.
struct ScreenshotServices {
    Worker& shooting; // shots, which block
    Worker& drawing;
    Worker& output;
    FileServices* files = nullptr;
    Clock& clock;
    /// Blocks; on the shooting worker.
    std::function<Shot(const CaptureTarget&)> shoot;
    /// The same, of a page that is scrolled. Global points. Throws `Error` 9 when the user gives it
    /// up.
    std::function<ScrolledShot(const Rect&)> shootScrolling;
    std::function<std::optional<std::string>()> desktopImage;      // blocks
    std::function<std::vector<ShotPresets::Picture>()> wallpapers; // blocks
};

/// Does what the actions "screenshotScreen", "screenshotWindow", "screenshotArea" and
/// "scrollingCapture" ask for: the application's windows go out of sight, the shot is taken, its
/// editor is opened.
///
/// Threading: the main thread.
class Screenshots : public QObject {
    Q_OBJECT

public:
    /// `app` outlives this.
    Screenshots(AppModel& app, ScreenshotServices services);

    /// Other actions are none of its.
    void run(const QString& action);

    /// Opens the editor on a shot that was taken elsewhere. Seams in doubt are marked on it.
    void present(ScrolledShot shot);

Q_SIGNALS:
    void opened(zento::ScreenshotEditor* editor); // which its window closes

private:
    struct Surroundings { // what the presets need, read beside the main thread
        std::optional<std::string> desktop;
        std::vector<ShotPresets::Picture> wallpapers;
    };

    using Shooting = std::function<ScrolledShot()>; // on the worker; `Error` 9 is no failure
    void pickArea(std::function<void(const Rect&)> picked);
    Shooting shootingOf(const CaptureTarget& target) const;
    void shootWithoutUs(Shooting shooting);
    void shoot(Shooting shooting);
    void bringBack();

    AppModel& m_app;
    ScreenshotServices m_services;
    QTemporaryDir m_exports;
    std::optional<Surroundings> m_surroundings;
    std::unique_ptr<Timer> m_sight; // until our windows are out of it
    bool m_isShooting = false;
    bool m_wasHidden = false;
};

} // namespace zento
