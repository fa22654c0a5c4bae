// Message ports and the run loops that serve them.
#include "tests/macos_runtime/fakes/PortFakes.hpp"

#include <unistd.h>

#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <set>
#include <thread>
#include <utility>

#include "tests/macos_runtime/fakes/DispatchFakes.hpp"

@interface FakePort : NSObject {
@public
    std::string name;
    CFMessagePortCallBack callout;
    void* info;
    bool isValid;
}
@end
@implementation FakePort
@end

// One a thread.
@interface FakeRunLoop : NSObject {
@public
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::function<void()>> actions;
    int sources;
    bool isStopped;
}
@end
@implementation FakeRunLoop
@end

@interface FakeRunLoopSource : NSObject {
@public
    FakePort* port;
}
@end
@implementation FakeRunLoopSource
@end

namespace {
struct Ports {
    std::mutex mutex;
    std::map<std::string, std::function<macrt::PortAnswer(const macrt::PortMessage&)>> served;
    std::map<std::string, FakePort * __weak> local;
    std::map<std::string, FakeRunLoop * __weak> loops;
    std::set<std::string> taken;
    std::map<std::thread::id, FakeRunLoop*> current;
};
Ports ports;
const macrt::AtReset reset{[] {
    ports.served.clear();
    ports.local.clear();
    ports.loops.clear();
    ports.taken.clear();
    ports.current.clear();
}};

std::string textOf(CFStringRef name) { return macrt::textOf((__bridge NSString*)name); }
std::string bytesOf(CFDataRef data) {
    NSData* const object = (__bridge NSData*)data;
    return {static_cast<const char*>(object.bytes), object.length};
}
NSData* dataOf(const std::string& bytes) {
    return [NSData dataWithBytes:bytes.data() length:bytes.size()];
}
void post(FakeRunLoop* loop, std::function<void()> action) {
    const std::lock_guard guard{loop->mutex};
    loop->actions.push_back(std::move(action));
    loop->changed.notify_all();
}
FakeRunLoop* loopOf(CFRunLoopRef loop) { return (__bridge FakeRunLoop*)loop; }
}  // namespace

