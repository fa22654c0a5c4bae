// Other JSON libraries at the same work. Each returns the number of artwork bytes it came to, so
// that nothing of it can be left out.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Bytes.hpp"

namespace quorvane {

struct JSONRival {
    const char* name;
    std::size_t (*decode)(std::string_view text);
    // Makes such a text of a state's fields and artwork in base64; unset where it only reads.
    std::string (*encode)(std::string_view base64);
};

// Nothing where the package was not there when this was built.
std::optional<JSONRival> nlohmannRival();
std::optional<JSONRival> qtJSONRival();
std::optional<JSONRival> simdjsonRival();

}  // namespace quorvane
