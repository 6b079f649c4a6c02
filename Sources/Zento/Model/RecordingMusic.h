#pragma once

#include "Zento/Model/Clock.h"
#include "Zento/Model/Messages.h"
#include "Zento/Model/Worker.h"
#include "Zento/Music/BundleMusic.h"
#include "Zento/Music/MusicSearch.h"

#include <QObject>
#include <QString>
#include <QVariantList>

#include <atomic>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace zento {

/// The music of the recording that is open, and the three ways to some: a file of the user's, a
/// track made here, one found online.
///
/// Threading: the main thread; files and the network are the worker's.
class RecordingMusic : public QObject {
    Q_OBJECT
    /// What it is called; empty for none.
    Q_PROPERTY(QString name READ name NOTIFY musicChanged)
    Q_PROPERTY(double duration READ duration NOTIFY musicChanged) // seconds
    /// The text that has to go with the film; empty for none.
    Q_PROPERTY(QString credit READ credit NOTIFY musicChanged)
    /// The same as one line, without its addresses: for the end card.
    Q_PROPERTY(QString creditLine READ creditLine NOTIFY musicChanged)
    /// The tracks made here: id, name, bpm, and progress, from 0 to 1, −1 while it is not being
    /// made.
    Q_PROPERTY(QVariantList library READ library NOTIFY libraryChanged)
    /// What was found: id, title, creator, duration, license, url.
    Q_PROPERTY(QVariantList results READ results NOTIFY searchChanged)
    /// What there is to say of the last thing done in the search; empty for nothing.
    Q_PROPERTY(QString note READ note NOTIFY searchChanged)
    Q_PROPERTY(bool isSearching READ isSearching NOTIFY searchChanged)
    /// The id of the track that is fetched, and of the one in the film; empty for none.
    Q_PROPERTY(QString usingTrackID READ usingTrackID NOTIFY searchChanged)
    /// The id of the found track that is previewed, one at a time; empty for none. It is heard once
    /// enough of it has come.
    Q_PROPERTY(QString previewingID READ previewingID NOTIFY searchChanged)
    Q_PROPERTY(bool isPreviewHeard READ isPreviewHeard NOTIFY searchChanged)
    Q_PROPERTY(QString usedTrackID READ usedTrackID NOTIFY musicChanged)

public:
    /// The ways out, which block. The real ones are `MusicLibrary::ensure` and `MusicSearch`.
    struct Sources {
        std::function<std::filesystem::path(
            const std::string& id,
            const std::function<void(double)>& onProgress,
            const std::stop_token& stop)>
            made;
        std::function<std::vector<OnlineTrack>(const std::string& query, const std::stop_token&)>
            search;
        std::function<std::filesystem::path(const OnlineTrack&, const std::stop_token&)> download;
        std::function<std::string(const OnlineTrack&)> credit;
        /// Plays it to the end, or until `stop`; `onHeard` when its first sound is on its way.
        std::function<void(
            const OnlineTrack&, const std::function<void()>& onHeard, const std::stop_token&)>
            play;
    };
    struct Ports {
        Clock& clock;
        Worker& worker;
        Worker& player; // plays previews
        Messages& messages;
        Sources sources;
    };

    explicit RecordingMusic(Ports ports);
    ~RecordingMusic() override; // what is under way is cancelled

    /// The bundle of the recording that is open; empty for none.
    void open(const QString& bundle);

    QString name() const { return m_name; }
    double duration() const { return m_music.duration; }
    QString credit() const { return QString::fromStdString(m_music.credit); }
    QString creditLine() const;
    QVariantList library() const;
    QVariantList results() const;
    QString note() const { return m_note; }
    bool isSearching() const { return m_isSearching; }
    QString usingTrackID() const { return m_using; }
    QString usedTrackID() const { return m_used; }
    QString previewingID() const { return m_previewing; }
    bool isPreviewHeard() const { return m_isPreviewHeard; }

    Q_INVOKABLE void useFile(const QString& path);
    Q_INVOKABLE void useMade(const QString& id);
    Q_INVOKABLE void useFound(const QString& id);
    Q_INVOKABLE void remove();
    /// Plays a found track from where it lies, instead of the one that plays; once more stops it.
    Q_INVOKABLE void togglePreview(const QString& id);
    Q_INVOKABLE void stopPreview();
    Q_INVOKABLE void runSearch(const QString& query);
    /// The sheet closed: what is searched or fetched is given up, what was found is forgotten.
    Q_INVOKABLE void endSearch();

Q_SIGNALS:
    void musicChanged();
    void libraryChanged();
    void searchChanged();
    /// The bundle's music file came, changed or went.
    void fileChanged();

private:
    struct Chosen { // what becomes the music
        QString name;
        QString id; // of a track; empty for a file
        std::string credit;
    };

    Ports m_ports;
    std::filesystem::path m_bundle;
    std::stop_source m_session; // stopped when another recording is opened
    std::stop_source m_search;
    std::stop_source m_preview;
    BundleMusic::Description m_music;
    QString m_name;
    QString m_used;
    // Of tracks in the making, told by the thread that makes them.
    std::map<std::string, std::shared_ptr<std::atomic<double>>> m_progress;
    std::unique_ptr<Timer> m_progressTimer;
    std::unique_ptr<Timer> m_previewTimer; // while the preview is not heard yet
    std::vector<OnlineTrack> m_results;
    QString m_note;
    QString m_using;
    QString m_previewing;
    bool m_isSearching = false;
    bool m_isPreviewHeard = false;

    void
    put(std::function<std::filesystem::path()> fetch,
        Chosen chosen,
        std::function<void(bool)> done);
    void take(const BundleMusic::Description& music, const QString& name, const QString& id);
    const OnlineTrack* found(const QString& id) const;
    void setNote(const QString& note);
};

/// The real ways to music.
RecordingMusic::Sources musicSources(const MusicService& service);

} // namespace zento
