// Serial queues whose actions run when a test says so, on the test's thread.
#pragma once

#include <deque>
#include <map>
#include <memory>

#include "platform/SerialQueue.hpp"

namespace quorvane {

class ManualSerialQueues {
public:
    MakeSerialQueue make() {
        return [this](std::string label) { return std::make_unique<Queue>(*this, label); };
    }

    // Asked for each action, when set: whether the system has no thread for it.
    std::function<bool()> refuses;

    // Runs the next action of the queue with this label; false when none waits.
    bool runNext(const std::string& label) {
        auto& actions = actions_[label];
        if (actions.empty()) return false;
        const auto action = std::move(actions.front());
        actions.pop_front();
        action();
        return true;
    }
    // Runs everything, one queue after the other.
    void runAll() {
        std::vector<std::string> labels;
        for (const auto& [label, actions] : actions_) labels.push_back(label);
        for (const std::string& label : labels)
            while (runNext(label)) {
            }
    }
    std::size_t waiting(const std::string& label) { return actions_[label].size(); }

private:
    class Queue final : public SerialQueue {
    public:
        Queue(ManualSerialQueues& owner, std::string label)
            : owner_(owner), label_(std::move(label)) {
            owner_.actions_[label_];
        }
        ~Queue() override { owner_.actions_[label_].clear(); }
        bool async(std::function<void()> action) override {
            if (owner_.refuses && owner_.refuses()) return false;
            owner_.actions_[label_].push_back(std::move(action));
            return true;
        }

    private:
        ManualSerialQueues& owner_;
        const std::string label_;
    };

    std::map<std::string, std::deque<std::function<void()>>> actions_;
};

}  // namespace quorvane
