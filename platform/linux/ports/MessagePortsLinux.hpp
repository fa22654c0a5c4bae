// Message ports of this edition: Unix stream sockets in a private folder of the user.
// docs/wire-format.md defines every byte.
#pragma once

#include <filesystem>

#include "platform/MessagePort.hpp"
#include "platform/linux/ports/PortLimits.hpp"

namespace quorvane {

// The folder of this user's ports. If it is unusable, no port can be opened or found.
std::filesystem::path portFolderOfUser();

ConnectPort makeConnectPortLinux(std::filesystem::path folder);
OpenPort makeOpenPortLinux(std::filesystem::path folder, PortLimits limits = {});

}  // namespace quorvane
