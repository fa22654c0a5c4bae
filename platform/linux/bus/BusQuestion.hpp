// Questions over a message bus: calls whose answer is awaited by a callback, for as long as
// somebody holds the question.
#pragma once

#include <systemd/sd-bus.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/Clock.hpp"
#include "platform/Handle.hpp"

namespace quorvane {

struct BusQuestionDeleter {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using BusQuestion = std::unique_ptr<sd_bus_message, BusQuestionDeleter>;

// A call that does not start the service it is for. Null without a bus.
BusQuestion newBusQuestion(sd_bus* bus, const std::string& destination, const std::string& path,
                           const std::string& interface, const std::string& method);

// `onReply` runs once, on a later turn of the main loop: with the answer, or with null when there
// is none in time or an error instead. Dropping the handle forgets the call. A call that cannot be
// sent gives an empty handle and never answers.
Handle askBus(sd_bus* bus, const BusQuestion& call, Duration deadline,
              std::function<void(sd_bus_message* reply)> onReply);

}  // namespace quorvane
