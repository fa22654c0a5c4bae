// The message ports of this edition: Unix stream sockets in a folder of the user's own.
// docs/wire-format.md gives every byte.
#pragma once

#include <filesystem>

#include "platform/MessagePort.hpp"
#include "platform/linux/ports/PortLimits.hpp"

namespace quorvane {

// The folder of this user's ports. When the system has no place for it, every name counts as served
// by nobody and none can be served.
std::filesystem::path portFolderOfUser();

ConnectPort makeConnectPortLinux(std::filesystem::path folder);
OpenPort makeOpenPortLinux(std::filesystem::path folder, PortLimits limits = {});

}  // namespace quorvane
