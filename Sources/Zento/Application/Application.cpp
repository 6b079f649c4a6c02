#include "Zento/Application/Application.h"

#include "Zento/Commands/Interruption.h"
#include "Zento/Desktop/ApplicationHost.h"
#include "Zento/Desktop/DesktopFileServices.h"
#include "Zento/Desktop/DesktopImage.h"
#include "Zento/Desktop/WallpaperCatalog.h"
#include "Zento/Presentation/ScreenshotWindows.h"
#include "Zento/Presentation/Windows.h"
#include "Zento/Screenshot/Screenshots.h"
#include "ZentoCapture/Desktop.h"
#include "ZentoCapture/ScrollWheel.h"
#include "ZentoCapture/ScrollingCapture.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <chrono>
#include <exception>
#include <iostream>
#include <stop_token>
#include <thread>
#include <utility>
#include <vector>

namespace zento {

namespace {

constexpr std::chrono::milliseconds kSettleTime{450}; // of a page after a step

void setNames()
{
    QGuiApplication::setApplicationName(QStringLiteral("Zento"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Zento"));
}

std::vector<ShotPresets::Picture> desktopPictures()
{
    std::vector<ShotPresets::Picture> pictures;
    for (const Wallpaper& wallpaper : WallpaperCatalog::wallpapers(WallpaperCatalog::folders()))
        pictures.push_back({wallpaper.path, wallpaper.name});
    return pictures;
}

/// Blocks until the page has ended.
ScrolledShot shootScrolling(const Rect& area, const std::stop_token& stop)
{
    const auto desktop = openDesktop();
    const auto wheel = desktop->scrollWheel(stop);
    return ScrollingCapture::run(
        area,
        {.shoot = [&] { return ScreenshotTool::capture(*desktop, Target::Area{area}); },
         .wheel = *wheel,
         .settle = [] { std::this_thread::sleep_for(kSettleTime); }},
        stop);
}

/// The threads of screenshots, and what connects them to the application.
struct ScreenshotParts {
    ScreenshotParts(AppModel& app, QQmlEngine& engine)
        : screenshots(
              app,
              {.shooting = shooting,
               .drawing = drawing,
               .output = output,
               .files = &files,
               .clock = clock,
               .shoot =
                   [stop = stopping.get_token()](const CaptureTarget& target) {
                       const auto desktop = openDesktop();
                       return ScreenshotTool::capture(*desktop, target, stop);
                   },
               .shootScrolling = [stop = stopping.get_token()](
                                     const Rect& area) { return shootScrolling(area, stop); },
               .desktopImage = desktopImage,
               .wallpapers = desktopPictures})
        , windows(&engine)
    {
        QObject::connect(&screenshots, &Screenshots::opened, &windows, &ScreenshotWindows::open);
    }

    ~ScreenshotParts() { stopping.request_stop(); } // the shot under way, before it is waited for
    ScreenshotParts(const ScreenshotParts&) = delete;
    ScreenshotParts& operator=(const ScreenshotParts&) = delete;

    std::stop_source stopping;
    EventLoopClock clock;
    DesktopFileServices files;
    ThreadWorker shooting{"shot.shooting"};
    ThreadWorker drawing{"shot.drawing"};
    ThreadWorker output{"shot.output"};
    Screenshots screenshots;
    ScreenshotWindows windows; // go before the editors they show
};

/// Ends the event loop once nobody can want the clipboard's picture from this program.
void quitWithoutClipboard()
{
    QClipboard* const clipboard = QGuiApplication::clipboard();
    if (!clipboard->ownsClipboard()) {
        QGuiApplication::quit();
        return;
    }
    QObject::connect(clipboard, &QClipboard::dataChanged, clipboard, [clipboard] {
        if (!clipboard->ownsClipboard())
            QGuiApplication::quit();
    });
}

} // namespace

int runApplication(int argc, char** argv)
{
    try {
        const Interruption interruption; // before Qt starts its threads
        const QGuiApplication application(argc, argv);
        setNames();
        ApplicationHost host;
        if (!host.claim())
            return 0;
        const Windows windows(&host.model());
        const ScreenshotParts screenshots(host.model(), windows.engine());
        host.start(interruption.token());
        return QGuiApplication::exec();
    } catch (const std::exception& error) {
        std::cerr << "zento: " << error.what() << '\n';
        return 1;
    }
}

void editScreenshot(
    int argc, char** argv, Shot shot, const std::optional<std::filesystem::path>& file)
{
    const QGuiApplication application(argc, argv);
    setNames();
    QGuiApplication::setQuitOnLastWindowClosed(false);
    DesktopFileServices files;
    ThreadWorker drawing{"shot.drawing"};
    ThreadWorker output{"shot.output"};
    const QTemporaryDir exports;
    const std::optional<std::string> desktop = desktopImage();
    ScreenshotWindows windows;
    QObject::connect(&windows, &ScreenshotWindows::lastClosed, &windows, quitWithoutClipboard);
    auto* const editor = new ScreenshotEditor(
        std::move(shot),
        {.drawing = drawing,
         .output = output,
         .files = &files,
         .style = loadSettings(AppSettings::fileURL()).styleSpec(desktop),
         .desktop = desktop,
         .wallpapers = desktopPictures(),
         .exportFolder = exports.path(),
         .saveTo = file ? QString::fromStdString(file->string()) : QString()},
        &windows);
    windows.open(editor);
    QGuiApplication::exec();
}

} // namespace zento
