#include "ZentoCapture/Backends/RestoreTokens.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/UserFolders.h"

#include <map>
#include <sstream>
#include <system_error>
#include <utility>

namespace zento {

namespace {

using Tokens = std::map<std::string, std::string>;

/// A line each: the source, a tab, the token.
Tokens read(const std::filesystem::path& file)
{
    Tokens tokens;
    try {
        std::istringstream lines(readFile(file));
        for (std::string line; std::getline(lines, line);) {
            const std::size_t tab = line.find('\t');
            if (tab != std::string::npos && tab + 1 < line.size()) {
                tokens[line.substr(0, tab)] = line.substr(tab + 1);
            }
        }
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): there are none yet
    }
    return tokens;
}

void write(const std::filesystem::path& file, const Tokens& tokens)
try {
    using std::filesystem::perms;
    std::string text;
    for (const auto& [source, token] : tokens) {
        text.append(source).append("\t").append(token).append("\n");
    }
    makeFolder(file.parent_path());
    std::filesystem::path fresh = file;
    fresh += ".new";
    writeFile(fresh, "");
    std::filesystem::permissions(fresh, perms::owner_read | perms::owner_write);
    writeFile(fresh, text);
    replaceFile(fresh, file);
} catch (const Error&) { // NOLINT(bugprone-empty-catch): the desktop will ask again
} catch (const std::filesystem::filesystem_error&) { // NOLINT(bugprone-empty-catch): the same
}

} // namespace

RestoreTokens::RestoreTokens()
    : m_file(standardFile())
{
}

RestoreTokens::RestoreTokens(std::filesystem::path file)
    : m_file(std::move(file))
{
}

std::filesystem::path RestoreTokens::standardFile()
{
    return userStateFolder() / "Zento" / "screens";
}

std::optional<std::string> RestoreTokens::find(const std::string& source) const
{
    const Tokens tokens = read(m_file);
    const auto found = tokens.find(source);
    return found == tokens.end() ? std::nullopt : std::optional(found->second);
}

void RestoreTokens::keep(const std::string& source, const std::optional<std::string>& token) const
{
    Tokens tokens = read(m_file);
    const Tokens before = tokens;
    if (token && !token->empty()) {
        tokens[source] = *token;
    } else {
        tokens.erase(source);
    }
    if (tokens != before) {
        write(m_file, tokens);
    }
}

} // namespace zento
