// Listens for one Darwin notice.
#pragma once

#include <functional>
#include <string>

#include "platform/DarwinNotices.hpp"
#include "platform/Handle.hpp"

namespace quorvane {

// Main thread only; the callback runs there too. It does not run any more once `stop` was called or
// the observer is gone.
class DarwinNotificationObserver {
public:
    DarwinNotificationObserver(DarwinNotices notices, std::string name,
                               std::function<void()> callback)
        : notices_(std::move(notices)), name_(std::move(name)), callback_(std::move(callback)) {}

    // A second start changes nothing.
    void start() {
        if (!isObserving()) registration_ = notices_.observe(name_, callback_);
    }
    void stop() { registration_.reset(); }

    bool isObserving() const { return static_cast<bool>(registration_); }
    const std::string& name() const { return name_; }

private:
    DarwinNotices notices_;
    std::string name_;
    std::function<void()> callback_;
    Handle registration_;
};

}  // namespace quorvane
