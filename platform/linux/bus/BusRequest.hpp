// Asynchronous calls over a message bus, which a handle cancels.
#pragma once

#include <systemd/sd-bus.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/Clock.hpp"
#include "platform/Handle.hpp"
#include "platform/ReleaseWith.hpp"
#include "platform/linux/bus/BusConnection.hpp"

namespace quorvane {

// A service that does not answer in this time counts as absent.
inline constexpr Duration kAnswerDeadline = std::chrono::seconds{5};
inline constexpr char kBusProperties[] = "org.freedesktop.DBus.Properties";

struct BusMethod {
    std::string destination;
    std::string path;
    std::string interface;
    std::string member;
    std::vector<std::string> arguments{};  // those that are text
};

using BusRequest = std::unique_ptr<sd_bus_message, ReleaseWith<sd_bus_message_unref>>;

// Creates a call that does not auto-start its service. Null without a bus.
BusRequest newBusRequest(sd_bus* bus, const BusMethod& method);

// Runs `onReply` once, on a later turn of the main loop: with the reply, or with null on an error
// or a timeout. Dropping the handle cancels the call. A call that cannot be sent returns an empty
// handle and never runs `onReply`.
Handle sendBusRequest(sd_bus* bus, const BusRequest& request, Duration deadline,
                      std::function<void(sd_bus_message* reply)> onReply);

// Creates the request and sends it.
Handle callBus(BusConnection& connection, const BusMethod& method, Duration deadline,
               std::function<void(sd_bus_message* reply)> onReply);

}  // namespace quorvane
