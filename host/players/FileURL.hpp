// Files of this machine that are named by a URL.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quorvane {

// The path of a "file:" URL of this machine, its percent escapes resolved. Nothing for every other
// URL: what lies on the network is not fetched.
std::optional<std::filesystem::path> localFile(std::string_view url);

// The text with its percent escapes resolved; nothing when one is malformed or stands for NUL.
std::optional<std::string> percentDecoded(std::string_view text);

}  // namespace quorvane
