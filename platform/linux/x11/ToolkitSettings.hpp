// Settings that a desktop publishes on the X server for all toolkits (XSETTINGS).
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/Bytes.hpp"
#include "platform/linux/x11/X11Session.hpp"

namespace quorvane {

// The setting of this name; nullopt when no desktop publishes it as a number. Blocks until the
// server replies.
std::optional<std::int32_t> toolkitSetting(X11Session& x11, std::string_view name);

// The same, from the published bytes.
std::optional<std::int32_t> numberIn(ByteView settings, std::string_view name);

}  // namespace quorvane
