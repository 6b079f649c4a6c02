#pragma once

#include "Zento/Model/Clock.h"
#include "Zento/Model/PlannedFilm.h"
#include "Zento/Model/SettingsModel.h"
#include "Zento/Model/UndoHistory.h"
#include "Zento/Model/Worker.h"
#include "Zento/Timeline/ZoomEditing.h"

#include <QObject>
#include <QString>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace zento {

/// The ways to learn what a bundle holds. Each leaves its result in the bundle; those that are
/// empty are not gone. On a worker; they block long.
struct BundleAnalysers {
    std::function<std::vector<FramingHint>(const SessionBundle&, const std::stop_token&)>
        findRegions;
    std::function<std::vector<TranscriptSegment>(const SessionBundle&, const std::stop_token&)>
        transcribe;
    std::function<std::optional<SemanticNotes>(
        const SessionBundle&, const std::vector<TranscriptSegment>&, const std::stop_token&)>
        tellStory;
};

/// The edit of the selected recording: its saved edits and the settings as values, the plan that is
/// made of them in the background, undo, and the file "overrides.json".
///
/// Every change replans 80 ms after the last of a burst and saves 0.6 s after it. A plan of other
/// values than the present ones, or of another recording, never lands. A recording that is left
/// is saved first.
///
/// Threading: the main thread; the worker loads, plans and saves, one after the other.
class EditSession : public QObject {
    Q_OBJECT
    /// The bundle's path of the recording that is open; empty for none.
    Q_PROPERTY(QString path READ path NOTIFY opened)
    /// Its log and edits are there: it can be edited.
    Q_PROPERTY(bool isLoaded READ isLoaded NOTIFY loaded)
    Q_PROPERTY(bool canUndo READ canUndo NOTIFY historyChanged)
    Q_PROPERTY(bool canRedo READ canRedo NOTIFY historyChanged)
    /// What the next step of undo and redo is called; empty for none.
    Q_PROPERTY(QString undoName READ undoName NOTIFY historyChanged)
    Q_PROPERTY(QString redoName READ redoName NOTIFY historyChanged)
    /// There is a narration, and it is not being listened to.
    Q_PROPERTY(bool canTranscribe READ canTranscribe NOTIFY transcribing)
    Q_PROPERTY(bool isTranscribing READ isTranscribing NOTIFY transcribing)
    /// The film on the disk is older than the edit.
    Q_PROPERTY(bool isRenderStale READ isRenderStale NOTIFY renderStaleChanged)
    /// Writing true puts the notice of that away until the next recording is opened.
    Q_PROPERTY(bool isStaleDismissed READ isStaleDismissed WRITE setStaleDismissed NOTIFY
                   renderStaleChanged)

public:
    struct Ports {
        Clock& clock;
        Worker& edits;    // loads, plans, saves
        Worker& analyses; // the beats of a song, the regions around clicks
        Worker& speech;   // what the narration says, and the story
        SettingsModel& settings;
        std::function<std::optional<std::string>()> desktopImage; // on a worker; may block
        BundleAnalysers analysers = {};
    };

    explicit EditSession(Ports ports);
    ~EditSession() override;

    /// Empty closes. Undo never reaches across recordings.
    void open(const QString& bundlePath);

    QString path() const { return QString::fromStdString(m_path.string()); }
    const std::filesystem::path& bundlePath() const { return m_path; }
    bool isLoaded() const { return m_sources.bundle != nullptr; }
    std::shared_ptr<const SessionBundle> bundle() const { return m_sources.bundle; }
    const SavedOverrides& edits() const { return m_sources.edits; }
    const std::vector<TranscriptSegment>& transcript() const;
    const std::optional<EditPlanner::MusicInfo>& music() const { return m_sources.music; }
    double recorded() const; // seconds of the recording; 0 for none

    /// The film as last planned; null until there is one.
    std::shared_ptr<const PlannedFilm> film() const { return m_film; }

    /// Takes an edit over, unless nothing is loaded.
    void apply(EditStep step);

    /// The zoom level of an added zoom, by the settings.
    double addedZoomLevel() const;

    /// Replaces the text of a segment; an emptied one stays and still protects the speech. Writes
    /// "transcript.json". Nothing happens for an index beyond the transcript.
    void setWord(int index, const QString& text);

    /// Forgets what was heard, words of the user's as well, and listens anew.
    Q_INVOKABLE void retranscribe();
    bool canTranscribe() const;
    bool isTranscribing() const { return m_isTranscribing; }

    /// The music file came, changed or went: what was chosen of the one before is not of this one.
    Q_INVOKABLE void reloadMusic();

    bool canUndo() const { return !m_history.undoName().empty(); }
    bool canRedo() const { return !m_history.redoName().empty(); }
    QString undoName() const { return QString::fromStdString(m_history.undoName()); }
    QString redoName() const { return QString::fromStdString(m_history.redoName()); }
    Q_INVOKABLE void undo();
    Q_INVOKABLE void redo();

    bool isRenderStale() const { return m_isRenderStale; }
    bool isStaleDismissed() const { return m_isStaleDismissed; }
    void setStaleDismissed(bool isDismissed);
    /// Grows with every change of what the film is made from.
    std::uint64_t version() const { return m_version; }
    /// The words that the title card may show are others now.
    void titleChanged();
    /// The film of this recording was written with the edit of that version.
    void rendered(std::uint64_t version);

    /// Writes what is not saved yet, then calls `done`.
    void flush(std::function<void()> done);

Q_SIGNALS:
    void opened();
    void loaded();
    void loadFailed(const QString& sentence);
    void editsChanged();
    /// Music was analysed, or there is none any more.
    void musicChanged();
    void planned();
    /// The planner refused; the plan before stays.
    void planFailed(const QString& sentence);
    void historyChanged();
    void renderStaleChanged();
    void transcribing();

private:
    struct Loaded;

    void load();
    void take(Loaded loaded);
    UndoableState undoable() const;
    void restore(const UndoableState& state);
    void settingsChanged(const AppSettings& before);
    void changed();
    void planSoon();
    void plan();
    void save();
    void analyzeMusic();
    void setTranscript(std::vector<TranscriptSegment> transcript);
    void findRegions();
    void transcribeNarration();
    void tellStory();
    template <typename Result, typename Analyse>
    void learn(
        Worker& worker,
        Analyse analyse,
        Result BundleAnalyses::* part,
        std::function<void()> next = {});

    Ports m_ports;
    std::filesystem::path m_path;
    std::stop_source m_session; // stopped when another is opened
    FilmSources m_sources;
    std::shared_ptr<const PlannedFilm> m_film;
    UndoHistory m_history;
    std::uint64_t m_version = 0; // of what a plan is made from
    bool m_isPlanning = false;
    bool m_isRestoring = false;
    bool m_isUnsaved = false;
    bool m_isTranscribing = false;
    bool m_isRenderStale = false;
    bool m_isStaleDismissed = false;
    std::unique_ptr<Timer> m_planTimer;
    std::unique_ptr<Timer> m_saveTimer;
};

} // namespace zento
