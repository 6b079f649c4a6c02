#include "Zento/Model/SettingsModel.h"

#include "Zento/Model/AppSettingsNames.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"

#include <QString>
#include <QVariant>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace zento {

namespace {

// A value of the settings as QML has it, and back: false for one that does not fit.

template <typename T>
    requires std::is_arithmetic_v<T>
QVariant toVariant(T value)
{
    return value;
}

QVariant toVariant(const std::string& value)
{
    return QString::fromStdString(value);
}

QVariant toVariant(const std::optional<std::string>& value)
{
    return toVariant(value.value_or(""));
}

template <NamedEnum Enum>
QVariant toVariant(Enum value)
{
    const auto& [found, name] =
        *std::ranges::find(names(value), value, &std::pair<Enum, std::string_view>::first);
    return toVariant(std::string(name));
}

bool fromVariant(const QVariant& input, bool& value)
{
    value = input.toBool();
    return input.typeId() == QMetaType::Bool;
}

bool fromVariant(const QVariant& input, double& value)
{
    const bool isNumber = input.typeId() == QMetaType::Double || input.typeId() == QMetaType::Int;
    value = input.toDouble();
    return isNumber && std::isfinite(value);
}

bool fromVariant(const QVariant& input, int& value)
{
    double number = 0;
    const bool isNumber = fromVariant(input, number);
    value = input.toInt();
    return isNumber && number == value;
}

bool fromVariant(const QVariant& input, std::string& value)
{
    value = input.toString().toStdString();
    return input.typeId() == QMetaType::QString;
}

bool fromVariant(const QVariant& input, std::optional<std::string>& value)
{
    std::string text;
    const bool isText = fromVariant(input, text);
    value = text.empty() ? std::nullopt : std::optional(std::move(text));
    return isText;
}

template <NamedEnum Enum>
bool fromVariant(const QVariant& input, Enum& value)
{
    const std::string name = input.toString().toStdString();
    const auto found = std::ranges::find(
        names(value), std::string_view(name), &std::pair<Enum, std::string_view>::second);
    if (found == names(value).end()) {
        return false;
    }
    value = found->first;
    return true;
}

struct Key {
    std::string_view name;
    QVariant (*read)(const AppSettings&);
    bool (*write)(AppSettings&, const QVariant&);
};

template <auto Member>
constexpr Key key(std::string_view name)
{
    return {
        name,
        [](const AppSettings& settings) { return toVariant(settings.*Member); },
        [](AppSettings& settings, const QVariant& input) {
            return fromVariant(input, settings.*Member);
        }};
}

constexpr auto kKeys = std::to_array<Key>({
    key<&AppSettings::cameraIntensity>("cameraIntensity"),
    key<&AppSettings::typingSpeed>("typingSpeed"),
    key<&AppSettings::idleThreshold>("idleThreshold"),
    key<&AppSettings::cutIdle>("cutIdle"),
    key<&AppSettings::backgroundID>("backgroundID"),
    key<&AppSettings::customBackgroundPath>("customBackgroundPath"),
    key<&AppSettings::padding>("padding"),
    key<&AppSettings::cornerRadius>("cornerRadius"),
    key<&AppSettings::shadowOpacity>("shadowOpacity"),
    key<&AppSettings::cursorScale>("cursorScale"),
    key<&AppSettings::cursorAutoHide>("cursorAutoHide"),
    key<&AppSettings::showKeystrokes>("showKeystrokes"),
    key<&AppSettings::motionBlur>("motionBlur"),
    key<&AppSettings::pointerOnClick>("pointerOnClick"),
    key<&AppSettings::pointerStyle>("pointerStyle"),
    key<&AppSettings::clickSFX>("clickSFX"),
    key<&AppSettings::whooshSFX>("whooshSFX"),
    key<&AppSettings::musicGainDb>("musicGainDb"),
    key<&AppSettings::recordNarration>("recordNarration"),
    key<&AppSettings::showCaptions>("showCaptions"),
    key<&AppSettings::narrationGainDb>("narrationGainDb"),
    key<&AppSettings::recordSystemAudio>("recordSystemAudio"),
    key<&AppSettings::systemAudioGainDb>("systemAudioGainDb"),
    key<&AppSettings::semanticEdit>("semanticEdit"),
    key<&AppSettings::recordWebcam>("recordWebcam"),
    key<&AppSettings::webcamCorner>("webcamCorner"),
    key<&AppSettings::webcamSize>("webcamSize"),
    key<&AppSettings::webcamShape>("webcamShape"),
    key<&AppSettings::webcamRing>("webcamRing"),
    key<&AppSettings::webcamRoundness>("webcamRoundness"),
    key<&AppSettings::webcamMirror>("webcamMirror"),
    key<&AppSettings::webcamZoom>("webcamZoom"),
    key<&AppSettings::webcamShadow>("webcamShadow"),
    key<&AppSettings::webcamEnhance>("webcamEnhance"),
    key<&AppSettings::webcamBlurBackground>("webcamBlurBackground"),
    key<&AppSettings::autoCheckUpdates>("autoCheckUpdates"),
    key<&AppSettings::microphoneID>("microphoneID"),
    key<&AppSettings::cameraID>("cameraID"),
    key<&AppSettings::countdownSeconds>("countdownSeconds"),
    key<&AppSettings::muteNotifications>("muteNotifications"),
    key<&AppSettings::focusOnShortcut>("focusOnShortcut"),
    key<&AppSettings::focusOffShortcut>("focusOffShortcut"),
    key<&AppSettings::exportFormat>("exportFormat"),
    key<&AppSettings::revealAfterExport>("revealAfterExport"),
    key<&AppSettings::titleCard>("titleCard"),
    key<&AppSettings::endCard>("endCard"),
    key<&AppSettings::endCardHeading>("endCardHeading"),
    key<&AppSettings::endCardLine>("endCardLine"),
    key<&AppSettings::titleCardText>("titleCardText"),
    key<&AppSettings::cardDesign>("cardDesign"),
    key<&AppSettings::cardAccentHex>("cardAccentHex"),
    key<&AppSettings::cardSeconds>("cardSeconds"),
    key<&AppSettings::aspect>("aspect"),
    key<&AppSettings::resolution>("resolution"),
    key<&AppSettings::fps>("fps"),
    key<&AppSettings::cropToFill>("cropToFill"),
});

QString nameOf(const Key& key)
{
    return QString::fromLatin1(key.name.data(), static_cast<qsizetype>(key.name.size()));
}

/// The settings of a file. One that does not decode is kept: the next change overwrites it.
AppSettings read(const std::filesystem::path& file)
{
    try {
        return decodeSettings(readFile(file));
    } catch (const Error&) {
        std::filesystem::path kept = file;
        kept += ".unread";
        std::error_code ignored; // most often there is no file at all
        std::filesystem::copy_file(
            file, kept, std::filesystem::copy_options::overwrite_existing, ignored);
        return {};
    }
}

} // namespace

