// A run of a lock screen's program that announces nothing itself.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/Handle.hpp"
#include "platform/PlatformError.hpp"

namespace quorvane {

struct LiveServices;

// Main thread only. Starts the command and sends the lock notices to the user's add-on, from the
// moment when the command is ready to its end. It is ready when it writes to its descriptor 3, and
// at the latest after two seconds. `ended` receives the exit status. Dropping the handle ends the
// notices but not the command.
Result<Handle> runLocker(const LiveServices& services, std::vector<std::string> command,
                         std::function<void(int status)> ended);

}  // namespace quorvane
