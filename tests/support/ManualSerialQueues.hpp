// Serial queues whose actions run on the test's thread, when the test runs them.
#pragma once

#include <deque>
#include <map>
#include <memory>

#include "platform/SerialQueue.hpp"

namespace quorvane {

class ManualSerialQueues {
public:
    MakeSerialQueue make() {
        return [this](std::string label) {
            return std::make_unique<Queue>(*this, actions_[std::move(label)]);
        };
    }

    // Called for each action, when set: whether the system has no thread for it.
    std::function<bool()> refuses;

    // Runs the next action of the queue with this label; false when none waits.
    bool runNext(const std::string& label) { return runNext(actions_[label]); }
    // Runs everything, one queue after the other.
    void runAll() {
        for (auto& [label, actions] : actions_)
            while (runNext(actions)) {
            }
    }
    std::size_t waiting(const std::string& label) { return actions_[label].size(); }

private:
    using Actions = std::deque<std::function<void()>>;

    static bool runNext(Actions& actions) {
        if (actions.empty()) return false;
        const auto action = std::move(actions.front());
        actions.pop_front();
        action();
        return true;
    }

    struct Queue final : SerialQueue {
        Queue(ManualSerialQueues& itsOwner, Actions& itsActions)
            : owner(itsOwner), actions(itsActions) {}
        ~Queue() override { actions.clear(); }
        bool async(std::function<void()> action) override {
            if (owner.refuses && owner.refuses()) return false;
            actions.push_back(std::move(action));
            return true;
        }

        ManualSerialQueues& owner;
        Actions& actions;
    };

    std::map<std::string, Actions> actions_;
};

}  // namespace quorvane
