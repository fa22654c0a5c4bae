// A value that notifies its subscribers of changes.
#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platform/Handle.hpp"

namespace quorvane {

// Main thread only. Writing an equal value notifies no listener. Listeners run after the new value
// is stored, in the order of subscription. A listener that is dropped during notification is not
// called any more. A listener may write the value again, subscribe, or drop its own handle. Handles
// may outlive the observable.
template <typename T>
class Observable {
public:
    Observable() = default;
    explicit Observable(T initial) : value_(std::move(initial)) {}
    Observable(const Observable&) = delete;
    Observable& operator=(const Observable&) = delete;

    const T& get() const { return value_; }

    void set(T value) {
        if (value == value_) return;
        value_ = std::move(value);
        // Iterate over a copy, because listeners may subscribe during the loop.
        const auto listeners = *listeners_;
        for (const auto& listener : listeners)
            if (const auto action = *listener) action();
    }

    Handle subscribe(std::function<void()> listener) {
        auto slot = std::make_shared<std::function<void()>>(std::move(listener));
        listeners_->push_back(slot);
        return Handle{[listeners = std::weak_ptr{listeners_}, slot] {
            *slot = nullptr;
            if (const auto list = listeners.lock()) std::erase(*list, slot);
        }};
    }

private:
    using Slot = std::shared_ptr<std::function<void()>>;
    T value_{};
    std::shared_ptr<std::vector<Slot>> listeners_ = std::make_shared<std::vector<Slot>>();
};

}  // namespace quorvane
