// The user's preferences.
#pragma once

#include <optional>
#include <string>

#include "platform/UserDefaults.hpp"

namespace quorvane {

// Of this application, whose preferences domain is `domain`.
UserDefaults makeStandardDefaultsMacOS(const std::string& domain);
// Of a suite; nothing when the system refuses the name.
std::optional<UserDefaults> openSuiteMacOS(const std::string& suite);

}  // namespace quorvane
