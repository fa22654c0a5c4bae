// Local files named by URLs.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quorvane {

// The path of a "file:" URL of this machine, with its percent escapes decoded, or of a bare
// absolute path, which some players send instead. Returns nullopt for everything else.
std::optional<std::filesystem::path> localFile(std::string_view url);

// The text with its percent escapes decoded; nullopt when one is malformed.
std::optional<std::string> percentDecoded(std::string_view text);

}  // namespace quorvane
