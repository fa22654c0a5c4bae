#include "platform/linux/bus/ScreenSaverService.hpp"

#include <cerrno>
#include <utility>

#include "platform/linux/bus/ScreenSaverSignals.hpp"

namespace quorvane {

int ScreenSaverService::start() {
    sd_bus* const bus = bus_.connection();
    if (!bus) return -ENOTCONN;
    const int result = addObject(bus);
    return result < 0 ? result : sd_bus_request_name(bus, name_.c_str(), 0);
}

void ScreenSaverService::keepServing() {
    reconnection_ = bus_.observeState([this](bool isConnected) {
        if (isConnected) serve();
    });
    serve();
}

void ScreenSaverService::serve() {
    sd_bus* const bus = bus_.connection();
    if (!bus || addObject(bus) < 0) return;
    // Without a handler, the library ends the connection when the name is refused.
    const auto onAnswer = [](sd_bus_message*, void*, sd_bus_error*) { return 0; };
    sd_bus_request_name_async(bus, nullptr, name_.c_str(), SD_BUS_NAME_QUEUE, onAnswer, nullptr);
}

int ScreenSaverService::addObject(sd_bus* bus) {
    static constexpr sd_bus_vtable kMembers[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD(
            "GetActive", "", "b",
            [](sd_bus_message* call, void* self, sd_bus_error*) {
                const bool isActive = static_cast<ScreenSaverService*>(self)->isActive_;
                return sd_bus_reply_method_return(call, "b", int{isActive});
            },
            SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_SIGNAL("ActiveChanged", "b", 0), SD_BUS_VTABLE_END};
    slot_ = sd_bus_slot_unref(slot_);
    return sd_bus_add_object_vtable(bus, &slot_, screenSaverPath(name_).c_str(), name_.c_str(),
                                    kMembers, this);
}

void ScreenSaverService::set(bool isActive) {
    if (std::exchange(isActive_, isActive) == isActive) return;
    if (sd_bus* const bus = bus_.connection())
        sd_bus_emit_signal(bus, screenSaverPath(name_).c_str(), name_.c_str(), "ActiveChanged", "b",
                           int{isActive});
}

}  // namespace quorvane
