#pragma once

#include <span>
#include <string_view>

namespace zento {

/// Runs `zento` with the words behind the program's name and returns its exit status: 0 done,
/// 1 failed, 2 bad usage. Errors go to standard error in one sentence, results to standard output.
int runCommand(std::span<const std::string_view> words);

} // namespace zento
