// The main thread's run loop under a test's control. For Objective-C++ only.
#pragma once

#import <CoreFoundation/CoreFoundation.h>

#include <chrono>
#include <functional>

#include "platform/macos/services/ServicesMacOS.hpp"

namespace quorvane {

// Runs it until the condition holds, for ten seconds at most. Returns whether it held.
inline bool turnMainLoopUntil(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds{10};
    while (!condition() && std::chrono::steady_clock::now() < end) {
        const Timer look = makeClockMacOS().after(std::chrono::milliseconds{20},
                                                  [] { CFRunLoopStop(CFRunLoopGetCurrent()); });
        CFRunLoopRun();
    }
    return condition();
}

}  // namespace quorvane
