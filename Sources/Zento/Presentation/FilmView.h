#pragma once

#include "Zento/Model/LivePreview.h"

#include <QPointer>
#include <QQuickItem>

namespace zento {

/// The frame under the playhead of a `LivePreview`, filling the item. Empty without one.
///
/// Threading: the main thread; the scene graph's thread copies the image while that one waits.
class FilmView : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QObject* preview READ preview WRITE setPreview NOTIFY previewChanged)

public:
    explicit FilmView(QQuickItem* parent = nullptr);

    QObject* preview() const { return m_preview; }
    void setPreview(QObject* preview);

Q_SIGNALS:
    void previewChanged();
    /// A frame that was new reached the scene graph.
    void shown();

protected:
    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData* data) override;

private:
    QPointer<LivePreview> m_preview;
    bool m_isNew = false; // the image since the last paint
};

} // namespace zento
