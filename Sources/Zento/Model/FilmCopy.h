#pragma once

#include "Zento/Model/EditSession.h"
#include "Zento/Model/LanguageSettings.h"
#include "Zento/Model/Messages.h"
#include "ZentoCore/Analyses.h"

#include <QObject>
#include <QString>

#include <optional>
#include <stop_token>

namespace zento {

/// The words that go with the film of the recording that is open: title, caption and post. They are
/// written on request, can be changed, and are kept in the bundle when the user says so; a title
/// that is kept is the title card's, unless the settings have one.
///
/// Threading: the main thread; models and files are the workers'.
class FilmCopy : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString title READ title WRITE setTitle NOTIFY changed)
    Q_PROPERTY(QString caption READ caption WRITE setCaption NOTIFY changed)
    Q_PROPERTY(QString post READ post WRITE setPost NOTIFY changed)
    Q_PROPERTY(bool isWritten READ isWritten NOTIFY changed) // there are words
    Q_PROPERTY(bool isKept READ isKept NOTIFY changed)       // as they stand
    Q_PROPERTY(bool isWriting READ isWriting NOTIFY changed)
    Q_PROPERTY(bool canWrite READ canWrite NOTIFY changed)
    /// A sentence on who wrote them; empty without words.
    Q_PROPERTY(QString origin READ origin NOTIFY changed)

public:
    struct Ports {
        EditSession& session;
        Worker& files;
        Worker& language; // writes
        Messages& messages;
        QSettings& defaults; // the choice of the model
        ModelSearch findModel;
    };

    explicit FilmCopy(Ports ports);
    ~FilmCopy() override;

    QString title() const { return text(&VideoCopy::title); }
    QString caption() const { return text(&VideoCopy::caption); }
    QString post() const { return text(&VideoCopy::socialPost); }
    bool isWritten() const { return m_copy.has_value(); }
    bool isKept() const { return m_copy && m_copy == m_kept; }
    bool isWriting() const { return m_isWriting; }
    bool canWrite() const { return m_ports.session.film() != nullptr && !m_isWriting; }
    QString origin() const;
    void setTitle(const QString& words) { setText(&VideoCopy::title, words); }
    void setCaption(const QString& words) { setText(&VideoCopy::caption, words); }
    void setPost(const QString& words) { setText(&VideoCopy::socialPost, words); }

    /// Writes them anew, by the language model or by templates.
    Q_INVOKABLE void write();
    /// Keeps them in the bundle as they stand.
    Q_INVOKABLE void keep();

Q_SIGNALS:
    void changed();

private:
    QString text(std::string VideoCopy::* part) const;
    void setText(std::string VideoCopy::* part, const QString& words);
    void read();

    Ports m_ports;
    std::stop_source m_session; // stopped when another recording is opened
    std::optional<VideoCopy> m_copy;
    std::optional<VideoCopy> m_kept;
    bool m_isWriting = false;
};

} // namespace zento
