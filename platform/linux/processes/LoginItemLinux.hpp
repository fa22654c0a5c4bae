// The add-on's login item: an XDG autostart entry of the user.
#pragma once

#include <filesystem>
#include <optional>

#include "platform/LoginItemClient.hpp"
#include "platform/ProcessInfo.hpp"

namespace quorvane {

// The entry is <folder>/<bundle identifier>.desktop. The status is 0 when it is missing or starts
// another executable, 1 when it starts this one, 2 when the user has disabled it, and 3 when this
// process does not run from a bundle. Registering replaces the entry; unregistering removes it.
LoginItemClient makeLoginItem(std::optional<std::filesystem::path> autostartFolder,
                              const ProcessInfo& process);

// Lets the program show its surfaces above KDE Plasma's lock screen: a desktop file in the user's
// applications names it. Unregistering the login item removes the file.
Result<void> permitAboveLock(const std::filesystem::path& program, const ProcessInfo& process);

}  // namespace quorvane
