#if !__has_feature(objc_arc)
#error "This file needs automatic reference counting."
#endif

#include "platform/macos/services/MainThreadMacOS.hpp"

#import <dispatch/dispatch.h>

namespace quorvane {

MainThread makeMainThreadMacOS() {
    return {.post = [](std::function<void()> action) {
        dispatch_async(dispatch_get_main_queue(), ^{
          action();
        });
    }};
}

}  // namespace quorvane
