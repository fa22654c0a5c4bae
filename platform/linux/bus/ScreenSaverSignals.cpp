#include "platform/linux/bus/ScreenSaverSignals.hpp"

#include <algorithm>
#include <utility>

#include "platform/linux/bus/BusRequest.hpp"

namespace quorvane {

std::string screenSaverPath(std::string service) {
    std::ranges::replace(service, '.', '/');
    return "/" + service;
}

ScreenSaverSignals::ScreenSaverSignals(SessionBus& bus, std::span<const char* const> services,
                                       std::function<void()> changed)
    : bus_(bus), changed_(std::move(changed)) {
    for (const char* name : services) services_.push_back({name, {}, {}, {}});
    for (Service& service : services_) observe(service);
    busObservation_ = bus_.observeState([this](bool isConnected) {
        for (Service& service : services_)
            if (isConnected)
                ask(service);
            else
                set(service, std::nullopt);
    });
    for (Service& service : services_) ask(service);
}

std::optional<bool> ScreenSaverSignals::isActive() const {
    // Nullopt is less than false, which is less than true.
    return std::ranges::max_element(services_, {}, &Service::isActive)->isActive;
}

void ScreenSaverSignals::observe(Service& service) {
    service.observations.push_back(
        bus_.match("type='signal',sender='" + service.name + "',interface='" + service.name +
                       "',member='ActiveChanged'",
                   [this, &service](sd_bus_message* message) {
                       int isActive = 0;
                       if (sd_bus_message_read(message, "b", &isActive) >= 0)
                           set(service, isActive != 0);
                   }));
    // A service that has exited does not answer.
    service.observations.push_back(
        bus_.observeOwner(service.name, [this, &service] { ask(service); }));
}

void ScreenSaverSignals::ask(Service& service) {
    const BusMethod get{service.name, screenSaverPath(service.name), service.name, "GetActive"};
    service.question = callBus(bus_, get, kAnswerDeadline, [this, &service](sd_bus_message* reply) {
        int isActive = 0;
        const bool isAnswered = reply && sd_bus_message_read(reply, "b", &isActive) >= 0;
        set(service, isAnswered ? std::optional{isActive != 0} : std::nullopt);
    });
}

void ScreenSaverSignals::set(Service& service, std::optional<bool> isActive) {
    const auto before = this->isActive();
    service.isActive = isActive;
    if (this->isActive() != before) changed_();
}

}  // namespace quorvane
