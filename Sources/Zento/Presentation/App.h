#pragma once

#include <QObject>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

namespace zento {

/// The application's model, as the QML sees it: its parts under short names. What stands behind
/// them is an `AppModel`, or whatever has the same properties; it is given before anything is
/// loaded and outlives the engine.
///
/// Threading: the main thread.
class App : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QVariant model READ model NOTIFY modelChanged)
    Q_PROPERTY(QVariant recording READ recording NOTIFY modelChanged)
    Q_PROPERTY(QVariant library READ library NOTIFY modelChanged)
    Q_PROPERTY(QVariant settings READ settings NOTIFY modelChanged)
    Q_PROPERTY(QVariant shortcuts READ shortcuts NOTIFY modelChanged)
    Q_PROPERTY(QVariant permissions READ permissions NOTIFY modelChanged)
    Q_PROPERTY(QVariant messages READ messages NOTIFY modelChanged)
    Q_PROPERTY(QVariant question READ question NOTIFY modelChanged)
    Q_PROPERTY(QVariant filmExport READ filmExport NOTIFY modelChanged)
    Q_PROPERTY(QVariant sharing READ sharing NOTIFY modelChanged)
    Q_PROPERTY(QVariant updates READ updates NOTIFY modelChanged)
    Q_PROPERTY(QVariant windows READ windows NOTIFY modelChanged)
    Q_PROPERTY(QVariant editor READ editor NOTIFY modelChanged)
    Q_PROPERTY(QVariant music READ music NOTIFY modelChanged)
    Q_PROPERTY(QVariant language READ language NOTIFY modelChanged)
    Q_PROPERTY(QVariant speech READ speech NOTIFY modelChanged)
    Q_PROPERTY(QVariant filmCopy READ filmCopy NOTIFY modelChanged)
    /// What the screen is recorded by: "X11", "Wayland"; absent until it has been found out.
    Q_PROPERTY(QVariant desktop READ desktop NOTIFY desktopChanged)
    /// What lets a user's programs see clicks and keys on a Wayland desktop, from the next login
    /// on.
    Q_PROPERTY(QString inputCommand READ inputCommand CONSTANT)
    /// What the settings are on a fresh install, by their keys.
    Q_PROPERTY(QVariant defaults READ defaults CONSTANT)

public:
    using QObject::QObject;

    void setModel(QObject* model);

    QVariant model() const { return QVariant::fromValue(m_model); }
    QVariant recording() const { return part("recording"); }
    QVariant library() const { return part("library"); }
    QVariant settings() const { return part("settings"); }
    QVariant shortcuts() const { return part("shortcuts"); }
    QVariant permissions() const { return part("permissions"); }
    QVariant messages() const { return part("messages"); }
    QVariant question() const { return part("question"); }
    QVariant filmExport() const { return part("filmExport"); }
    QVariant sharing() const { return part("sharing"); }
    QVariant updates() const { return part("updates"); }
    QVariant windows() const { return part("windows"); }
    QVariant editor() const { return part("editor"); }
    QVariant music() const { return part("music"); }
    QVariant language() const { return part("language"); }
    QVariant speech() const { return part("speech"); }
    QVariant filmCopy() const { return part("filmCopy"); }
    QVariant desktop() const { return part("desktop"); }
    static QVariant defaults();
    static QString inputCommand() { return QStringLiteral("sudo usermod -aG input $USER"); }

Q_SIGNALS:
    void modelChanged();
    void desktopChanged();

protected:
    /// The desktop is a property the model gets once it is known.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QVariant part(const char* name) const { return m_model ? m_model->property(name) : QVariant(); }

    QObject* m_model = nullptr;
};

} // namespace zento
