// Asynchronous calls over a message bus, which a handle cancels.
#pragma once

#include <systemd/sd-bus.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/Clock.hpp"
#include "platform/Handle.hpp"
#include "platform/ReleaseWith.hpp"

namespace quorvane {

using BusRequest = std::unique_ptr<sd_bus_message, ReleaseWith<sd_bus_message_unref>>;

// Creates a call that does not auto-start its service. Null without a bus.
BusRequest newBusRequest(sd_bus* bus, const std::string& destination, const std::string& path,
                         const std::string& interface, const std::string& method);

// Runs `onReply` once, on a later turn of the main loop: with the reply, or with null on an error
// or a timeout. Dropping the handle cancels the call. A call that cannot be sent returns an empty
// handle and never runs `onReply`.
Handle sendBusRequest(sd_bus* bus, const BusRequest& call, Duration deadline,
                      std::function<void(sd_bus_message* reply)> onReply);

}  // namespace quorvane
