#include "platform/macos/card/CardMacOS.hpp"

#import <AppKit/AppKit.h>

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

}  // namespace

Screens makeScreensMacOS() {
    return {.list = list,
            .observeChanges =
                [](std::function<void()> handler) {
                    return observe(NSNotificationCenter.defaultCenter,
                                   NSApplicationDidChangeScreenParametersNotification,
                                   std::move(handler));
                },
            .observeKeepClear = [](const std::function<void()>&) { return Handle{[] {}}; }};
}

}  // namespace quorvane
