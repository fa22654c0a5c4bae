// Both notice services inside one process: posts reach their observers at once.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/DarwinNotices.hpp"
#include "platform/DistributedNotices.hpp"

namespace quorvane {

class FakeNotices {
public:
    std::vector<std::pair<std::string, PropertyDictionary>> posted;

    DistributedNotices distributed() {
        return {.post =
                    [this](const std::string& name, const PropertyDictionary& userInfo) {
                        posted.emplace_back(name, userInfo);
                        deliver(name, userInfo);
                    },
                .observe =
                    [this](const std::string& name, DistributedNotices::Handler handler) {
                        return add(name, std::move(handler));
                    }};
    }
    DarwinNotices darwin() {
        return {.post = [this](const std::string& name) { deliver(name); },
                .observe =
                    [this](const std::string& name, std::function<void()> handler) {
                        return add(name, [handler](const PropertyDictionary&) { handler(); });
                    }};
    }

    // The number of observers that heard it.
    int deliver(const std::string& name, const PropertyDictionary& userInfo = {}) {
        const auto observers = observers_;
        int count = 0;
        for (const auto& [number, observer] : Observers{*observers})
            if (observer.first == name && observers->contains(number)) {
                observer.second(userInfo);
                ++count;
            }
        return count;
    }
    std::size_t observerCount() const { return observers_->size(); }

private:
    using Observers = std::map<int, std::pair<std::string, DistributedNotices::Handler>>;

    Handle add(const std::string& name, DistributedNotices::Handler handler) {
        observers_->emplace(++last_, std::pair{name, std::move(handler)});
        return Handle{[number = last_, list = std::weak_ptr{observers_}] {
            if (const auto observers = list.lock()) observers->erase(number);
        }};
    }

    std::shared_ptr<Observers> observers_ = std::make_shared<Observers>();
    int last_ = 0;
};

}  // namespace quorvane
