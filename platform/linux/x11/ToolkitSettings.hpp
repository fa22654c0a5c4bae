// Settings that a desktop publishes on the X server for all toolkits (XSETTINGS).
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/linux/x11/X11Connection.hpp"

namespace quorvane {

// The setting of this name; nullopt when no desktop publishes it as a number. Blocks until the
// server replies.
std::optional<std::int32_t> toolkitSetting(X11Connection& x11, std::string_view name);

// The same, from the published bytes.
std::optional<std::int32_t> numberIn(std::string_view settings, std::string_view name);

}  // namespace quorvane
