// The user's preferences.
#pragma once

#include <optional>
#include <string>

#include "platform/UserDefaults.hpp"

namespace quorvane {

// Defaults of this application, whose preferences domain is `domain`.
UserDefaults makeStandardDefaultsMacOS(const std::string& domain);
// Defaults of a suite; nullopt when the system refuses the name.
std::optional<UserDefaults> openSuiteMacOS(const std::string& suite);

}  // namespace quorvane
