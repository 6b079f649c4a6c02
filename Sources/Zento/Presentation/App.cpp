#include "Zento/Presentation/App.h"

#include "Zento/Model/AppSettings.h"

#include <QEvent>
#include <QJsonDocument>
#include <QJsonObject>

namespace zento {

void App::setModel(QObject* model)
{
    m_model = model;
    if (model != nullptr)
        model->installEventFilter(this);
    Q_EMIT modelChanged();
    Q_EMIT desktopChanged();
}

bool App::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_model && event->type() == QEvent::DynamicPropertyChange)
        Q_EMIT desktopChanged();
    return QObject::eventFilter(watched, event);
}

QVariant App::defaults()
{
    const QByteArray json = QByteArray::fromStdString(encodeSettings(AppSettings()));
    return QJsonDocument::fromJson(json).object().toVariantMap();
}

} // namespace zento
