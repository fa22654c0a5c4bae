// URLs that players send: files, pictures inside the URL, and addresses on the web.
#pragma once

#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Bytes.hpp"

namespace quorvane {

bool isWebURL(std::string_view url);
bool isDataURL(std::string_view url);

// The path of a "file:" URL of this machine, with its percent escapes decoded, or of a bare
// absolute path, which some players send instead. Returns nullopt for everything else.
std::optional<std::filesystem::path> localFile(std::string_view url);

// The bytes of a "data:" URL, or a sentence about what is wrong with it. The stated media type is
// ignored, because the bytes themselves determine it.
std::expected<Bytes, std::string_view> dataOf(std::string_view url);

// The text with its percent escapes decoded; nullopt when one is malformed.
std::optional<std::string> percentDecoded(std::string_view text);

}  // namespace quorvane
