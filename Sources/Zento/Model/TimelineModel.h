#pragma once

#include "Zento/Model/EditSession.h"
#include "Zento/Model/LivePreview.h"
#include "Zento/Timeline/TimelineGestures.h"

#include <QObject>
#include <QString>
#include <QVariantList>

#include <optional>

namespace zento {

/// The edit timeline for QML: what it draws in points of its strip, and what presses, drags and
/// keys on it do. Until a replan lands the strip shows the plan before.
///
/// Zooms go by their identity, a source time. Threading: the main thread.
class TimelineModel : public QObject {
    Q_OBJECT
    /// Points; the strip's place in the window decides.
    Q_PROPERTY(double width READ width WRITE setWidth NOTIFY stripChanged)
    Q_PROPERTY(double duration READ duration NOTIFY stripChanged) // strip seconds; 0 for no plan
    Q_PROPERTY(double tickStep READ tickStep NOTIFY stripChanged) // seconds
    Q_PROPERTY(QVariantList cuts READ cuts NOTIFY stripChanged)   // {x, isOnBeat}
    /// x of the music's beats, or of every second, fourth … of them where they lie too close.
    Q_PROPERTY(QVariantList beats READ beats NOTIFY stripChanged)
    /// {id, x, width, zoom, title, enabled, added, edited, tint, time, timeEnd}, left to right.
    Q_PROPERTY(QVariantList zooms READ zooms NOTIFY stripChanged)
    /// {index, x, width, text, time, timeEnd}
    Q_PROPERTY(QVariantList words READ words NOTIFY stripChanged)
    Q_PROPERTY(double playheadX READ playheadX NOTIFY playheadChanged)
    Q_PROPERTY(double trimStartX READ trimStartX NOTIFY editsChanged)
    Q_PROPERTY(double trimEndX READ trimEndX NOTIFY editsChanged)
    Q_PROPERTY(double trimStartTime READ trimStartTime NOTIFY editsChanged) // strip seconds
    Q_PROPERTY(double trimEndTime READ trimEndTime NOTIFY editsChanged)
    Q_PROPERTY(bool isTrimmed READ isTrimmed NOTIFY editsChanged)
    Q_PROPERTY(int deletedZooms READ deletedZooms NOTIFY editsChanged)
    /// "start", "end" or "move" while the trim is dragged.
    Q_PROPERTY(QString trimDrag READ trimDrag NOTIFY dragChanged)
    /// The zoom that is dragged; −1 for none. It is drawn by `zoomDragDelta` points further right,
    /// or wider where it is stretched, and its edge is then at `zoomDragTime`.
    Q_PROPERTY(double draggedZoom READ draggedZoom NOTIFY dragChanged)
    Q_PROPERTY(bool isStretching READ isStretching NOTIFY dragChanged)
    Q_PROPERTY(double zoomDragDelta READ zoomDragDelta NOTIFY dragChanged)
    Q_PROPERTY(double zoomDragTime READ zoomDragTime NOTIFY dragChanged)

public:
    TimelineModel(EditSession& session, LivePreview& preview);

    double width() const { return m_width; }
    void setWidth(double width);
    double duration() const;
    double tickStep() const { return rulerStep(scale()); }
    // QML reads a list anew for each of its elements it looks at: these are made once a film.
    const QVariantList& cuts() const { return m_strip.cuts; }
    const QVariantList& beats() const { return m_strip.beats; }
    const QVariantList& zooms() const { return m_strip.zooms; }
    const QVariantList& words() const { return m_strip.words; }
    double playheadX() const;
    double trimStartX() const { return scale().position(trimStartTime()); }
    double trimEndX() const { return scale().position(trimEndTime()); }
    double trimStartTime() const { return scale().outputTime(m_session.edits().trimStart); }
    double trimEndTime() const { return trimEndOnStrip(scale(), m_session.edits()); }
    bool isTrimmed() const { return zento::isTrimmed(scale(), m_session.edits()); }
    int deletedZooms() const { return static_cast<int>(m_session.edits().deletedZooms.size()); }
    QString trimDrag() const;
    double draggedZoom() const { return m_zoomDrag ? m_zoomDrag->bar.sourceTime : -1; }
    bool isStretching() const;
    double zoomDragDelta() const { return m_zoomDrag ? m_zoomDrag->movement.deltaX : 0; }
    double zoomDragTime() const;

    Q_INVOKABLE double positionOf(double stripTime) const { return scale().position(stripTime); }
    Q_INVOKABLE double timeAt(double x) const { return scale().timeAt(x); }
    Q_INVOKABLE void seekTo(double x);

    Q_INVOKABLE void pressVideo(double x);
    Q_INVOKABLE void dragVideo(double x);
    Q_INVOKABLE void releaseVideo();
    Q_INVOKABLE void nudgeTrim(const QString& handle, double seconds); // "start", "end", "move"
    Q_INVOKABLE void resetTrim();

    /// The zoom under a place of the lane; −1 for none. Of two that overlap the later one.
    Q_INVOKABLE double zoomAt(double x) const;
    Q_INVOKABLE bool stretchesAt(double x) const; // a press there would stretch
    Q_INVOKABLE void beginZoomDrag(double x);
    Q_INVOKABLE void dragZoom(double x);
    Q_INVOKABLE void endZoomDrag();
    Q_INVOKABLE void cancelDrag(); // puts back what is dragged
    Q_INVOKABLE void nudgeZoom(double id, double seconds);
    Q_INVOKABLE void stretchZoom(double id, double seconds);
    Q_INVOKABLE void toggleZoom(double id);
    Q_INVOKABLE void setZoomLevel(double id, double level);
    Q_INVOKABLE void resetZoom(double id);
    Q_INVOKABLE void deleteZoom(double id);
    Q_INVOKABLE void addZoomAt(double x);
    Q_INVOKABLE void addZoomAtPlayhead();
    Q_INVOKABLE void restoreDeletedZooms();

    Q_INVOKABLE void setWord(int index, const QString& text) { m_session.setWord(index, text); }

Q_SIGNALS:
    void stripChanged(); // another film, or another width
    void editsChanged(); // the edits, or what their places follow from
    void playheadChanged();
    void dragChanged();

private:
    struct Strip {
        QVariantList cuts;
        QVariantList beats;
        QVariantList zooms;
        QVariantList words;
    };
    struct RunningTrim {
        TrimDrag drag;
        double startX = 0;
        SavedOverrides before;
    };
    struct RunningZoom {
        ZoomBar bar;
        double startX = 0;
        ZoomMovement movement;
    };

    void rebuild();
    TimelineScale scale() const;
    const ZoomBar* bar(double id) const;
    const ZoomBar* barAt(double x) const;
    void dropDrags();

    EditSession& m_session;
    LivePreview& m_preview;
    double m_width = 0;
    Strip m_strip;
    std::optional<RunningTrim> m_trimDrag;
    std::optional<RunningZoom> m_zoomDrag;
};

} // namespace zento