SettingsModel::SettingsModel(std::filesystem::path file, Worker& worker)
    : QQmlPropertyMap(this, nullptr)
    , m_file(std::move(file))
    , m_worker(worker)
    , m_settings(read(m_file))
{
    for (const Key& key : kKeys) {
        insert(nameOf(key), key.read(m_settings));
    }
    freeze();
    connect(this, &QQmlPropertyMap::valueChanged, this, [this] {
        Q_EMIT settingsChanged(m_before);
        save();
    });
}

QVariant SettingsModel::updateValue(const QString& name, const QVariant& input)
{
    m_before = m_settings;
    const std::string wanted = name.toStdString();
    const auto key = std::ranges::find(kKeys, std::string_view(wanted), &Key::name);
    if (key == kKeys.end()) {
        return {};
    }
    AppSettings changed = m_settings;
    if (key->write(changed, input)) {
        m_settings = std::move(changed);
    }
    return key->read(m_settings);
}

void SettingsModel::replace(AppSettings settings)
{
    if (settings == m_settings) {
        return;
    }
    const AppSettings before = std::exchange(m_settings, std::move(settings));
    for (const Key& key : kKeys) {
        insert(nameOf(key), key.read(m_settings));
    }
    Q_EMIT settingsChanged(before);
    save();
}

void SettingsModel::save()
{
    if (m_isSaving) {
        m_isDirty = true;
        return;
    }
    m_isSaving = true;
    m_isDirty = false;
    compute(
        m_worker,
        this,
        [settings = m_settings, file = m_file] { saveSettings(settings, file); },
        [this](const Outcome<void>&) { saved(); });
}

void SettingsModel::saved()
{
    m_isSaving = false;
    if (m_isDirty) {
        save();
        return;
    }
    for (const auto& done : std::exchange(m_onSaved, {})) {
        done();
    }
}

void SettingsModel::flush(std::function<void()> done)
{
    if (m_isSaving) {
        m_onSaved.push_back(std::move(done));
    } else {
        done();
    }
}

} // namespace zento
