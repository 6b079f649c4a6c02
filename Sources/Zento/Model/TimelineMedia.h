#pragma once

#include "Zento/Model/EditSession.h"
#include "Zento/Model/Worker.h"

#include <QImage>
#include <QObject>

#include <memory>
#include <stop_token>
#include <vector>

namespace zento {

/// The pictures and the waveform of the timeline, made in the background when the strip changed
/// enough for them to be others.
///
/// Threading: the main thread; each worker makes one kind.
class TimelineMedia : public QObject {
    Q_OBJECT

public:
    static constexpr int kThumbnails = 18;
    static constexpr int kThumbnailHeight = 120; // pixels
    static constexpr int kBins = 480;

    struct Ports {
        EditSession& session;
        Worker& pictures;
        Worker& sounds;
    };

    explicit TimelineMedia(Ports ports);
    ~TimelineMedia() override;

    /// At most `kThumbnails`, in order; a time that cannot be read is left out.
    const std::vector<QImage>& thumbnails() const { return m_thumbnails; }

    /// `kBins` peaks over the strip, [0, 1]; empty for a film without sound.
    const std::vector<float>& waveform() const { return m_waveform; }

Q_SIGNALS:
    void thumbnailsChanged();
    void waveformChanged();

private:
    void refresh();
    void refreshThumbnails();
    void refreshWaveform();

    Ports m_ports;
    std::filesystem::path m_bundle; // of what is shown
    std::vector<double> m_times;    // of the pictures, source seconds
    std::vector<QImage> m_thumbnails;
    std::vector<float> m_waveform;
    std::shared_ptr<const PlannedFilm> m_heard; // what the waveform is of
    std::stop_source m_pictureJob;
    std::stop_source m_soundJob;
};

} // namespace zento
