// Both notice services inside one process: posts reach their observers immediately.
#pragma once

#include <algorithm>
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

    // Returns the number of observers that received it.
    int deliver(const std::string& name, const PropertyDictionary& userInfo = {}) {
        int count = 0;
        for (const auto& [observed, weak] : std::vector{observers_})
            if (const auto handler = weak.lock(); handler && observed == name) {
                (*handler)(userInfo);
                ++count;
            }
        return count;
    }
    std::size_t observerCount() const {
        const auto isHeld = [](const auto& each) { return !each.second.expired(); };
        return static_cast<std::size_t>(std::ranges::count_if(observers_, isHeld));
    }

private:
    // The handle owns the handler.
    Handle add(const std::string& name, DistributedNotices::Handler handler) {
        const auto shared = std::make_shared<DistributedNotices::Handler>(std::move(handler));
        observers_.emplace_back(name, shared);
        return Handle{[shared] {}};
    }

    std::vector<std::pair<std::string, std::weak_ptr<DistributedNotices::Handler>>> observers_;
};

}  // namespace quorvane
