// What a process of ours gives up, so that a fault in it, or in a library that decodes somebody's
// picture, reaches as little as possible.
#pragma once

#include "platform/PlatformError.hpp"

namespace quorvane {

// No core file and no memory in one: it could hold the secret. Before the secret is read.
void forbidCoreDumps();

enum class Network { isForbidden, isNeeded };

// For good, for all threads and for what they may start: no new privileges, no look into other
// processes, no doors into the kernel that nobody here uses, and no sockets but local ones unless
// the network is needed. What was open before stays open. Where the kernel has no system-call
// filters, an error.
Result<void> confineProcess(Network network);

// A display on another machine is reached over the network, also later than at the start.
Network networkForDisplay(const char* display);

}  // namespace quorvane
