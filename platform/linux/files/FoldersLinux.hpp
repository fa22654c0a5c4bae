// Where this user's files go.
#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace quorvane {

// Nothing when the user has no home folder that can be found.
std::optional<std::filesystem::path> homeFolder();
// $XDG_CONFIG_HOME and $XDG_DATA_HOME. As the standard for them asks, one that is empty or not
// absolute counts as unset: then they are ".config" and ".local/share" in the home folder. Nothing
// is made here.
std::optional<std::filesystem::path> configFolder();
std::optional<std::filesystem::path> dataFolder();

// A name that other parties give and that becomes a file's or folder's: one component, not hidden.
bool isPlainFileName(std::string_view name);

}  // namespace quorvane
