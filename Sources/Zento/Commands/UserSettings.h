#pragma once

#include "Zento/Model/AppSettings.h"
#include "ZentoCore/FileIO.h"

#include <optional>
#include <string>

namespace zento {

/// The settings of a named file, or the user's own. A file that does not decode gives the defaults;
/// a named one that cannot be read throws `Error`.
inline AppSettings userSettings(const std::optional<std::string>& file)
{
    if (!file) {
        return loadSettings(AppSettings::fileURL());
    }
    readFile(*file); // a mistyped name is worth a sentence
    return loadSettings(*file);
}

} // namespace zento
