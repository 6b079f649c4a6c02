#include "Zento/Desktop/FocusActions.h"

#include "ZentoCore/Text.h"
#include "ZentoCore/UserFolders.h"

#include <QProcess>
#include <QString>
#include <QStringList>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <set>
#include <system_error>

namespace zento {

namespace {

/// How a desktop is told to be quiet and to speak again.
struct Switch {
    std::string_view desktop; // a part of XDG_CURRENT_DESKTOP
    std::array<const char*, 6> quiet;
    std::array<const char*, 6> loud;
};

constexpr std::array<Switch, 5> kSwitches{{
    {"GNOME",
     {"gsettings", "set", "org.gnome.desktop.notifications", "show-banners", "false"},
     {"gsettings", "set", "org.gnome.desktop.notifications", "show-banners", "true"}},
    {"Unity",
     {"gsettings", "set", "org.gnome.desktop.notifications", "show-banners", "false"},
     {"gsettings", "set", "org.gnome.desktop.notifications", "show-banners", "true"}},
    {"Cinnamon",
     {"gsettings", "set", "org.cinnamon.desktop.notifications", "display-notifications", "false"},
     {"gsettings", "set", "org.cinnamon.desktop.notifications", "display-notifications", "true"}},
    {"MATE",
     {"gsettings", "set", "org.mate.NotificationDaemon", "do-not-disturb", "true"},
     {"gsettings", "set", "org.mate.NotificationDaemon", "do-not-disturb", "false"}},
    {"XFCE",
     {"xfconf-query",
      "--channel=xfce4-notifyd",
      "--property=/do-not-disturb",
      "--create",
      "--type=bool",
      "--set=true"},
     {"xfconf-query",
      "--channel=xfce4-notifyd",
      "--property=/do-not-disturb",
      "--create",
      "--type=bool",
      "--set=false"}},
}};

bool isExecutable(const std::filesystem::path& file)
{
    std::error_code ignored;
    return std::filesystem::is_regular_file(file, ignored) && ::access(file.c_str(), X_OK) == 0;
}

} // namespace

std::filesystem::path FocusActions::folder()
{
    return userConfigFolder() / "Zento" / "Actions";
}

std::vector<std::string> FocusActions::command(
    const std::string& name, const std::filesystem::path& folder, std::string_view desktop)
{
    const std::string trimmedName(trimmed(name));
    const bool isName = !trimmedName.empty() && !trimmedName.contains('/') && trimmedName != "."
                        && trimmedName != "..";
    if (isName && isExecutable(folder / trimmedName)) {
        return {(folder / trimmedName).string()};
    }
    if (trimmedName != kBuiltInOn && trimmedName != kBuiltInOff) {
        return {};
    }
    const auto found = std::ranges::find_if(
        kSwitches, [&](const Switch& any) { return desktop.contains(any.desktop); });
    std::vector<std::string> words;
    if (found != kSwitches.end()) {
        for (const char* word : trimmedName == kBuiltInOn ? found->quiet : found->loud) {
            if (word != nullptr) {
                words.emplace_back(word);
            }
        }
    }
    return words;
}

void FocusActions::run(const std::string& name)
{
    const std::string desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP").toStdString();
    const std::vector<std::string> words = command(name, folder(), desktop);
    if (words.empty()) {
        return;
    }
    QProcess process;
    process.setProgram(QString::fromStdString(words.front()));
    QStringList arguments;
    std::ranges::transform(
        words.begin() + 1, words.end(), std::back_inserter(arguments), QString::fromStdString);
    process.setArguments(arguments);
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.startDetached();
}

std::vector<std::string> FocusActions::installed(const std::filesystem::path& folder)
{
    std::set<std::string> names{std::string(kBuiltInOn), std::string(kBuiltInOff)};
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    while (!error && entry != std::filesystem::directory_iterator()) {
        if (isExecutable(entry->path())) {
            names.insert(entry->path().filename().string());
        }
        entry.increment(error);
    }
    return {names.begin(), names.end()};
}

} // namespace zento
