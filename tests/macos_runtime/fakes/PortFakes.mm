// Message ports and the run loop that serves them, which runs what a test has written down and
// comes back.
#include "tests/macos_runtime/fakes/SystemFakes.hpp"

#include <set>
#include <stdexcept>
#include <utility>

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

namespace {
struct Ports {
    std::map<std::string, macrt::ServePort> served;
    std::map<std::string, FakePort * __weak> local;
    std::set<std::string> scheduled;
    std::vector<void (^)(void)> blocks;
    NSData* lastRequest = nil;
    bool isStopped = false;
};
Ports ports;
const macrt::AtReset reset{[] { ports = {}; }};

std::string textOf(CFStringRef name) { return macrt::textOf((__bridge NSString*)name); }
std::string bytesOf(CFDataRef data) {
    NSData* const object = (__bridge NSData*)data;
    return {static_cast<const char*>(object.bytes), object.length};
}
NSData* dataOf(const std::string& bytes) {
    return [NSData dataWithBytes:bytes.data() length:bytes.size()];
}
FakePort* makePort(const std::string& name) {
    FakePort* const port = [FakePort new];
    port->name = name;
    port->isValid = true;
    return port;
}
}  // namespace

extern "C" {

CFMessagePortRef CFMessagePortCreateLocal(CFAllocatorRef, CFStringRef name,
                                          CFMessagePortCallBack callout,
                                          CFMessagePortContext* context, Boolean* shouldFreeInfo) {
    const std::string text = textOf(name);
    macrt::note("local port " + text);
    if (macrt::answered<BOOL>(nil, "", "name is taken")) return nullptr;
    FakePort* port = ports.local[text];
    *shouldFreeInfo = port != nil;
    if (port == nil) {
        port = makePort(text);
        port->callout = callout;
        port->info = context->info;
        ports.local[text] = port;
    }
    return (__bridge_retained CFMessagePortRef)port;
}

CFMessagePortRef CFMessagePortCreateRemote(CFAllocatorRef, CFStringRef name) {
    const std::string text = textOf(name);
    macrt::note("remote port " + text);
    if (!ports.served.contains(text)) return nullptr;
    return (__bridge_retained CFMessagePortRef)makePort(text);
}

void CFMessagePortInvalidate(CFMessagePortRef ms) {
    FakePort* const port = (__bridge FakePort*)ms;
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
    ports.lastRequest = (__bridge NSData*)data;
    const macrt::PortAnswer reply =
        answer->second({msgid, bytesOf(data), sendTimeout, rcvTimeout, awaitsReply});
    if (awaitsReply && reply.status == 0 && reply.body)
        *returnData = (__bridge_retained CFDataRef)dataOf(*reply.body);
    return reply.status;
}

CFRunLoopSourceRef CFMessagePortCreateRunLoopSource(CFAllocatorRef, CFMessagePortRef local,
                                                    CFIndex order) {
    macrt::note("port source " + std::to_string(order));
    return (CFRunLoopSourceRef)CFRetain(local);
}

CFRunLoopRef CFRunLoopGetCurrent() {
    return (__bridge CFRunLoopRef)macrt::sharedObject(NSObject.class, "run loop");
}
void CFRunLoopAddSource(CFRunLoopRef, CFRunLoopSourceRef source, CFRunLoopMode) {
    ports.scheduled.insert(((__bridge FakePort*)source)->name);
}
void CFRunLoopRemoveSource(CFRunLoopRef, CFRunLoopSourceRef source, CFRunLoopMode) {
    ports.scheduled.erase(((__bridge FakePort*)source)->name);
}
void CFRunLoopPerformBlock(CFRunLoopRef, CFTypeRef, void (^block)(void)) {
    ports.blocks.push_back(block);
}
void CFRunLoopStop(CFRunLoopRef) { ports.isStopped = true; }

CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval,
                                      Boolean returnAfterSourceHandled) {
    macrt::note("run loop in " + textOf(mode) +
                (returnAfterSourceHandled ? " for one source" : ""));
    if (!macrt::drainMainQueue()) throw std::logic_error{"the loop waits for ever"};
    return static_cast<CFRunLoopRunResult>(4);  // a source was handled
}

void CFRunLoopRun() {
    ports.isStopped = false;  // a stop from before is forgotten
    macrt::drainMainQueue();
    if (macrt::whileRunning()) macrt::whileRunning()();
    for (const auto blocks = std::exchange(ports.blocks, {}); const auto& block : blocks) block();
    macrt::note(ports.isStopped ? "run loop stopped" : "run loop never stops");
}
}

namespace macrt {

void servePort(const std::string& name, ServePort answer) {
    ports.served[name] = std::move(answer);
}

void stopServing(const std::string& name) { ports.served.erase(name); }
std::string lastRequest() { return bytesOf((__bridge CFDataRef)ports.lastRequest); }

std::optional<std::string> callPort(const std::string& name, std::int32_t identifier,
                                    const std::string& body) {
    FakePort* const port = ports.local[name];
    if (port == nil || !ports.scheduled.contains(name)) return std::nullopt;
    NSData* const data = dataOf(body);
    NSData* const reply = (__bridge_transfer NSData*)port->callout(
        (__bridge CFMessagePortRef)port, identifier, (__bridge CFDataRef)data, port->info);
    return reply == nil ? "" : bytesOf((__bridge CFDataRef)reply);
}

}  // namespace macrt
