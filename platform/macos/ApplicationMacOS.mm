#if !__has_feature(objc_arc)
#error "This file needs automatic reference counting."
#endif

#include "platform/macos/ApplicationMacOS.hpp"

#import <AppKit/AppKit.h>
#include <signal.h>
#include <unistd.h>

#include <utility>

@interface QuorvaneApplicationDelegate : NSObject <NSApplicationDelegate> {
@public
    std::function<void()> didFinishLaunching;
    std::function<void()> willTerminate;
    dispatch_source_t interrupt;
}
@end

@implementation QuorvaneApplicationDelegate
- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    didFinishLaunching();
}

- (void)applicationWillTerminate:(NSNotification*)notification {
    willTerminate();
}

- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)app {
    return YES;
}
@end

namespace quorvane {
namespace {

// The source is delivered although the signal itself is ignored.
dispatch_source_t startSignalSource(int signal, dispatch_queue_t queue, dispatch_block_t handler) {
    ::signal(signal, SIG_IGN);
    dispatch_source_t source = dispatch_source_create(DISPATCH_SOURCE_TYPE_SIGNAL,
                                                      static_cast<uintptr_t>(signal), 0, queue);
    dispatch_source_set_event_handler(source, handler);
    dispatch_activate(source);
    return source;
}

int run(std::function<void()> didFinishLaunching, std::function<void()> willTerminate) {
    @autoreleasepool {
        NSApplication* application = NSApplication.sharedApplication;
        // The application holds its delegate weakly.
        static QuorvaneApplicationDelegate* delegate;
        delegate = [[QuorvaneApplicationDelegate alloc] init];
        delegate->didFinishLaunching = std::move(didFinishLaunching);
        delegate->willTerminate = std::move(willTerminate);
        application.delegate = delegate;
        [application setActivationPolicy:NSApplicationActivationPolicyAccessory];
        delegate->interrupt = startSignalSource(SIGINT, dispatch_get_main_queue(), ^{
          [application terminate:nil];
        });
        [application run];
        // Only where the loop was stopped: `terminate:` ends the process from inside.
        delegate = nil;
    }
    return 0;
}

void handleTerminationSignal(std::function<void()> action) {
    static dispatch_source_t source;
    source = startSignalSource(SIGTERM, dispatch_get_global_queue(QOS_CLASS_USER_INITIATED, 0), ^{
      dispatch_source_cancel(source);
      action();
      signal(SIGTERM, SIG_DFL);
      kill(getpid(), SIGTERM);
    });
}

}  // namespace

Application makeApplicationMacOS() {
    return {.run = run,
            .terminate = [] { [NSApplication.sharedApplication terminate:nil]; },
            .handleTerminationSignal = handleTerminationSignal};
}

}  // namespace quorvane
