#pragma once

#include "ZentoCapture/ScreenshotTool.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string_view>

namespace zento {

/// Opens the editor on a screenshot and returns when it is closed. With a file, that is what it
/// saves to. Throws `Error`.
using ShotEdit = std::function<void(Shot, const std::optional<std::filesystem::path>&)>;

/// Runs `zento` with the words behind the program's name and returns its exit status: 0 done,
/// 1 failed, 2 bad usage. Errors go to standard error in one sentence, results to standard output.
int runCommand(std::span<const std::string_view> words, const ShotEdit& editShot = {});

} // namespace zento
