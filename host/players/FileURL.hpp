// Local files named by URLs.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quorvane {

// The path of a "file:" URL of this machine, with its percent escapes decoded. Returns nullopt for
// every other URL, because files on the network are not fetched.
std::optional<std::filesystem::path> localFile(std::string_view url);

// The text with its percent escapes decoded; nullopt when one is malformed or decodes to NUL.
std::optional<std::string> percentDecoded(std::string_view text);

}  // namespace quorvane
