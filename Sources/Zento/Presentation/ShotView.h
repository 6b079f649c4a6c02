#pragma once

#include <QImage>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace zento {

/// Shows a picture that is drawn anew all the time, over the whole item.
///
/// Threading: the main thread; the scene graph's where Qt says so.
class ShotView : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QImage picture READ picture WRITE setPicture NOTIFY pictureChanged)

public:
    explicit ShotView(QQuickItem* parent = nullptr);

    const QImage& picture() const { return m_picture; }
    void setPicture(const QImage& picture);

Q_SIGNALS:
    void pictureChanged();

protected:
    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData* data) override;

private:
    QImage m_picture;
    bool m_isNew = false;
};

} // namespace zento
