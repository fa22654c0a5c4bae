// Folders for this user's files.
#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace quorvane {

// Returns nullopt when the user's home folder cannot be found.
std::optional<std::filesystem::path> homeFolder();
// $XDG_CONFIG_HOME and $XDG_DATA_HOME. As their standard requires, an empty or relative value
// counts as unset; then they are ".config" and ".local/share" in the home folder. Creates nothing.
std::optional<std::filesystem::path> configFolder();
std::optional<std::filesystem::path> dataFolder();

// Whether an untrusted name is usable as a file or folder name: one component, not hidden.
bool isPlainFileName(std::string_view name);

}  // namespace quorvane
