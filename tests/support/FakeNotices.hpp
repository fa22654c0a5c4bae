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
        const auto observers = *observers_;
        int count = 0;
        for (const auto& [observed, handler] : observers)
            if (observed == name && *handler) {
                (*handler)(userInfo);
                ++count;
            }
        return count;
    }
    std::size_t observerCount() const { return observers_->size(); }

private:
    using Observer = std::pair<std::string, std::shared_ptr<DistributedNotices::Handler>>;

    Handle add(const std::string& name, DistributedNotices::Handler handler) {
        auto slot = std::make_shared<DistributedNotices::Handler>(std::move(handler));
        observers_->emplace_back(name, slot);
        return Handle{[slot, list = std::weak_ptr{observers_}] {
            *slot = nullptr;
            if (const auto observers = list.lock())
                std::erase_if(*observers,
                              [&](const Observer& each) { return each.second == slot; });
        }};
    }

    std::shared_ptr<std::vector<Observer>> observers_ = std::make_shared<std::vector<Observer>>();
};

}  // namespace quorvane
