// List of callbacks that may change during notification.
#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platform/Handle.hpp"

namespace quorvane {

// One thread. A listener may add listeners and drop any handle, including its own. A listener that
// is dropped during notification is not called any more. Handles may outlive the list.
template <typename... Arguments>
class Listeners {
public:
    using Listener = std::function<void(Arguments...)>;

    Listeners() = default;
    // Calls `changed` when the list becomes empty and when it becomes non-empty.
    explicit Listeners(std::function<void()> changed) { state_->changed = std::move(changed); }
    Listeners(const Listeners&) = delete;
    Listeners& operator=(const Listeners&) = delete;
    ~Listeners() { state_->changed = nullptr; }

    bool isEmpty() const { return state_->slots.empty(); }

    Handle add(Listener listener) {
        auto slot = std::make_shared<Slot>(Slot{std::move(listener), true});
        state_->slots.push_back(slot);
        if (state_->slots.size() == 1 && state_->changed) state_->changed();
        return Handle{[slot = std::weak_ptr{slot}, weak = std::weak_ptr{state_}] {
            if (const auto held = slot.lock()) held->isHeld = false;
            const auto state = weak.lock();
            if (!state) return;
            std::erase_if(state->slots, [](const auto& entry) { return !entry->isHeld; });
            if (state->slots.empty() && state->changed) state->changed();
        }};
    }

    void call(Arguments... arguments) const {
        // Iterates over a copy, because listeners may change the list. The copy keeps each listener
        // alive while it runs.
        const auto slots = state_->slots;
        for (const auto& slot : slots)
            if (slot->isHeld) slot->listener(arguments...);
    }

private:
    struct Slot {
        Listener listener;
        bool isHeld;
    };
    struct State {
        std::vector<std::shared_ptr<Slot>> slots;
        std::function<void()> changed;
    };
    std::shared_ptr<State> state_ = std::make_shared<State>();  // shared for handles' weak pointers
};

}  // namespace quorvane
