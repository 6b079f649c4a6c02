#pragma once

#include "Zento/Commands/Commands.h"

#include <span>
#include <string_view>

// The subcommands. Each reads its own words, throws `UsageError` or `Error`, and otherwise is done.

namespace zento {

void record(std::span<const std::string_view> words);
void plan(std::span<const std::string_view> words);
void render(std::span<const std::string_view> words);
void screenshot(std::span<const std::string_view> words, const ShotEdit& editShot);
void recover(std::span<const std::string_view> words);
void demo(std::span<const std::string_view> words);
void doctor(std::span<const std::string_view> words);
void toggle(std::span<const std::string_view> words);
void searchProvider(std::span<const std::string_view> words);

} // namespace zento
