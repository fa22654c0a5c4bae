// The add-on's login item: an XDG autostart entry of the user's.
#pragma once

#include <optional>

#include "platform/LoginItemClient.hpp"
#include "platform/ProcessInfo.hpp"

namespace quorvane {

// The entry is <folder>/<bundle identifier>.desktop. Its status is 0 when there is none or when it
// starts another executable, 1 when it starts this one, 2 when the user has switched it off, and 3
// when this process runs from no bundle. Registering replaces the entry, unregistering removes it.
LoginItemClient makeLoginItem(std::optional<std::filesystem::path> autostartFolder,
                              const ProcessInfo& process);

}  // namespace quorvane
