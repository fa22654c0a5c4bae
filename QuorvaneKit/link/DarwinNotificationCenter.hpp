// Sender of Darwin notices by name.
#pragma once

#include <string>
#include <string_view>

#include "QuorvaneKit/link/QuorvaneDarwinNotification.hpp"
#include "platform/DarwinNotices.hpp"

namespace quorvane {

// Main thread only. A notice reaches every observer of its name in this login session.
class DarwinNotificationCenter {
public:
    explicit DarwinNotificationCenter(DarwinNotices notices) : notices_(std::move(notices)) {}

    void post(std::string_view name) const { notices_.post(std::string{name}); }
    void post(QuorvaneDarwinNotification notification) const { post(rawValue(notification)); }
    void post(QuorvaneWidgetNotification notification, std::string_view widgetIdentifier) const {
        post(rawValue(notification, widgetIdentifier));
    }

private:
    DarwinNotices notices_;
};

}  // namespace quorvane
