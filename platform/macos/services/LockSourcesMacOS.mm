#include "platform/macos/services/ServicesMacOS.hpp"

#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>
#include <notify.h>

#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/foundation/Observation.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

namespace quorvane {
namespace {

std::optional<PropertyValue> sessionDictionary() {
    return valueFrom((__bridge_transfer id)CGSessionCopyCurrentDictionary());
}

Handle observeWake(std::function<void()> handler) {
    // The workspace posts its notices only to its own centre.
    return observe(NSWorkspace.sharedWorkspace.notificationCenter, NSWorkspaceDidWakeNotification,
                   std::move(handler));
}

}  // namespace

LockSources makeLockSourcesMacOS() {
    return {
        .sessionDictionary = sessionDictionary,
        .observeWake = observeWake,
        .notifyRegisterCheck = [](const char* name,
                                  int& token) { return notify_register_check(name, &token); },
        .notifyGetState = [](int token,
                             std::uint64_t& state) { return notify_get_state(token, &state); },
        .notifyCancel = [](int token) { notify_cancel(token); },
    };
}

LockSources makeLiveLockSources(const LiveServices&) { return makeLockSourcesMacOS(); }

}  // namespace quorvane
