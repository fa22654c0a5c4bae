#include "platform/macos/foundation/Observation.hpp"

#include "platform/macos/foundation/ReferenceCounting.hpp"

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
