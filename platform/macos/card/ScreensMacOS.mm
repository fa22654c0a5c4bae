#include "platform/macos/card/CardMacOS.hpp"

#import <AppKit/AppKit.h>

#include <array>
#include <memory>

#include "platform/macos/foundation/Observation.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

namespace quorvane {
namespace {

std::vector<Screen> list() {
    std::vector<Screen> screens;
    for (NSScreen* screen in NSScreen.screens) {
        const NSRect frame = screen.frame;
        screens.push_back(
            {.frame = {frame.origin.x, frame.origin.y, frame.size.width, frame.size.height},
             .scale = screen.backingScaleFactor});
    }
    return screens;
}

Handle observeUnseen(const std::function<void(Unseen, bool)>& handler) {
    // The workspace posts its notices only to its own centre.
    NSNotificationCenter* const center = NSWorkspace.sharedWorkspace.notificationCenter;
    const auto on = [&](NSNotificationName name, Unseen reason, bool holds) {
        return observe(center, name, [=] { handler(reason, holds); });
    };
    const auto handles = std::make_shared<std::array<Handle, 4>>(std::array{
        on(NSWorkspaceScreensDidSleepNotification, Unseen::displaysAsleep, true),
        on(NSWorkspaceScreensDidWakeNotification, Unseen::displaysAsleep, false),
        on(NSWorkspaceSessionDidResignActiveNotification, Unseen::sessionInBackground, true),
        on(NSWorkspaceSessionDidBecomeActiveNotification, Unseen::sessionInBackground, false)});
    return Handle{[handles] {}};  // they end with this one
}

}  // namespace

Screens makeScreensMacOS() {
    return {.list = list,
            .observeChanges =
                [](std::function<void()> handler) {
                    return observe(NSNotificationCenter.defaultCenter,
                                   NSApplicationDidChangeScreenParametersNotification,
                                   std::move(handler));
                },
            .observeKeepClear = [](const std::function<void()>&) { return Handle{[] {}}; },
            .observeUnseen = observeUnseen};
}

}  // namespace quorvane
