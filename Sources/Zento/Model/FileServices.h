#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace zento {

/// What the desktop does with files. None of it blocks.
///
/// Threading: the main thread.
class FileServices {
public:
    virtual ~FileServices() = default;

    /// Shows the file, selected, in the file manager.
    virtual void reveal(const std::filesystem::path& file) = 0;

    /// Puts the file itself on the clipboard.
    virtual void copyToClipboard(const std::filesystem::path& file) = 0;

    virtual void openUrl(const std::string& url) = 0;

    /// Lets the user choose an application to open the file with. `failed` gets a sentence.
    virtual void
    openWith(const std::filesystem::path& file, std::function<void(std::string)> failed) = 0;

    /// A new e-mail with the file attached. `failed` gets a sentence.
    virtual void composeMail(
        const std::filesystem::path& file,
        const std::string& subject,
        std::function<void(std::string)> failed) = 0;
};

} // namespace zento
