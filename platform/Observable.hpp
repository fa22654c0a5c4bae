// A value that notifies its subscribers of changes.
#pragma once

#include <functional>
#include <utility>

#include "platform/Listeners.hpp"

namespace quorvane {

// Main thread only. Writing an equal value notifies no listener. Listeners run after the new value
// is stored, in the order of subscription. A listener may write the value again and do everything
// that `Listeners` allows.
template <typename T>
class Observable {
public:
    Observable() = default;
    explicit Observable(T initial) : value_(std::move(initial)) {}

    const T& get() const { return value_; }

    void set(T value) {
        if (value == value_) return;
        value_ = std::move(value);
        listeners_.call();
    }

    Handle subscribe(std::function<void()> listener) { return listeners_.add(std::move(listener)); }

private:
    T value_{};
    Listeners<> listeners_;
};

}  // namespace quorvane
