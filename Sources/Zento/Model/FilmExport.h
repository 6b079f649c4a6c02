#pragma once

#include "Zento/Model/Clock.h"
#include "Zento/Model/FileServices.h"
#include "Zento/Model/FilmMaking.h"
#include "Zento/Model/Messages.h"
#include "Zento/Model/RecordingFlow.h"
#include "Zento/Model/RecordingLibrary.h"
#include "Zento/Model/SettingsModel.h"
#include "Zento/Model/Worker.h"

#include <QObject>
#include <QString>

#include <filesystem>
#include <functional>
#include <memory>
#include <stop_token>
#include <vector>

namespace zento {

/// How films and GIFs are made: `renderFilm` of a bundle's folder, and `renderGif`. Both block and
/// throw `Error`.
struct FilmMakers {
    std::function<void(
        const std::filesystem::path& bundle,
        const AppSettings& settings,
        const std::filesystem::path& film,
        const FilmReports& reports,
        const std::stop_token& stop)>
        film;
    std::function<void(
        const std::filesystem::path& film,
        const std::filesystem::path& gif,
        const FilmReports& reports,
        const std::stop_token& stop)>
        gif;
};

/// The real ones. `desktopImage` is asked on the thread that makes the film.
FilmMakers filmMakers(std::function<std::optional<std::string>()> desktopImage);

/// The export of a film in the background: one at a time, while nothing is recorded.
///
/// Threading: the main thread; the film is made by the worker.
class FilmExport : public QObject {
    Q_OBJECT
    /// The bundle's path of the recording that is exported; empty while none is.
    Q_PROPERTY(QString session READ session NOTIFY sessionChanged)
    Q_PROPERTY(QString name READ name NOTIFY sessionChanged) // as the library shows it
    /// Of the film; zero until the first frame is there, and while a GIF is made.
    Q_PROPERTY(int frame READ frame NOTIFY progressed)
    Q_PROPERTY(int totalFrames READ totalFrames NOTIFY progressed)
    /// A guess from what went before; −1 until there is something to guess from.
    Q_PROPERTY(int secondsLeft READ secondsLeft NOTIFY progressed)
    /// It was cancelled and is about to end.
    Q_PROPERTY(bool isCancelling READ isCancelling NOTIFY sessionChanged)
    /// How many films were finished in this run: their pictures are others then.
    Q_PROPERTY(int renderGeneration READ renderGeneration NOTIFY renderGenerationChanged)
    /// Where the next export writes to; empty for the usual place beside the recording. Forgotten
    /// when it begins and when another recording is selected. Its end becomes the format's.
    Q_PROPERTY(QString destination READ destination WRITE setDestination NOTIFY destinationChanged)

public:
    struct Ports {
        Clock& clock;
        Worker& worker;
        FileServices& files;
        SettingsModel& settings;
        RecordingLibrary& library;
        RecordingFlow& flow; // keeps the phase and the progress
        Messages& messages;
        FilmMakers makers;
        /// Has what is edited in the recording's folder, then calls back; may be empty.
        std::function<void(std::function<void()> saved)> saveEdits = {};
    };

    explicit FilmExport(Ports ports);
    ~FilmExport() override; // what is under way is cancelled

    QString session() const;
    QString name() const;
    int frame() const { return m_shown.totalFrames > 1 ? m_shown.frame : 0; }
    int totalFrames() const { return m_shown.totalFrames > 1 ? m_shown.totalFrames : 0; }
    int secondsLeft() const { return m_secondsLeft; }
    bool isCancelling() const;
    int renderGeneration() const { return m_renderGeneration; }
    QString destination() const { return m_destination; }

    void setDestination(const QString& path);

    /// Writes the selected recording's film as the settings say: its format, and whether it is
    /// shown in its folder afterwards. Nothing happens unless the application is idle.
    Q_INVOKABLE void start();
    Q_INVOKABLE void cancel();

    /// Cancels what is under way, and runs `done` when nothing is any more.
    void finish(std::function<void()> done);

Q_SIGNALS:
    void sessionChanged();
    /// The film of the bundle at `path` is complete.
    void filmWritten(const QString& path);
    void progressed();
    void destinationChanged();
    void renderGenerationChanged();

private:
    struct Job;

    Ports m_ports;
    std::shared_ptr<Job> m_job;
    std::unique_ptr<Timer> m_progressTimer;
    FilmProgress m_shown;
    int m_secondsLeft = -1;
    int m_renderGeneration = 0;
    QString m_destination;
    std::vector<std::function<void()>> m_onFinished;

    std::filesystem::path takeDestination(const std::filesystem::path& usual);
    void beginStep(RecordingFlow::Phase phase);
    void saveAndMakeFilm();
    void makeFilm();
    void makeGif();
    void showProgress();
    void filmMade(const Outcome<void>& outcome);
    void gifMade(const Outcome<void>& outcome);
    void succeeded(const QString& toast);
    void failed(const QString& sentence, const std::string& reason);
    void end();
};

} // namespace zento