extern "C" {

const CFRunLoopMode kCFRunLoopDefaultMode = (__bridge CFStringRef) @"kCFRunLoopDefaultMode";

CFMessagePortRef CFMessagePortCreateLocal(CFAllocatorRef, CFStringRef name,
                                          CFMessagePortCallBack callout,
                                          CFMessagePortContext* context, Boolean* shouldFreeInfo) {
    const std::lock_guard guard{ports.mutex};
    const std::string text = textOf(name);
    macrt::note("local port " + text);
    if (ports.taken.contains(text)) return nullptr;
    FakePort* port = ports.local[text];
    *shouldFreeInfo = port != nil;
    if (port == nil) {
        port = [FakePort new];
        port->name = text;
        port->callout = callout;
        port->info = context->info;
        port->isValid = true;
        ports.local[text] = port;
    }
    return (__bridge_retained CFMessagePortRef)port;
}

CFMessagePortRef CFMessagePortCreateRemote(CFAllocatorRef, CFStringRef name) {
    const std::string text = textOf(name);
    macrt::note("remote port " + text);
    if (!ports.served.contains(text)) return nullptr;
    FakePort* const port = [FakePort new];
    port->name = text;
    port->isValid = true;
    return (__bridge_retained CFMessagePortRef)port;
}

void CFMessagePortInvalidate(CFMessagePortRef ms) {
    FakePort* const port = (__bridge FakePort*)ms;
    const std::lock_guard guard{ports.mutex};
    macrt::note("invalidate " + port->name);
    port->isValid = false;
    if (ports.local[port->name] == port) ports.local.erase(port->name);
}

SInt32 CFMessagePortSendRequest(CFMessagePortRef remote, SInt32 msgid, CFDataRef data,
                                CFTimeInterval sendTimeout, CFTimeInterval rcvTimeout,
                                CFStringRef replyMode, CFDataRef* returnData) {
    FakePort* const port = (__bridge FakePort*)remote;
    if (!port->isValid) return -3;
    const auto answer = ports.served.find(port->name);
    if (answer == ports.served.end()) return -4;
    const bool awaitsReply = replyMode != nullptr;
    const macrt::PortAnswer reply =
        answer->second({msgid, bytesOf(data), sendTimeout, rcvTimeout, awaitsReply});
    if (awaitsReply && reply.status == 0 && reply.body)
        *returnData = (__bridge_retained CFDataRef)dataOf(*reply.body);
    return reply.status;
}

CFRunLoopSourceRef CFMessagePortCreateRunLoopSource(CFAllocatorRef, CFMessagePortRef local,
                                                    CFIndex) {
    FakeRunLoopSource* const source = [FakeRunLoopSource new];
    source->port = (__bridge FakePort*)local;
    return (__bridge_retained CFRunLoopSourceRef)source;
}

CFRunLoopRef CFRunLoopGetCurrent() {
    const std::lock_guard guard{ports.mutex};
    __strong FakeRunLoop*& loop = ports.current[std::this_thread::get_id()];
    if (loop == nil) loop = [FakeRunLoop new];
    return (__bridge CFRunLoopRef)loop;
}

void CFRunLoopAddSource(CFRunLoopRef rl, CFRunLoopSourceRef source, CFRunLoopMode) {
    FakeRunLoop* const loop = loopOf(rl);
    const std::lock_guard guard{ports.mutex};
    ++loop->sources;
    ports.loops[((__bridge FakeRunLoopSource*)source)->port->name] = loop;
}

void CFRunLoopRemoveSource(CFRunLoopRef rl, CFRunLoopSourceRef source, CFRunLoopMode) {
    const std::lock_guard guard{ports.mutex};
    --loopOf(rl)->sources;
    ports.loops.erase(((__bridge FakeRunLoopSource*)source)->port->name);
}

void CFRunLoopRun() {
    FakeRunLoop* const loop = loopOf(CFRunLoopGetCurrent());
    if (gettid() == getpid()) {
        loop->isStopped = false;
        macrt::drainMainQueue();
        macrt::note(loop->isStopped ? "main loop stopped" : "main loop has nothing to do");
        return;
    }
    // Without a source a loop returns at once. A stop from before is forgotten.
    if (loop->sources == 0) return;
    std::unique_lock held{loop->mutex};
    loop->isStopped = false;
    while (!loop->isStopped) {
        loop->changed.wait(held, [loop] { return loop->isStopped || !loop->actions.empty(); });
        if (loop->actions.empty()) break;
        const auto action = std::move(loop->actions.front());
        loop->actions.pop_front();
        held.unlock();
        @autoreleasepool {
            action();
        }
        held.lock();
    }
}

void CFRunLoopStop(CFRunLoopRef rl) {
    const std::lock_guard guard{loopOf(rl)->mutex};
    loopOf(rl)->isStopped = true;
    loopOf(rl)->changed.notify_all();
}

void CFRunLoopWakeUp(CFRunLoopRef) {}

void CFRunLoopPerformBlock(CFRunLoopRef rl, CFTypeRef, void (^block)(void)) {
    post(loopOf(rl), [block] { block(); });
}
}

namespace macrt {

void servePort(const std::string& name, std::function<PortAnswer(const PortMessage&)> answer) {
    ports.served[name] = std::move(answer);
}

void stopServing(const std::string& name) { ports.served.erase(name); }

void takePortName(const std::string& name) { ports.taken.insert(name); }

std::optional<std::string> callPort(const std::string& name, std::int32_t identifier,
                                    const std::string& body) {
    FakeRunLoop* loop = nil;
    FakePort* port = nil;
    {
        const std::lock_guard guard{ports.mutex};
        loop = ports.loops[name];
        port = ports.local[name];
    }
    if (loop == nil || port == nil) return std::nullopt;
    std::mutex mutex;
    std::condition_variable answered;
    std::optional<std::string> answer;
    post(loop, [&] {
        const CFDataRef reply = port->callout((__bridge CFMessagePortRef)port, identifier,
                                              (__bridge CFDataRef)dataOf(body), port->info);
        const std::lock_guard guard{mutex};
        answer = reply == nullptr ? "" : bytesOf(reply);
        if (reply != nullptr) CFRelease(reply);
        answered.notify_all();
    });
    std::unique_lock held{mutex};
    answered.wait(held, [&] { return answer.has_value(); });
    return answer;
}

}  // namespace macrt
