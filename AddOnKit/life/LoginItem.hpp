// Keeps the add-on registered to be started at login.
#pragma once

#include "platform/Log.hpp"
#include "platform/LoginItemClient.hpp"

namespace quorvane {

// Registers the add-on unless it is, or the user has switched it off. Never stops the launch. Main
// thread only.
void ensureLoginItemIsRegistered(const LoginItemClient& client, const Logger& log);

}  // namespace quorvane
