// Asynchronous calls over a message bus, which a handle cancels.
#pragma once

#include <systemd/sd-bus.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/Clock.hpp"
#include "platform/Handle.hpp"

namespace quorvane {

struct BusRequestDeleter {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using BusRequest = std::unique_ptr<sd_bus_message, BusRequestDeleter>;

// Creates a call that does not auto-start its service. Null without a bus.
BusRequest newBusRequest(sd_bus* bus, const std::string& destination, const std::string& path,
                         const std::string& interface, const std::string& method);

// Runs `onReply` once, on a later turn of the main loop: with the reply, or with null on an error
// or a timeout. Dropping the handle cancels the call. A call that cannot be sent returns an empty
// handle and never runs `onReply`.
Handle sendBusRequest(sd_bus* bus, const BusRequest& call, Duration deadline,
                      std::function<void(sd_bus_message* reply)> onReply);

}  // namespace quorvane
