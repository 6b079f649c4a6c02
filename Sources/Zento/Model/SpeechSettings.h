#pragma once

#include "Zento/Model/Clock.h"
#include "Zento/Model/Messages.h"
#include "Zento/Model/SpeechModelFetch.h"
#include "Zento/Model/Worker.h"

#include <QObject>
#include <QString>
#include <QVariantList>

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>

namespace zento {

/// Where speech models come from and go to.
struct SpeechModelPlace {
    std::filesystem::path file; // of the one that is used
    std::string site;           // those to fetch lie below it; empty: none are fetched
    bool canUseModels = false;  // this program can, on this processor
    std::function<bool()> hasBasicEngine = [] { return false; };    // on a worker; may block
    std::function<void(const std::filesystem::path&)> requireModel; // throws `Error` for another
};

/// What hears the narration: which engine, how good to expect it, and the model the user may fetch
/// or pick for a better one.
///
/// Threading: the main thread; files and the network are the worker's.
class SpeechSettings : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString engine READ engine NOTIFY changed)
    /// How good to expect it, and where it runs; sentences.
    Q_PROPERTY(QString expectation READ expectation NOTIFY changed)
    /// A model of the user's is there, whether or not it can be used.
    Q_PROPERTY(bool hasModel READ hasModel NOTIFY changed)
    /// This program can use one, on this processor.
    Q_PROPERTY(bool canUseModels READ canUseModels CONSTANT)
    /// The models that can be fetched: id, name, megabytes. Empty where this program cannot use
    /// one, or knows of no place.
    Q_PROPERTY(QVariantList offers READ offers CONSTANT)
    Q_PROPERTY(bool isFetching READ isFetching NOTIFY changed)
    Q_PROPERTY(double progress READ progress NOTIFY progressed) // of the fetch, [0, 1]

public:
    struct Ports {
        Clock& clock;
        Worker& worker;
        Messages& messages;
        SpeechModelPlace place;
    };

    explicit SpeechSettings(Ports ports);
    ~SpeechSettings() override; // a fetch under way is broken off; it can be continued

    QString engine() const;
    QString expectation() const;
    bool hasModel() const { return !m_state.model.isEmpty(); }
    bool canUseModels() const { return m_ports.place.canUseModels; }
    QVariantList offers() const;
    bool isFetching() const { return m_isFetching; }
    double progress() const { return *m_progress; }

    /// Looks whether a model is there.
    Q_INVOKABLE void refresh();
    /// Fetches one of the offers. To be called when the user asked for it only.
    Q_INVOKABLE void fetch(const QString& id);
    Q_INVOKABLE void cancelFetch();
    /// Takes a file of the user's, which stays where it is.
    Q_INVOKABLE void useFile(const QString& path);
    /// Goes back to the built-in engine. A file of the user's is left alone.
    Q_INVOKABLE void removeModel();

Q_SIGNALS:
    void changed();
    void progressed();

private:
    enum class Engine { Unknown, Model, Basic, LoudnessAlone };
    struct State {
        Engine engine = Engine::Unknown;
        QString model; // its file's name; empty without one
    };
    static State look(const SpeechModelPlace& place);

    void change(std::function<void()> work, std::function<void()> ended = {});

    Ports m_ports;
    State m_state;
    std::stop_source m_fetch;
    std::shared_ptr<std::atomic<double>> m_progress; // written by the worker
    std::unique_ptr<Timer> m_progressTimer;
    bool m_isFetching = false;
};

} // namespace zento
