#include "platform/macos/services/ServicesMacOS.hpp"

#import <Foundation/Foundation.h>

#include <utility>

#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

@interface QuorvaneNoticeObserver : NSObject {
@public
    quorvane::DistributedNotices::Handler handler;
}
- (void)received:(NSNotification*)notification;
@end

@implementation QuorvaneNoticeObserver
- (void)received:(NSNotification*)notification {
    // A copy, because the handler may end its own observation.
    const auto received = handler;
    received(quorvane::propertiesFrom(notification.userInfo));
}
@end

namespace quorvane {
namespace {

void post(const std::string& name, const PropertyDictionary& userInfo) {
    [[NSDistributedNotificationCenter defaultCenter] postNotificationName:stringFrom(name)
                                                                   object:nil
                                                                 userInfo:dictionaryFrom(userInfo)
                                                       deliverImmediately:YES];
}

Handle observe(const std::string& name, DistributedNotices::Handler handler) {
    QuorvaneNoticeObserver* observer = [[QuorvaneNoticeObserver alloc] init];
    observer->handler = std::move(handler);
    [[NSDistributedNotificationCenter defaultCenter]
               addObserver:observer
                  selector:@selector(received:)
                      name:stringFrom(name)
                    object:nil
        suspensionBehavior:NSNotificationSuspensionBehaviorDeliverImmediately];
    // The handle owns the observer, because the centre does not.
    return Handle{
        [observer] { [[NSDistributedNotificationCenter defaultCenter] removeObserver:observer]; }};
}

}  // namespace

DistributedNotices makeDistributedNoticesMacOS() { return {.post = post, .observe = observe}; }

}  // namespace quorvane
