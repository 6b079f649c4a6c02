#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace zento {

/// The words by which the desktop knows again what its user has allowed to be shown, so that it
/// does not ask twice. A file of the user's that nobody else may read.
///
/// A word serves once: what comes back with the next use takes its place. A file that cannot be
/// read or written costs a dialog and nothing else.
///
/// Threading: safe as far as files are.
class RestoreTokens {
public:
    RestoreTokens(); // in the standard file
    explicit RestoreTokens(std::filesystem::path file);

    static std::filesystem::path standardFile(); // $XDG_STATE_HOME/Zento/screens

    /// `source`: what was chosen, on one line and without tabs.
    std::optional<std::string> find(const std::string& source) const;

    /// Nothing forgets it.
    void keep(const std::string& source, const std::optional<std::string>& token) const;

private:
    std::filesystem::path m_file;
};

} // namespace zento
