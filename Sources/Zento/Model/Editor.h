#pragma once

#include "Zento/Model/EditSession.h"
#include "Zento/Model/LivePreview.h"
#include "Zento/Model/MusicTrack.h"
#include "Zento/Model/TimelineMedia.h"
#include "Zento/Model/TimelineModel.h"

#include <QObject>

#include <functional>
#include <optional>
#include <string>

namespace zento {

/// What the editor needs: threads of its own, so that nothing waits for anything else.
struct EditorServices {
    Worker& edits;    // loads, plans, saves
    Worker& analyses; // the beats of a song
    Worker& speech;
    Worker& proxies;
    Worker& pictures; // of the timeline
    Worker& sounds;   // its waveform, and that of the music
    ProxyMaker makeProxy;
    FrameComposerFactory makeComposer;
    std::function<std::optional<std::string>()> desktopImage; // on a worker; may block
    BundleAnalysers analysers;
};

/// The editor of the selected recording: its parts under one name.
///
/// Threading: the main thread.
class Editor : public QObject {
    Q_OBJECT
    Q_PROPERTY(zento::EditSession* session READ session CONSTANT)
    Q_PROPERTY(zento::LivePreview* preview READ preview CONSTANT)
    Q_PROPERTY(zento::TimelineModel* timeline READ timeline CONSTANT)
    Q_PROPERTY(zento::TimelineMedia* media READ media CONSTANT)
    Q_PROPERTY(zento::MusicTrack* musicTrack READ musicTrack CONSTANT)

public:
    Editor(Clock& clock, SettingsModel& settings, const EditorServices& services)
        : m_session(
              {.clock = clock,
               .edits = services.edits,
               .analyses = services.analyses,
               .speech = services.speech,
               .settings = settings,
               .desktopImage = services.desktopImage,
               .analysers = services.analysers})
        , m_preview(
              {.clock = clock,
               .proxies = services.proxies,
               .session = m_session,
               .makeProxy = services.makeProxy,
               .makeComposer = services.makeComposer})
        , m_timeline(m_session, m_preview)
        , m_media({.session = m_session, .pictures = services.pictures, .sounds = services.sounds})
        , m_musicTrack(m_session, services.sounds)
    {
    }

    EditSession* session() { return &m_session; }
    LivePreview* preview() { return &m_preview; }
    TimelineModel* timeline() { return &m_timeline; }
    TimelineMedia* media() { return &m_media; }
    MusicTrack* musicTrack() { return &m_musicTrack; }

private:
    EditSession m_session;
    LivePreview m_preview;
    TimelineModel m_timeline;
    TimelineMedia m_media;
    MusicTrack m_musicTrack;
};

} // namespace zento
