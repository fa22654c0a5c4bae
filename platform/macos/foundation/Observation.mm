#if !__has_feature(objc_arc)
#error "This file needs automatic reference counting."
#endif

#include "platform/macos/foundation/Observation.hpp"

namespace quorvane {

Handle observe(NSNotificationCenter* center, NSNotificationName name,
               std::function<void()> handler) {
    id<NSObject> token = [center addObserverForName:name
                                             object:nil
                                              queue:NSOperationQueue.mainQueue
                                         usingBlock:^(NSNotification*) {
                                           handler();
                                         }];
    return Handle{[center, token] { [center removeObserver:token]; }};
}

}  // namespace quorvane
