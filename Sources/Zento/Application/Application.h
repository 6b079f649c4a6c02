#pragma once

#include "ZentoCapture/ScreenshotTool.h"

#include <filesystem>
#include <optional>

namespace zento {

/// Opens the window and runs until the program ends; or, where one runs already, raises that.
/// Returns the program's exit status. Errors go to standard error in one sentence.
int runApplication(int argc, char** argv);

/// The editor alone, on a screenshot; without the application. Returns when its window is closed
/// and nothing needs the program any more: a picture that was copied stays on the clipboard until
/// somebody else copies something.
///
/// `file`: what "Save" writes without asking. Throws `Error`.
void editScreenshot(
    int argc, char** argv, Shot shot, const std::optional<std::filesystem::path>& file);

} // namespace zento
