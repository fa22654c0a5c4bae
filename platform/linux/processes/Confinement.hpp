// Restrictions of this process that limit the damage of a fault in it, or in a library that decodes
// an untrusted picture.
#pragma once

#include <string_view>

#include "platform/PlatformError.hpp"

namespace quorvane {

// Disables core files and their memory contents, because they could contain the secret. Call before
// reading the secret.
void forbidCoreDumps();

enum class Network { isForbidden, isNeeded };

// Permanently restricts all threads and child processes: no new privileges, no access to other
// processes, no unused kernel interfaces, and only local sockets unless the network is needed. Open
// descriptors stay open. Fails where the kernel has no system-call filters.
Result<void> confineProcess(Network network);

// A remote display needs the network, even after the start.
Network networkForDisplay(std::string_view display);

}  // namespace quorvane
