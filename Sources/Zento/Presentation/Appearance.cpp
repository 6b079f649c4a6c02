#include "Zento/Presentation/Appearance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPalette>

#include <algorithm>

namespace zento {
namespace {

using Settings = QMap<QString, QVariantMap>;

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString kAppearance = QStringLiteral("org.freedesktop.appearance");
const QString kInterfaceSettings = QStringLiteral("org.gnome.desktop.interface");
const QString kAccessSettings = QStringLiteral("org.gnome.desktop.a11y.interface");

bool hasDarkPalette()
{
    return qGuiApp && QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
}

} // namespace

Appearance::Appearance(QObject* parent)
    : QObject(parent)
    , m_dark(hasDarkPalette())
{
}

void Appearance::setTextScale(double scale)
{
    assign(m_textScale, std::clamp(scale, 0.5, 3.0));
}

QString Appearance::styleName(const QString& family, int weight)
{
    const std::pair key(family, weight);
    if (const auto known = m_styleNames.constFind(key); known != m_styleNames.cend())
        return *known;
    QString found;
    for (const QString& style : QFontDatabase::styles(family))
        if (QFontDatabase::weight(family, style) == weight && !QFontDatabase::italic(family, style))
            found = style;
    return m_styleNames[key] = found;
}

void Appearance::apply(const QString& group, const QString& key, const QVariant& value)
{
    const QString name = group + QLatin1Char('/') + key;
    // 1 is "prefer dark", 2 "prefer light", 0 no preference.
    if (name == kAppearance + QStringLiteral("/color-scheme") && value.toUInt() != 0)
        setDark(value.toUInt() == 1);
    else if (name == kAppearance + QStringLiteral("/contrast"))
        setHighContrast(value.toUInt() == 1);
    else if (name == kAccessSettings + QStringLiteral("/high-contrast"))
        setHighContrast(value.toBool());
    else if (name == kInterfaceSettings + QStringLiteral("/enable-animations"))
        setReducedMotion(!value.toBool());
    else if (name == kInterfaceSettings + QStringLiteral("/text-scaling-factor"))
        setTextScale(value.toDouble());
}

void Appearance::followDesktop()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    qDBusRegisterMetaType<Settings>();
    bus.connect(
        kService,
        kPath,
        kInterface,
        QStringLiteral("SettingChanged"),
        this,
        SLOT(settingChanged(QString, QString, QDBusVariant)));

    QDBusMessage call =
        QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("ReadAll"));
    call << QStringList{kAppearance, kInterfaceSettings, kAccessSettings};
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<Settings> reply = *answer;
        if (reply.isError())
            return;
        const Settings groups = reply.value();
        for (auto group = groups.cbegin(); group != groups.cend(); ++group)
            for (auto entry = group->cbegin(); entry != group->cend(); ++entry)
                apply(group.key(), entry.key(), entry.value());
    });
}

void Appearance::settingChanged(const QString& group, const QString& key, const QDBusVariant& value)
{
    apply(group, key, value.variant());
}

} // namespace zento
