#include "platform/macos/services/ServicesMacOS.hpp"

#import <CoreFoundation/CoreFoundation.h>

#include <memory>

#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

namespace quorvane {
namespace {

using Handler = std::function<void()>;

void received(CFNotificationCenterRef, void* observer, CFNotificationName, const void*,
              CFDictionaryRef) {
    // A copy, because the handler may end its own observation.
    const Handler handler = *static_cast<Handler*>(observer);
    handler();
}

void post(const std::string& name) {
    CFNotificationCenterPostNotification(CFNotificationCenterGetDarwinNotifyCenter(),
                                         (__bridge CFStringRef)stringFrom(name), nullptr, nullptr,
                                         true);
}

Handle observe(const std::string& name, Handler handler) {
    // The centre stores the bare address and passes it to the callback.
    const auto observer = std::make_shared<Handler>(std::move(handler));
    CFNotificationCenterAddObserver(CFNotificationCenterGetDarwinNotifyCenter(), observer.get(),
                                    received, (__bridge CFStringRef)stringFrom(name), nullptr,
                                    CFNotificationSuspensionBehaviorDeliverImmediately);
    return Handle{[observer, name] {
        CFNotificationCenterRemoveObserver(CFNotificationCenterGetDarwinNotifyCenter(),
                                           observer.get(), (__bridge CFStringRef)stringFrom(name),
                                           nullptr);
    }};
}

}  // namespace

DarwinNotices makeDarwinNoticesMacOS() { return {.post = post, .observe = observe}; }

}  // namespace quorvane
