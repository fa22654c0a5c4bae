// Registration of the add-on to start at login.
#pragma once

#include "platform/Log.hpp"
#include "platform/LoginItemClient.hpp"

namespace quorvane {

// Registers the add-on unless it is registered or the user has switched it off. An error never
// stops the launch. Main thread only.
void ensureLoginItemIsRegistered(const LoginItemClient& client, const Logger& log);

}  // namespace quorvane
