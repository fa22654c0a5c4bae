// Notification centres of all kinds.
#include "tests/macos_runtime/fakes/SystemFakes.hpp"

extern "C" void objc_msgSend(void);

namespace {
struct DarwinObserver {
    const void* observer;
    CFNotificationCallback callback;
    std::string name;
};
std::vector<DarwinObserver> darwinObservers;
const macrt::AtReset reset{[] { darwinObservers.clear(); }};
}  // namespace

// A block, or a method of an object that the centre does not hold.
@interface FakeObservation : NSObject {
@public
    NSString* name;
    void (^block)(NSNotification*);
    __weak id target;
    SEL selector;
}
@end
@implementation FakeObservation
@end

@interface NSNotificationCenter () <Recorded>
@end
@implementation NSNotificationCenter {
@package
    std::vector<FakeObservation*> observations_;
}
+ (NSNotificationCenter*)defaultCenter {
    return macrt::shared<NSNotificationCenter>("defaultCenter");
}
- (id<NSObject>)addObserverForName:(NSNotificationName)name
                            object:(id)obj
                             queue:(NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification* notification))block {
    FakeObservation* const observation = [FakeObservation new];
    observation->name = name;
    observation->block = block;
    observations_.push_back(observation);
    return observation;
}
- (void)removeObserver:(id)observer {
    std::erase_if(observations_, [observer](FakeObservation* each) {
        return each == observer || each->target == observer;
    });
}
@end

@interface NSDistributedNotificationCenter () <Recorded>
@end
@implementation NSDistributedNotificationCenter
+ (NSDistributedNotificationCenter*)defaultCenter {
    return macrt::shared<NSDistributedNotificationCenter>("defaultCenter");
}
- (void)addObserver:(id)observer
              selector:(SEL)selector
                  name:(NSNotificationName)name
                object:(NSString*)object
    suspensionBehavior:(NSNotificationSuspensionBehavior)suspensionBehavior {
    FakeObservation* const observation = [FakeObservation new];
    observation->name = name;
    observation->target = observer;
    observation->selector = selector;
    observations_.push_back(observation);
}
@end

@implementation NSWorkspace
@dynamic accessibilityDisplayShouldReduceMotion;
- (NSNotificationCenter*)notificationCenter {
    return macrt::shared<NSNotificationCenter>("of the workspace");
}
@end

extern "C" {

CFNotificationCenterRef CFNotificationCenterGetDarwinNotifyCenter() { return nullptr; }

void CFNotificationCenterAddObserver(CFNotificationCenterRef, const void* observer,
                                     CFNotificationCallback callBack, CFStringRef name, const void*,
                                     CFNotificationSuspensionBehavior behavior) {
    const std::string text = macrt::textOf((__bridge NSString*)name);
    macrt::note("Darwin observe " + text + " " + std::to_string(behavior));
    darwinObservers.push_back({observer, callBack, text});
}

void CFNotificationCenterRemoveObserver(CFNotificationCenterRef, const void* observer,
                                        CFNotificationName name, const void*) {
    const std::string text = macrt::textOf((__bridge NSString*)name);
    macrt::note("Darwin remove " + text);
    std::erase_if(darwinObservers, [&](const DarwinObserver& each) {
        return each.observer == observer && each.name == text;
    });
}
}

namespace macrt {

void deliver(NSNotificationCenter* center, NSString* name, NSDictionary* userInfo) {
    NSNotification* const notification = [NSNotification new];
    setAnswer(notification, "userInfo", userInfo);
    const auto send = reinterpret_cast<void (*)(id, SEL, id)>(objc_msgSend);
    const std::vector<FakeObservation*> observations = center->observations_;
    for (FakeObservation* const& each : observations) {
        if (![each->name isEqual:name]) continue;
        if (each->block != nil) each->block(notification);
        const id target = each->target;
        if (target != nil) send(target, each->selector, notification);
    }
}

void deliverDistributed(NSString* name, NSDictionary* userInfo) {
    deliver([NSDistributedNotificationCenter defaultCenter], name, userInfo);
}

void deliverDarwin(std::string_view name) {
    const auto observers = darwinObservers;
    for (const DarwinObserver& each : observers)
        if (each.name == name)
            each.callback(nullptr, const_cast<void*>(each.observer),
                          (__bridge CFStringRef)makeString(name), nullptr, nullptr);
}

}  // namespace macrt
