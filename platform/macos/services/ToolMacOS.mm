#import <CoreFoundation/CoreFoundation.h>
#include <signal.h>

#include "platform/macos/foundation/ReferenceCounting.hpp"
#include "platform/macos/services/ServicesMacOS.hpp"
#include "platform/macos/services/SignalSource.hpp"

namespace quorvane {
namespace {

constexpr CFTimeInterval kForever = 1e10;  // seconds

int run(const bool& isDone, dispatch_block_t terminate,
        const std::function<void()>& didFinishLaunching,
        const std::function<void()>& willTerminate) {
    @autoreleasepool {
        dispatch_source_t interrupt =
            makeSignalSource(SIGINT, dispatch_get_main_queue(), terminate);
        dispatch_activate(interrupt);
        dispatch_async(dispatch_get_main_queue(), ^{
          didFinishLaunching();
        });
        // One source at a time, because stopping a loop only ends the innermost one, which may be
        // that of a port that waits for its reply.
        while (!isDone) CFRunLoopRunInMode(kCFRunLoopDefaultMode, kForever, true);
        dispatch_source_cancel(interrupt);
    }
    willTerminate();
    return 0;
}

}  // namespace

Application makeToolMacOS() {
    const auto isDone = std::make_shared<bool>(false);
    const dispatch_block_t terminate = ^{
      // Deferred to the next turn of the loop, so that the callers' objects outlive their calls.
      dispatch_async(dispatch_get_main_queue(), ^{
        *isDone = true;
      });
    };
    return {.run =
                [=](const std::function<void()>& didFinishLaunching,
                    const std::function<void()>& willTerminate) {
                    return run(*isDone, terminate, didFinishLaunching, willTerminate);
                },
            .terminate = terminate,
            .handleTerminationSignal = handleTerminationSignalMacOS};
}

}  // namespace quorvane
