#pragma once

#include "Zento/Model/AppSettings.h"
#include "Zento/Model/Worker.h"

#include <QQmlPropertyMap>

#include <filesystem>
#include <functional>
#include <vector>

namespace zento {

/// The live settings, with a property for every key but `shortcuts`, named as the key: numbers,
/// booleans and strings; an enumeration is its string of the settings file ("balanced", "16:9",
/// "1080p"). A value of another type, or a string that is none of an enumeration's, changes
/// nothing. An absent `customBackgroundPath` is the empty string.
///
/// Every change is written to the file in the background, whole; changes that come while one is
/// being written are written together. A file that cannot be written is passed over: the settings
/// stay live for this run. One that did not decode is kept beside it as "settings.json.unread".
///
/// Threading: the main thread.
class SettingsModel : public QQmlPropertyMap {
    Q_OBJECT

public:
    /// Reads the file; it is small, and nothing can be shown before it is known.
    SettingsModel(std::filesystem::path file, Worker& worker);

    const AppSettings& current() const { return m_settings; }

    /// Replaces the whole record, as an undo does.
    void replace(AppSettings settings);

    /// Calls `done` when what was changed last is in the file; for the end of the program.
    void flush(std::function<void()> done);

Q_SIGNALS:
    /// One or more values are others than before.
    void settingsChanged(const zento::AppSettings& before);

protected:
    QVariant updateValue(const QString& name, const QVariant& input) override;

private:
    void save();
    void saved();

    std::filesystem::path m_file;
    Worker& m_worker;
    AppSettings m_settings;
    AppSettings m_before; // of the change that is being written into the map
    bool m_isSaving = false;
    bool m_isDirty = false; // changed again since the save under way began
    std::vector<std::function<void()>> m_onSaved;
};

} // namespace zento
