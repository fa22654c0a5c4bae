// Pictures that a player sends inside a "data:" URL.
#pragma once

#include <expected>
#include <string_view>

#include "platform/Bytes.hpp"

namespace quorvane {

bool isDataURL(std::string_view url);

// The bytes of such a URL, or a sentence about what is wrong with it. The stated media type is
// ignored, because the bytes themselves determine it.
std::expected<Bytes, std::string_view> dataOf(std::string_view url);

}  // namespace quorvane
