#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

/// What switches the desktop's notifications around a recording: a command the user made, in
/// "Zento/Actions" of the configuration folder, or one of the two built-in names.
namespace zento::FocusActions {

/// The built-in names: they switch the notifications of GNOME, Cinnamon, MATE and Xfce off and on.
/// A command of the same name goes before.
inline constexpr std::string_view kBuiltInOn = "Zento Focus On";
inline constexpr std::string_view kBuiltInOff = "Zento Focus Off";

/// The folder of the user's commands.
std::filesystem::path folder();

/// Starts the command of that name, trimmed of white space, and does not wait; a launch that fails
/// is passed over. Of no name, or of one that leads out of the folder, nothing.
/// Threading: any thread; blocks on the disk.
void run(const std::string& name);

/// The command line that `run` starts; empty for none. Where neither is there, empty.
std::vector<std::string>
command(const std::string& name, const std::filesystem::path& folder, std::string_view desktop);

/// The names that `run` knows: those of the folder's executable files, and the built-in ones.
/// Blocks on the disk.
std::vector<std::string> installed(const std::filesystem::path& folder);

} // namespace zento::FocusActions
