#include "platform/linux/bus/BusRequest.hpp"

#include <utility>

namespace quorvane {

BusRequest newBusRequest(sd_bus* bus, const BusMethod& method) {
    sd_bus_message* message = nullptr;
    if (bus)
        sd_bus_message_new_method_call(bus, &message, method.destination.c_str(),
                                       method.path.c_str(), method.interface.c_str(),
                                       method.member.c_str());
    if (!message) return {};
    sd_bus_message_set_auto_start(message, 0);
    for (const std::string& argument : method.arguments)
        sd_bus_message_append(message, "s", argument.c_str());
    return BusRequest{message};
}

Handle sendBusRequest(sd_bus* bus, const BusRequest& request, Duration deadline,
                      std::function<void(sd_bus_message* reply)> onReply) {
    struct Pending {
        std::function<void(sd_bus_message*)> onReply;
        sd_bus_slot* slot = nullptr;
    };
    if (!bus || !request) return {};
    const auto answered = [](sd_bus_message* reply, void* self, sd_bus_error*) {
        // Moved out first, because it may drop the handle and must not run twice.
        const auto action = std::exchange(static_cast<Pending*>(self)->onReply, nullptr);
        if (action) action(sd_bus_message_is_method_error(reply, nullptr) ? nullptr : reply);
        return 0;
    };
    auto pending = std::make_unique<Pending>(Pending{std::move(onReply)});
    const auto microseconds = std::chrono::duration_cast<std::chrono::microseconds>(deadline);
    if (sd_bus_call_async(bus, &pending->slot, request.get(), answered, pending.get(),
                          static_cast<std::uint64_t>(microseconds.count())) < 0)
        return {};
    return Handle{[owned = pending.release()] {
        sd_bus_slot_unref(owned->slot);
        delete owned;
    }};
}

Handle callBus(BusConnection& connection, const BusMethod& method, Duration deadline,
               std::function<void(sd_bus_message* reply)> onReply) {
    sd_bus* const bus = connection.connection();
    return sendBusRequest(bus, newBusRequest(bus, method), deadline, std::move(onReply));
}

}  // namespace quorvane
