#include "platform/linux/LocalNotices.hpp"

#include <map>
#include <utility>

namespace quorvane {

struct LocalNotices::State {
    struct Observer {
        std::string name;
        DistributedNotices::Handler handler;
    };
    std::map<std::uint64_t, Observer> observers;
    std::uint64_t observersMade = 0;

    void call(const std::string& name, const PropertyDictionary& userInfo) {
        // By number and with a copy: a handler may drop any handle, its own too, or add one.
        for (auto entry = observers.begin(); entry != observers.end();) {
            const auto number = entry->first;
            if (entry->second.name == name) {
                const auto handler = entry->second.handler;
                handler(userInfo);
            }
            entry = observers.upper_bound(number);
        }
    }
};

LocalNotices::LocalNotices(MainThread mainThread)
    : mainThread_(std::move(mainThread)), state_(std::make_shared<State>()) {}

void LocalNotices::deliver(const std::string& name, const PropertyDictionary& userInfo) {
    mainThread_.post([name, userInfo, weak = std::weak_ptr{state_}] {
        if (const auto state = weak.lock()) state->call(name, userInfo);
    });
}

Handle LocalNotices::observe(const std::string& name, DistributedNotices::Handler handler) {
    const auto number = state_->observersMade++;
    state_->observers.emplace(number, State::Observer{name, std::move(handler)});
    return Handle{[number, weak = std::weak_ptr{state_}] {
        if (const auto state = weak.lock()) state->observers.erase(number);
    }};
}

}  // namespace quorvane
