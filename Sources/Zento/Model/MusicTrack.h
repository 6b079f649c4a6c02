#pragma once

#include "Zento/Model/EditSession.h"
#include "Zento/Model/Worker.h"
#include "Zento/Timeline/MusicSection.h"

#include <QList>
#include <QObject>
#include <QString>

#include <optional>
#include <stop_token>

namespace zento {

/// The music track of the recording that is open, as a strip of its own: its sound, its beats, and
/// the section of it that the film uses.
///
/// Threading: the main thread; the worker reads the sound.
class MusicTrack : public QObject {
    Q_OBJECT
    Q_PROPERTY(double width READ width WRITE setWidth NOTIFY changed) // points
    Q_PROPERTY(double duration READ duration NOTIFY changed)         // seconds; 0 until it is known
    Q_PROPERTY(double bpm READ bpm NOTIFY changed)                   // 0 until its beats are known
    Q_PROPERTY(QList<qreal> levels READ levels NOTIFY levelsChanged) // peaks, [0, 1]
    /// x of the beats, or of every second, fourth … where they would lie too close to tell apart.
    Q_PROPERTY(QList<qreal> beats READ beats NOTIFY changed)
    Q_PROPERTY(double startTime READ startTime NOTIFY changed) // seconds into the track
    Q_PROPERTY(double endTime READ endTime NOTIFY changed)
    Q_PROPERTY(double startX READ startX NOTIFY changed)
    Q_PROPERTY(double endX READ endX NOTIFY changed)
    Q_PROPERTY(bool isChosen READ isChosen NOTIFY changed) // less than the whole track
    Q_PROPERTY(bool isDragged READ isDragged NOTIFY changed)

public:
    static constexpr int kBins = 240;

    MusicTrack(EditSession& session, Worker& worker);
    ~MusicTrack() override;

    double width() const { return m_width; }
    void setWidth(double width);
    double duration() const;
    double bpm() const;
    const QList<qreal>& levels() const { return m_levels; }
    QList<qreal> beats() const;
    double startTime() const { return section().start; }
    double endTime() const { return section().end; }
    double startX() const { return scale().position(section().start); }
    double endX() const { return scale().position(section().end); }
    bool isChosen() const;
    bool isDragged() const { return m_drag.has_value(); }

    Q_INVOKABLE bool resizesAt(double x) const; // a press there takes an edge
    Q_INVOKABLE void press(double x);
    Q_INVOKABLE void drag(double x);
    Q_INVOKABLE void release();
    Q_INVOKABLE void cancelDrag();                               // puts back what is dragged
    Q_INVOKABLE void nudge(const QString& edge, double seconds); // "start", "end", "move"
    Q_INVOKABLE void reset();

Q_SIGNALS:
    void changed();
    void levelsChanged();

private:
    struct Running {
        SectionDrag drag;
        SavedOverrides before;
    };

    TrackScale scale() const { return {.width = m_width, .duration = duration()}; }
    MusicSection section() const;
    void refresh();
    void readLevels();

    EditSession& m_session;
    Worker& m_worker;
    double m_width = 0;
    std::optional<EditPlanner::MusicInfo> m_music; // whose levels are shown
    QList<qreal> m_levels;
    std::stop_source m_reading;
    std::optional<Running> m_drag;
};

} // namespace zento
