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
    for (std::size_t index = 0; index < services_.size(); ++index) observe(index);
    loss_ = bus_.observeLoss([this] {
        for (std::size_t index = 0; index < services_.size(); ++index) set(index, {});
    });
    reconnection_ = bus_.observeReconnection([this] { askAll(); });
    askAll();
}

void ScreenSaverSignals::askAll() {
    for (std::size_t index = 0; index < services_.size(); ++index) ask(index);
}

std::optional<bool> ScreenSaverSignals::isActive() const {
    // Nullopt is less than false, which is less than true.
    return std::ranges::max_element(services_, {}, &Service::isActive)->isActive;
}

void ScreenSaverSignals::observe(std::size_t index) {
    Service& service = services_[index];
    service.observations.push_back(
        bus_.match("type='signal',sender='" + service.name + "',interface='" + service.name +
                       "',member='ActiveChanged'",
                   [this, index](sd_bus_message* message) {
                       int isActive = 0;
                       if (sd_bus_message_read(message, "b", &isActive) >= 0)
                           set(index, isActive != 0);
                   }));
    // A service that has exited does not answer.
    service.observations.push_back(bus_.observeOwner(service.name, [this, index] { ask(index); }));
}

void ScreenSaverSignals::ask(std::size_t index) {
    Service& service = services_[index];
    const BusMethod get{service.name, screenSaverPath(service.name), service.name, "GetActive"};
    service.question = callBus(bus_, get, kAnswerDeadline, [this, index](sd_bus_message* reply) {
        int isActive = 0;
        const bool isAnswered = reply && sd_bus_message_read(reply, "b", &isActive) >= 0;
        set(index, isAnswered ? std::optional{isActive != 0} : std::nullopt);
    });
}

void ScreenSaverSignals::set(std::size_t index, std::optional<bool> isActive) {
    const auto before = this->isActive();
    services_[index].isActive = isActive;
    if (this->isActive() != before) changed_();
}

}  // namespace quorvane
