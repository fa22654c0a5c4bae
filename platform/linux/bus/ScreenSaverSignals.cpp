#include "platform/linux/bus/ScreenSaverSignals.hpp"

#include <algorithm>
#include <utility>

#include "platform/linux/bus/BusRequest.hpp"

namespace quorvane {
namespace {

constexpr const char* kServices[] = {"org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver",
                                     "org.mate.ScreenSaver",        "org.cinnamon.ScreenSaver",
                                     "org.xfce.ScreenSaver",        kLockerRunService};

// Each service's object path is derived from its name.
std::string pathOf(std::string name) {
    std::ranges::replace(name, '.', '/');
    return "/" + name;
}

}  // namespace

ScreenSaverSignals::ScreenSaverSignals(SessionBus& bus, std::function<void()> changed)
    : bus_(bus), changed_(std::move(changed)) {
    services_.reserve(std::size(kServices));
    for (const char* name : kServices) services_.push_back({name, false, {}, {}});
    for (std::size_t index = 0; index < services_.size(); ++index) observe(index);
    loss_ = bus_.observeLoss([this] {
        for (std::size_t index = 0; index < services_.size(); ++index) set(index, false);
    });
    reconnection_ = bus_.observeReconnection([this] { askAll(); });
    askAll();
}

void ScreenSaverSignals::askAll() {
    for (std::size_t index = 0; index < services_.size(); ++index) ask(index);
}

bool ScreenSaverSignals::isActive() const {
    return std::ranges::any_of(services_, &Service::isActive);
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
    // A service that has exited does not answer, so it counts as inactive.
    service.observations.push_back(bus_.observeOwner(service.name, [this, index] { ask(index); }));
}

void ScreenSaverSignals::ask(std::size_t index) {
    Service& service = services_[index];
    const BusMethod get{service.name, pathOf(service.name), service.name, "GetActive"};
    service.question = callBus(bus_, get, kAnswerDeadline, [this, index](sd_bus_message* reply) {
        int isActive = 0;
        set(index, reply && sd_bus_message_read(reply, "b", &isActive) >= 0 && isActive != 0);
    });
}

void ScreenSaverSignals::set(std::size_t index, bool isActive) {
    const bool before = this->isActive();
    services_[index].isActive = isActive;
    if (this->isActive() != before) changed_();
}

}  // namespace quorvane
