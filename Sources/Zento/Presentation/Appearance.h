#pragma once

#include <QDBusVariant>
#include <QHash>
#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <utility>

namespace zento {

/// What the desktop asks of every program's look: dark or light, contrast, motion, size of text.
///
/// Read once and followed from then on through the desktop's settings portal, without waiting for
/// it; until it answers, and on a desktop that has none, the palette decides on dark or light and
/// the rest is as usual.
///
/// Threading: the main thread.
class Appearance : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool dark READ isDark WRITE setDark NOTIFY changed)
    Q_PROPERTY(bool highContrast READ isHighContrast WRITE setHighContrast NOTIFY changed)
    Q_PROPERTY(bool reducedMotion READ isMotionReduced WRITE setReducedMotion NOTIFY changed)
    Q_PROPERTY(double textScale READ textScale WRITE setTextScale NOTIFY changed)

public:
    explicit Appearance(QObject* parent = nullptr);

    bool isDark() const { return m_dark; }
    bool isHighContrast() const { return m_highContrast; }
    bool isMotionReduced() const { return m_reducedMotion; }
    double textScale() const { return m_textScale; } // [0.5, 3]

    void setDark(bool dark) { assign(m_dark, dark); }
    void setHighContrast(bool highContrast) { assign(m_highContrast, highContrast); }
    void setReducedMotion(bool reducedMotion) { assign(m_reducedMotion, reducedMotion); }
    void setTextScale(double scale);

    /// The name of the upright face that a family has for a weight, [1, 1000]; empty if it has none
    /// of its own.
    Q_INVOKABLE QString styleName(const QString& family, int weight);

    /// Asks the portal on the session bus, and listens to it.
    void followDesktop();

    /// Takes over one setting as the portal names it; others are passed over.
    void apply(const QString& group, const QString& key, const QVariant& value);

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private: // NOLINT(readability-redundant-access-specifiers): these are no slots
    template <typename Value>
    void assign(Value& member, Value value)
    {
        if (member == value)
            return;
        member = value;
        Q_EMIT changed();
    }

    bool m_dark = false;
    bool m_highContrast = false;
    bool m_reducedMotion = false;
    double m_textScale = 1;
    QHash<std::pair<QString, int>, QString> m_styleNames;
};

} // namespace zento
