// Observer of one Darwin notice.
#pragma once

#include <functional>
#include <string>

#include "platform/DarwinNotices.hpp"
#include "platform/Handle.hpp"

namespace quorvane {

// Main thread only; the callback runs there too. The callback does not run after `stop` or after
// the observer is destroyed.
class DarwinNotificationObserver {
public:
    DarwinNotificationObserver(DarwinNotices notices, std::string name,
                               std::function<void()> callback)
        : notices_(std::move(notices)), name_(std::move(name)), callback_(std::move(callback)) {}

    // Has no effect while observing.
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
